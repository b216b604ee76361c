#include "tests/apoio/RegistroTeste.h"

#include <windows.h>

#include <stdexcept>

namespace apoio {
namespace {

void Confere(LSTATUS estado, const CString &oque) {
  if (estado != ERROR_SUCCESS) {
    throw std::runtime_error("registry error " + std::to_string(estado) + ": " + oque);
  }
}

CString SemBarra(const CString &chave) {
  return chave.substr(0, chave.find_last_not_of('\\') + 1);
}

CString Terminado(const CString &texto) {
  return texto + CString(1, '\0');
}

/// Opens a key, which is created when needed.
HKEY AbreChave(const CString &chave) {
  HKEY hChave = nullptr;
  Confere(::RegCreateKeyExA(HKEY_LOCAL_MACHINE, SemBarra(chave).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &hChave,
                            nullptr),
          chave);
  return hChave;
}

/// Stores exactly these bytes.
void Grava(const CString &chave, const CString &nome, DWORD tipo, const CString &bytes) {
  // The system adds a missing final zero when one follows the bytes it is given: something else follows here.
  const CString seguidos = bytes + "#";
  const HKEY hChave = AbreChave(chave);
  const LSTATUS estado = ::RegSetValueExA(
      hChave, nome.c_str(), 0, tipo, reinterpret_cast<const BYTE *>(seguidos.data()), static_cast<DWORD>(bytes.size()));
  ::RegCloseKey(hChave);
  Confere(estado, nome);
}

}  // namespace

RegistroTeste::~RegistroTeste() {
  for (const CString &chave : m_chaves) {
    ::RegDeleteTreeA(HKEY_LOCAL_MACHINE, chave.c_str());
  }
}

void RegistroTeste::CriaChave(const CString &chave) {
  if (!chave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\")) {
    throw std::runtime_error("not a test key: " + chave);
  }
  m_chaves.push_back(SemBarra(chave));
  ::RegCloseKey(AbreChave(chave));
}

void RegistroTeste::DefineTexto(const CString &chave, const CString &nome, const CString &texto, bool bTerminador) {
  CriaChave(chave);
  Grava(chave, nome, REG_SZ, bTerminador ? Terminado(texto) : texto);
}

void RegistroTeste::DefineTextoExpansivel(const CString &chave, const CString &nome, const CString &texto) {
  CriaChave(chave);
  Grava(chave, nome, REG_EXPAND_SZ, Terminado(texto));
}

void RegistroTeste::DefineNumero(const CString &chave, const CString &nome, std::uint32_t numero) {
  CriaChave(chave);
  Grava(chave, nome, REG_DWORD, CString(reinterpret_cast<const char *>(&numero), sizeof(numero)));
}

void RegistroTeste::DefineBinario(const CString &chave, const CString &nome, const CString &bytes) {
  CriaChave(chave);
  Grava(chave, nome, REG_BINARY, bytes);
}

void RegistroTeste::RemoveValor(const CString &chave, const CString &nome) {
  Confere(::RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, SemBarra(chave).c_str(), nome.c_str()), nome);
}

void RegistroTeste::RemoveChave(const CString &chave) {
  Confere(::RegDeleteTreeA(HKEY_LOCAL_MACHINE, SemBarra(chave).c_str()), chave);
}

}  // namespace apoio
