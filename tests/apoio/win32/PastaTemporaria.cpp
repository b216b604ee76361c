#include "tests/apoio/PastaTemporaria.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

#include "tests/apoio/Nativo.h"

namespace apoio {
namespace {

void RemoveComConteudo(const CString &pasta) {
  WIN32_FIND_DATAA achado{};
  const HANDLE hBusca = ::FindFirstFileA((pasta + "*").c_str(), &achado);
  if (hBusca != INVALID_HANDLE_VALUE) {
    do {
      const CString nome(achado.cFileName);
      if (nome == "." || nome == "..") {
        continue;
      }
      if ((achado.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveComConteudo(pasta + nome + "\\");
      } else {
        ::SetFileAttributesA((pasta + nome).c_str(), FILE_ATTRIBUTE_NORMAL);
        ::DeleteFileA((pasta + nome).c_str());
      }
    } while (::FindNextFileA(hBusca, &achado));
    ::FindClose(hBusca);
  }
  ::RemoveDirectoryA(pasta.c_str());
}

}  // namespace

std::string CaminhoDoSistema(const CString &caminho) {
  return caminho;
}

PastaTemporaria::PastaTemporaria() {
  static std::atomic<unsigned> s_contador{0};
  char temp[MAX_PATH + 1] = "";
  const DWORD qtd = ::GetTempPathA(sizeof(temp), temp);
  // A name left over by an earlier process of the same number is passed over.
  do {
    m_caminho = temp + ("kalvo-" + std::to_string(::GetCurrentProcessId())) + "-" + std::to_string(++s_contador);
  } while (qtd != 0 && !::CreateDirectoryA(m_caminho.c_str(), nullptr) && ::GetLastError() == ERROR_ALREADY_EXISTS);
  m_caminho += "\\";
  if (!ExisteNoDisco(m_caminho)) {
    throw std::runtime_error("no temporary directory");
  }
}

PastaTemporaria::~PastaTemporaria() {
  RemoveComConteudo(m_caminho);
}

CString PastaTemporaria::CriaSubpasta(const CString &nome) const {
  if (!::CreateDirectoryA((m_caminho + nome).c_str(), nullptr)) {
    throw std::runtime_error("cannot create " + nome);
  }
  return m_caminho + nome + "\\";
}

bool ExisteNoDisco(const CString &caminho) {
  return ::GetFileAttributesA(caminho.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void MarcaSomenteLeitura(const CString &caminho, bool bSomenteLeitura) {
  if (!::SetFileAttributesA(caminho.c_str(), bSomenteLeitura ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL)) {
    throw std::runtime_error("cannot mark " + caminho);
  }
}

bool SomenteLeituraSemEfeito() {
  return ::GetProcAddress(::GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace apoio
