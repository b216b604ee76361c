#include "tests/apoio/PastaTemporaria.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace apoio {
namespace {

#ifdef _WIN32
constexpr char kVariavelTemp[] = "TEMP";

bool CriaDiretorio(const std::string &sCaminho) {
  return ::mkdir(sCaminho.c_str()) == 0;
}
#else
constexpr char kVariavelTemp[] = "TMPDIR";

bool CriaDiretorio(const std::string &sCaminho) {
  return ::mkdir(sCaminho.c_str(), 0777) == 0;
}
#endif

/// `sPasta` ends with a separator.
void RemoveComConteudo(const std::string &sPasta) {
  DIR *const pLeitura = ::opendir(sPasta.c_str());
  while (const dirent *const pEntrada = pLeitura != nullptr ? ::readdir(pLeitura) : nullptr) {
    const std::string sNome(pEntrada->d_name);
    const std::string sCaminho = sPasta + sNome;
    if (sNome == "." || sNome == "..") {
      continue;
    }
    ::chmod(sCaminho.c_str(), 0700);
    if (::unlink(sCaminho.c_str()) != 0) {
      RemoveComConteudo(sCaminho + "/");
    }
  }
  if (pLeitura != nullptr) {
    ::closedir(pLeitura);
  }
  ::rmdir(sPasta.c_str());
}

}  // namespace

std::string CaminhoDoSistema(const CString &sCaminho) {
  std::string sNativo = sCaminho;
  std::replace(sNativo.begin(), sNativo.end(), '\\', '/');
  return sNativo;
}

PastaTemporaria::PastaTemporaria() {
  static std::atomic<unsigned> s_contador{0};
  const char *const lpTemp = std::getenv(kVariavelTemp);
  CString sInicio = CString(lpTemp != nullptr ? lpTemp : "/tmp") + "/kalvo-" + std::to_string(::getpid()) + "-";
  std::replace(sInicio.begin(), sInicio.end(), '/', '\\');
  // A name left over by an earlier process of the same number is passed over.
  do {
    m_caminho = sInicio + std::to_string(++s_contador) + "\\";
  } while (ExisteNoDisco(m_caminho));
  if (!CriaDiretorio(CaminhoDoSistema(m_caminho))) {
    throw std::runtime_error("no temporary directory");
  }
}

PastaTemporaria::~PastaTemporaria() {
  RemoveComConteudo(CaminhoDoSistema(m_caminho));
}

CString PastaTemporaria::CriaSubpasta(const CString &sNome) const {
  if (!CriaDiretorio(CaminhoDoSistema(m_caminho + sNome))) {
    throw std::runtime_error("cannot create " + sNome);
  }
  return m_caminho + sNome + "\\";
}

void EscreveArquivo(const CString &sCaminho, const std::string &sConteudo) {
  std::ofstream saida(CaminhoDoSistema(sCaminho), std::ios::binary | std::ios::trunc);
  saida.write(sConteudo.data(), static_cast<std::streamsize>(sConteudo.size()));
  if (!saida.flush()) {
    throw std::runtime_error("cannot write " + sCaminho);
  }
}

std::string LeArquivo(const CString &sCaminho) {
  std::ifstream entrada(CaminhoDoSistema(sCaminho), std::ios::binary);
  if (!entrada) {
    throw std::runtime_error("cannot read " + sCaminho);
  }
  return {std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
}

bool ExisteNoDisco(const CString &sCaminho) {
  return ::access(CaminhoDoSistema(sCaminho).c_str(), F_OK) == 0;
}

void MarcaSomenteLeitura(const CString &sCaminho, bool bSomenteLeitura) {
  if (::chmod(CaminhoDoSistema(sCaminho).c_str(), bSomenteLeitura ? 0444 : 0644) != 0) {
    throw std::runtime_error("cannot mark " + sCaminho);
  }
}

bool SomenteLeituraSemEfeito() {
#ifdef _WIN32
  return ::GetProcAddress(::GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
#else
  return false;
#endif
}

}  // namespace apoio
