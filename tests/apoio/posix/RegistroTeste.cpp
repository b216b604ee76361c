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
  for (const CString &chave : m_chaves) {
    Registro().RemoveChave(chave);
  }
}

void RegistroTeste::CriaChave(const CString &chave) {
  if (!chave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\")) {
    throw std::runtime_error("not a test key: " + chave);
  }
  m_chaves.push_back(chave);
  Registro().CriaChave(chave);
}

void RegistroTeste::DefineTexto(const CString &chave, const CString &nome, const CString &texto, bool bTerminador) {
  CriaChave(chave);
  Registro().DefineTexto(chave, nome, bTerminador ? texto + CString(1, '\0') : texto);
}

void RegistroTeste::DefineTextoExpansivel(const CString &chave, const CString &nome, const CString &texto) {
  CriaChave(chave);
  Registro().DefineTextoExpansivel(chave, nome, texto);
}

void RegistroTeste::DefineNumero(const CString &chave, const CString &nome, std::uint32_t numero) {
  CriaChave(chave);
  Registro().DefineNumero(chave, nome, numero);
}

void RegistroTeste::DefineBinario(const CString &chave, const CString &nome, const CString &bytes) {
  CriaChave(chave);
  Registro().DefineBinario(chave, nome, bytes);
}

void RegistroTeste::RemoveValor(const CString &chave, const CString &nome) {
  Registro().RemoveValor(chave, nome);
}

void RegistroTeste::RemoveChave(const CString &chave) {
  Registro().RemoveChave(chave);
}

}  // namespace apoio
