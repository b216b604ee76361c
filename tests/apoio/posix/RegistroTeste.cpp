#include "tests/apoio/RegistroTeste.h"

#include <cstring>
#include <stdexcept>

#include "core/platform/posix/RegistroMemoria.h"

namespace apoio {

using plataforma::RegistroMemoria;

RegistroTeste::~RegistroTeste() {
  for (const CString &sChave : m_chaves) {
    RegistroMemoria::DoProcesso().RemoveChave(sChave);
  }
}

void RegistroTeste::CriaChave(const CString &sChave) {
  if (!sChave.starts_with("SOFTWARE\\Wow6432Node\\Tarvel\\")) {
    throw std::runtime_error("not a test key: " + sChave);
  }
  m_chaves.push_back(sChave);
  RegistroMemoria::DoProcesso().CriaChave(sChave);
}

void RegistroTeste::Define(const CString &sChave, const CString &sNome, TipoValor eTipo, const CString &sBytes) {
  CriaChave(sChave);
  if (eTipo == TipoValor::Numero) {
    std::uint32_t uiNumero = 0;
    std::memcpy(&uiNumero, sBytes.data(), sizeof(uiNumero));
    RegistroMemoria::DoProcesso().DefineNumero(sChave, sNome, uiNumero);
    return;
  }
  const auto define = eTipo == TipoValor::Texto             ? &RegistroMemoria::DefineTexto
                      : eTipo == TipoValor::TextoExpansivel ? &RegistroMemoria::DefineTextoExpansivel
                                                            : &RegistroMemoria::DefineBinario;
  (RegistroMemoria::DoProcesso().*define)(sChave, sNome, sBytes);
}

}  // namespace apoio
