#include <windows.h>

#include <objbase.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

constexpr DWORD kAssinaturaVersao = 0xFEEF04BD;

/// Full path of the program file; empty when it does not fit.
CString CaminhoPrograma() {
  char caminho[MAX_PATH + 1] = "";
  const DWORD qtd = ::GetModuleFileNameA(nullptr, caminho, MAX_PATH);
  return qtd < MAX_PATH ? CString(caminho, qtd) : CString();
}

template <class Funcao>
Funcao *FuncaoDe(const PosseModulo &modulo, const char *lpNome) {
  return reinterpret_cast<Funcao *>(reinterpret_cast<void *>(::GetProcAddress(modulo.get(), lpNome)));
}

class InformacoesSistema final : public IInformacoes {
public:
  CString NomeProcesso() override {
    const CString sCaminho = CaminhoPrograma();
    CString sNome = sCaminho.substr(sCaminho.find_last_of('\\') + 1);
    ::CharLowerBuffA(sNome.data(), static_cast<DWORD>(sNome.size()));
    return sNome;
  }

  CString UsuarioLocal() override {
    char nome[257] = "";
    DWORD qtd = sizeof(nome);
    return ::GetUserNameA(nome, &qtd) ? CString(nome) : CString();
  }

  std::uint32_t IdThread() override { return ::GetCurrentThreadId(); }

  CString NovoGuid() override {
    GUID guid{};
    if (FAILED(::CoCreateGuid(&guid))) {
      return {};
    }
    char texto[39] = "";
    std::snprintf(texto, sizeof(texto), "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
                  guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    return texto;
  }

  bool MemoriaProcesso(std::uint64_t *puiBytes) override {
    PROCESS_MEMORY_COUNTERS_EX contadores{};
    contadores.cb = sizeof(contadores);
    if (!::GetProcessMemoryInfo(::GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS *>(&contadores),
                                sizeof(contadores))) {
      return false;
    }
    // Two names for the same figure, of which some systems fill in only one.
    *puiBytes = std::max(contadores.PrivateUsage, contadores.PagefileUsage);
    return true;
  }

  bool MemoriaMaquina(std::uint64_t *puiDisponivel, std::uint64_t *puiTotal) override {
    MEMORYSTATUSEX estado{};
    estado.dwLength = sizeof(estado);
    if (!::GlobalMemoryStatusEx(&estado)) {
      return false;
    }
    *puiDisponivel = estado.ullAvailPhys;
    *puiTotal = estado.ullTotalPhys;
    return true;
  }

  bool VersaoPrograma(VersaoArquivo *pVersao) override {
    const PosseModulo biblioteca(::LoadLibraryExA("version.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!biblioteca) {
      return false;
    }
    auto *const tamanhoDoBloco = FuncaoDe<DWORD WINAPI(LPCSTR, LPDWORD)>(biblioteca, "GetFileVersionInfoSizeA");
    auto *const leBloco = FuncaoDe<BOOL WINAPI(LPCSTR, DWORD, DWORD, LPVOID)>(biblioteca, "GetFileVersionInfoA");
    auto *const consulta = FuncaoDe<BOOL WINAPI(LPCVOID, LPCSTR, LPVOID *, PUINT)>(biblioteca, "VerQueryValueA");
    if (tamanhoDoBloco == nullptr || leBloco == nullptr || consulta == nullptr) {
      return false;
    }
    const CString sPrograma = CaminhoPrograma();
    DWORD ignorado = 0;
    std::vector<char> bloco(tamanhoDoBloco(sPrograma.c_str(), &ignorado));
    void *pAchado = nullptr;
    UINT qtd = 0;
    if (bloco.empty() || !leBloco(sPrograma.c_str(), 0, static_cast<DWORD>(bloco.size()), bloco.data()) ||
        !consulta(bloco.data(), "\\", &pAchado, &qtd) || qtd < sizeof(VS_FIXEDFILEINFO)) {
      return false;
    }
    const auto *const fixa = static_cast<const VS_FIXEDFILEINFO *>(pAchado);
    if (fixa->dwSignature != kAssinaturaVersao) {
      return false;
    }
    *pVersao = {fixa->dwFileVersionMS, fixa->dwFileVersionLS};
    return true;
  }

  VersaoSistema VersaoSO() override {
    const DWORD palavra = ::GetVersion();
    const bool bTemCompilacao = (palavra & 0x80000000U) == 0;
    return {palavra & 0xFF, palavra >> 8 & 0xFF, bTemCompilacao ? palavra >> 16 : 0};
  }

  CString TextoErro(std::uint32_t erro) override {
    char *lpTexto = nullptr;
    const DWORD qtd = ::FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, erro,
        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char *>(&lpTexto), 0, nullptr);
    const PosseLocal dono(lpTexto);
    return CString(qtd != 0 ? lpTexto : "", qtd);
  }

  CString CaminhoAbsoluto(const CString &sCaminho) override {
    char absoluto[MAX_PATH + 1] = "";
    const DWORD qtd = ::GetFullPathNameA(sCaminho.c_str(), sizeof(absoluto), absoluto, nullptr);
    return qtd != 0 && qtd < sizeof(absoluto) ? CString(absoluto, qtd) : sCaminho;
  }
};

}  // namespace

IInformacoes &InformacoesDoSistema() {
  return Permanente<InformacoesSistema>();
}

}  // namespace plataforma
