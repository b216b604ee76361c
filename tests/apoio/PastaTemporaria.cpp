#include "tests/apoio/PastaTemporaria.h"

#include <sys/stat.h>
#include <unistd.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace apoio {
namespace {

/// The names that tests give are not always such that std::filesystem could take them.
void CriaDiretorio(const CString &sCaminho) {
#ifdef _WIN32
  const int erro = ::mkdir(CaminhoDoSistema(sCaminho).c_str());
#else
  const int erro = ::mkdir(CaminhoDoSistema(sCaminho).c_str(), 0777);
#endif
  if (erro != 0) {
    throw std::runtime_error("cannot create " + sCaminho);
  }
}

}  // namespace

std::string CaminhoDoSistema(const CString &sCaminho) {
  std::string sNativo = sCaminho;
  std::replace(sNativo.begin(), sNativo.end(), '\\', '/');
  return sNativo;
}

PastaTemporaria::PastaTemporaria() {
  static std::atomic<unsigned> s_contador{0};
  // Only some of the places for temporary files end in a separator.
  CString sInicio = (std::filesystem::temp_directory_path() / "kalvo-").string() + std::to_string(::getpid()) + "-";
  std::replace(sInicio.begin(), sInicio.end(), '/', '\\');
  // A name left over by an earlier process of the same number is passed over.
  do {
    m_caminho = sInicio + std::to_string(++s_contador) + "\\";
  } while (ExisteNoDisco(m_caminho));
  CriaDiretorio(m_caminho);
}

PastaTemporaria::~PastaTemporaria() {
  std::error_code semImportancia;
  if (!s_bGuarda) {
    std::filesystem::remove_all(CaminhoDoSistema(m_caminho), semImportancia);
  }
}

CString PastaTemporaria::CriaSubpasta(const CString &sNome) const {
  CriaDiretorio(m_caminho + sNome);
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
