#include "tests/apoio/PastaTemporaria.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "tests/apoio/Nativo.h"

namespace apoio {

std::string CaminhoDoSistema(const CString &caminho) {
  std::string nativo = caminho;
  std::replace(nativo.begin(), nativo.end(), '\\', '/');
  return nativo;
}

PastaTemporaria::PastaTemporaria() {
  std::string modelo = (std::filesystem::temp_directory_path() / "kalvo-XXXXXX").string();
  if (::mkdtemp(modelo.data()) == nullptr) {
    throw std::runtime_error("no temporary directory");
  }
  m_caminho = modelo + "/";
  std::replace(m_caminho.begin(), m_caminho.end(), '/', '\\');
}

PastaTemporaria::~PastaTemporaria() {
  std::error_code ignorado;
  std::filesystem::remove_all(CaminhoDoSistema(m_caminho), ignorado);
}

CString PastaTemporaria::CriaSubpasta(const CString &nome) const {
  if (::mkdir(CaminhoDoSistema(m_caminho + nome).c_str(), 0777) != 0) {
    throw std::runtime_error("cannot create " + nome);
  }
  return m_caminho + nome + "\\";
}

bool ExisteNoDisco(const CString &caminho) {
  struct stat info {};
  return ::stat(CaminhoDoSistema(caminho).c_str(), &info) == 0;
}

void MarcaSomenteLeitura(const CString &caminho, bool bSomenteLeitura) {
  if (::chmod(CaminhoDoSistema(caminho).c_str(), bSomenteLeitura ? 0444 : 0644) != 0) {
    throw std::runtime_error("cannot mark " + caminho);
  }
}

bool SomenteLeituraSemEfeito() {
  return false;
}

}  // namespace apoio
