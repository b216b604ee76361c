#include "tests/apoio/RegistroTeste.h"

#include <windows.h>

#include <stdexcept>

namespace apoio {

RegistroTeste::~RegistroTeste() {
  for (const CString &sChave : m_chaves) {
    ::RegDeleteTreeA(HKEY_LOCAL_MACHINE, sChave.c_str());
  }
}

void RegistroTeste::CriaChave(const CString &sChave) {
  m_chaves.push_back(sChave.substr(0, sChave.find_last_not_of('\\') + 1));
  HKEY hChave = nullptr;
  if (!sChave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\") ||
      ::RegCreateKeyA(HKEY_LOCAL_MACHINE, m_chaves.back().c_str(), &hChave) != ERROR_SUCCESS) {
    m_chaves.pop_back();
    throw std::runtime_error("cannot create " + sChave);
  }
  ::RegCloseKey(hChave);
}

void RegistroTeste::Define(const CString &sChave, const CString &sNome, TipoValor eTipo, const CString &sBytes) {
  CriaChave(sChave);
  // The system adds a missing final zero when one follows the bytes it is given: something else follows here.
  const CString sSeguidos = sBytes + "#";
  if (::RegSetKeyValueA(HKEY_LOCAL_MACHINE, m_chaves.back().c_str(), sNome.c_str(), static_cast<DWORD>(eTipo),
                        sSeguidos.data(), static_cast<DWORD>(sBytes.size())) != ERROR_SUCCESS) {
    throw std::runtime_error("cannot write " + sNome);
  }
}

}  // namespace apoio
