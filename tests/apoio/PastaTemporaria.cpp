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

bool CriaDiretorio(const std::string &caminho) {
  return ::mkdir(caminho.c_str()) == 0;
}
#else
constexpr char kVariavelTemp[] = "TMPDIR";

bool CriaDiretorio(const std::string &caminho) {
  return ::mkdir(caminho.c_str(), 0777) == 0;
}
#endif

/// `pasta` ends with a separator.
void RemoveComConteudo(const std::string &pasta) {
  DIR *const pLeitura = ::opendir(pasta.c_str());
  while (const dirent *const pEntrada = pLeitura != nullptr ? ::readdir(pLeitura) : nullptr) {
    const std::string nome(pEntrada->d_name);
    const std::string caminho = pasta + nome;
    if (nome == "." || nome == "..") {
      continue;
    }
    ::chmod(caminho.c_str(), 0700);
    if (::unlink(caminho.c_str()) != 0) {
      RemoveComConteudo(caminho + "/");
    }
  }
  if (pLeitura != nullptr) {
    ::closedir(pLeitura);
  }
  ::rmdir(pasta.c_str());
}

}  // namespace

std::string CaminhoDoSistema(const CString &caminho) {
  std::string nativo = caminho;
  std::replace(nativo.begin(), nativo.end(), '\\', '/');
  return nativo;
}

PastaTemporaria::PastaTemporaria() {
  static std::atomic<unsigned> s_contador{0};
  const char *const lpTemp = std::getenv(kVariavelTemp);
  CString inicio = CString(lpTemp != nullptr ? lpTemp : "/tmp") + "/kalvo-" + std::to_string(::getpid()) + "-";
  std::replace(inicio.begin(), inicio.end(), '/', '\\');
  // A name left over by an earlier process of the same number is passed over.
  do {
    m_caminho = inicio + std::to_string(++s_contador) + "\\";
  } while (ExisteNoDisco(m_caminho));
  if (!CriaDiretorio(CaminhoDoSistema(m_caminho))) {
    throw std::runtime_error("no temporary directory");
  }
}

PastaTemporaria::~PastaTemporaria() {
  RemoveComConteudo(CaminhoDoSistema(m_caminho));
}

CString PastaTemporaria::CriaSubpasta(const CString &nome) const {
  if (!CriaDiretorio(CaminhoDoSistema(m_caminho + nome))) {
    throw std::runtime_error("cannot create " + nome);
  }
  return m_caminho + nome + "\\";
}

void EscreveArquivo(const CString &caminho, const std::string &conteudo) {
  std::ofstream saida(CaminhoDoSistema(caminho), std::ios::binary | std::ios::trunc);
  saida.write(conteudo.data(), static_cast<std::streamsize>(conteudo.size()));
  if (!saida.flush()) {
    throw std::runtime_error("cannot write " + caminho);
  }
}

std::string LeArquivo(const CString &caminho) {
  std::ifstream entrada(CaminhoDoSistema(caminho), std::ios::binary);
  if (!entrada) {
    throw std::runtime_error("cannot read " + caminho);
  }
  return {std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
}

bool ExisteNoDisco(const CString &caminho) {
  return ::access(CaminhoDoSistema(caminho).c_str(), F_OK) == 0;
}

void MarcaSomenteLeitura(const CString &caminho, bool bSomenteLeitura) {
  if (::chmod(CaminhoDoSistema(caminho).c_str(), bSomenteLeitura ? 0444 : 0644) != 0) {
    throw std::runtime_error("cannot mark " + caminho);
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
