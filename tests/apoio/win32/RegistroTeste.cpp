#include "tests/apoio/RegistroTeste.h"

#include <windows.h>

#include <stdexcept>

namespace apoio {
namespace {

void Confere(LSTATUS estado, const CString &sOque) {
  if (estado != ERROR_SUCCESS) {
    throw std::runtime_error("registry error " + std::to_string(estado) + ": " + sOque);
  }
}

CString SemBarra(const CString &sChave) {
  return sChave.substr(0, sChave.find_last_not_of('\\') + 1);
}

/// Stores exactly these bytes.
void Grava(const CString &sChave, const CString &sNome, DWORD tipo, const CString &sBytes) {
  // The system adds a missing final zero when one follows the bytes it is given: something else follows here.
  const CString sSeguidos = sBytes + "#";
  Confere(::RegSetKeyValueA(HKEY_LOCAL_MACHINE, SemBarra(sChave).c_str(), sNome.c_str(), tipo, sSeguidos.data(),
                            static_cast<DWORD>(sBytes.size())),
          sNome);
}

}  // namespace

RegistroTeste::~RegistroTeste() {
  for (const CString &sChave : m_chaves) {
    ::RegDeleteTreeA(HKEY_LOCAL_MACHINE, sChave.c_str());
  }
}

void RegistroTeste::CriaChave(const CString &sChave) {
  if (!sChave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\")) {
    throw std::runtime_error("not a test key: " + sChave);
  }
  m_chaves.push_back(SemBarra(sChave));
  HKEY hChave = nullptr;
  Confere(::RegCreateKeyA(HKEY_LOCAL_MACHINE, m_chaves.back().c_str(), &hChave), sChave);
  ::RegCloseKey(hChave);
}

void RegistroTeste::DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto, bool bTerminador) {
  CriaChave(sChave);
  Grava(sChave, sNome, REG_SZ, bTerminador ? sTexto + CString(1, '\0') : sTexto);
}

void RegistroTeste::DefineTextoExpansivel(const CString &sChave, const CString &sNome, const CString &sTexto) {
  CriaChave(sChave);
  Grava(sChave, sNome, REG_EXPAND_SZ, sTexto + CString(1, '\0'));
}

void RegistroTeste::DefineNumero(const CString &sChave, const CString &sNome, std::uint32_t numero) {
  CriaChave(sChave);
  Grava(sChave, sNome, REG_DWORD, CString(reinterpret_cast<const char *>(&numero), sizeof(numero)));
}

void RegistroTeste::DefineBinario(const CString &sChave, const CString &sNome, const CString &sBytes) {
  CriaChave(sChave);
  Grava(sChave, sNome, REG_BINARY, sBytes);
}

}  // namespace apoio
