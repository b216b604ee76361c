#include <pwd.h>
#include <sys/random.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

char Minuscula(char letra) {
  return letra >= 'A' && letra <= 'Z' ? static_cast<char>(letra + ('a' - 'A')) : letra;
}

std::uint64_t TamanhoPagina() {
  return static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

class InformacoesSistema final : public IInformacoes {
public:
  CString NomeProcesso() override {
    std::error_code erro;
    CString sNome = std::filesystem::read_symlink("/proc/self/exe", erro).filename().string();
    std::transform(sNome.begin(), sNome.end(), sNome.begin(), Minuscula);
    return sNome;
  }

  CString UsuarioLocal() override {
    passwd conta{};
    passwd *pAchada = nullptr;
    std::array<char, 4096> area{};
    ::getpwuid_r(::geteuid(), &conta, area.data(), area.size(), &pAchada);
    return pAchada != nullptr ? CString(conta.pw_name) : CString();
  }

  std::uint32_t IdThread() override { return static_cast<std::uint32_t>(::gettid()); }

  CString NovoGuid() override {
    std::array<unsigned char, 16> b{};
    if (::getrandom(b.data(), b.size(), 0) != static_cast<ssize_t>(b.size())) {
      return {};
    }
    b[6] = static_cast<unsigned char>((b[6] & 0x0F) | 0x40);  // version 4: random
    b[8] = static_cast<unsigned char>((b[8] & 0x3F) | 0x80);
    char texto[39] = "";
    std::snprintf(texto, sizeof(texto), "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", b[0],
                  b[1], b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return texto;
  }

  bool MemoriaProcesso(std::uint64_t *puiBytes) override {
    std::ifstream contadores("/proc/self/statm");
    std::uint64_t total = 0;
    std::uint64_t residentes = 0;
    std::uint64_t compartilhadas = 0;
    if (!(contadores >> total >> residentes >> compartilhadas) || residentes < compartilhadas) {
      return false;
    }
    *puiBytes = (residentes - compartilhadas) * TamanhoPagina();
    return true;
  }

  bool MemoriaMaquina(std::uint64_t *puiDisponivel, std::uint64_t *puiTotal) override {
    const long livres = ::sysconf(_SC_AVPHYS_PAGES);
    const long todas = ::sysconf(_SC_PHYS_PAGES);
    if (livres < 0 || todas < 0) {
      return false;
    }
    *puiDisponivel = static_cast<std::uint64_t>(livres) * TamanhoPagina();
    *puiTotal = static_cast<std::uint64_t>(todas) * TamanhoPagina();
    return true;
  }

  /// Program files carry no version here.
  bool VersaoPrograma(VersaoArquivo * /*versao*/) override { return false; }

  VersaoSistema VersaoSO() override {
    utsname nucleo{};
    VersaoSistema versao;
    if (::uname(&nucleo) == 0) {
      // What does not fit the pattern leaves the rest at 0.
      static_cast<void>(std::sscanf(nucleo.release, "%u.%u.%u", &versao.maior, &versao.menor,
                                    &versao.compilacao));  // NOLINT(cert-err34-c)
    }
    return versao;
  }

  /// The codes are the product's platform's, whose texts nobody has here.
  CString TextoErro(std::uint32_t) override { return {}; }

  CString CaminhoAbsoluto(const CString &sCaminho) override {
    std::error_code erro;
    CString sAbsoluto = std::filesystem::absolute(CaminhoNativo(sCaminho), erro).lexically_normal().string();
    std::replace(sAbsoluto.begin(), sAbsoluto.end(), '/', '\\');
    return erro ? sCaminho : sAbsoluto;
  }
};

}  // namespace

IInformacoes &InformacoesDoSistema() {
  return Permanente<InformacoesSistema>();
}

}  // namespace plataforma
