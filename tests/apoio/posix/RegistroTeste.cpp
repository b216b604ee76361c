#include "tests/apoio/RegistroTeste.h"

#include <stdexcept>

#include "core/platform/posix/RegistroMemoria.h"

namespace apoio {
namespace {

plataforma::RegistroMemoria &Registro() {
  return plataforma::RegistroMemoria::DoProcesso();
}

}  // namespace

RegistroTeste::~RegistroTeste() {
  for (const CString &sChave : m_chaves) {
    Registro().RemoveChave(sChave);
  }
}

void RegistroTeste::CriaChave(const CString &sChave) {
  if (!sChave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\")) {
    throw std::runtime_error("not a test key: " + sChave);
  }
  m_chaves.push_back(sChave);
  Registro().CriaChave(sChave);
}

void RegistroTeste::DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto, bool bTerminador) {
  CriaChave(sChave);
  Registro().DefineTexto(sChave, sNome, bTerminador ? sTexto + CString(1, '\0') : sTexto);
}

void RegistroTeste::DefineTextoExpansivel(const CString &sChave, const CString &sNome, const CString &sTexto) {
  CriaChave(sChave);
  Registro().DefineTextoExpansivel(sChave, sNome, sTexto);
}

void RegistroTeste::DefineNumero(const CString &sChave, const CString &sNome, std::uint32_t numero) {
  CriaChave(sChave);
  Registro().DefineNumero(sChave, sNome, numero);
}

void RegistroTeste::DefineBinario(const CString &sChave, const CString &sNome, const CString &sBytes) {
  CriaChave(sChave);
  Registro().DefineBinario(sChave, sNome, sBytes);
}

}  // namespace apoio
