#include <unistd.h>

#include <cstring>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/Textos.h"
#include "core/platform/posix/RegistroMemoria.h"

namespace plataforma {
namespace {

CString ChaveDobrada(const CString &chave) {
  const std::size_t ultimo = chave.find_last_not_of('\\');
  return Maiusculas(chave.substr(0, ultimo == CString::npos ? 0 : ultimo + 1));
}

/// The value of a variable, whose name's letter case does not matter; null when there is none.
const char *Variavel(const CString &nome) {
  const CString procurada = Maiusculas(nome) + "=";
  for (char **variavel = environ; *variavel != nullptr; ++variavel) {
    if (Maiusculas(CString(*variavel, ::strnlen(*variavel, procurada.size()))) == procurada) {
      return *variavel + procurada.size();
    }
  }
  return nullptr;
}

/// The text with each %NAME% of a known variable replaced; unknown ones stay as they are.
CString Expandido(const CString &texto) {
  CString saida;
  std::size_t inicio = 0;
  for (;;) {
    const std::size_t abre = texto.find('%', inicio);
    const std::size_t fecha = abre == CString::npos ? abre : texto.find('%', abre + 1);
    if (fecha == CString::npos) {
      return saida + texto.substr(inicio);
    }
    saida += texto.substr(inicio, abre - inicio);
    const char *const valor = Variavel(texto.substr(abre + 1, fecha - abre - 1));
    saida += valor != nullptr ? CString(valor) : texto.substr(abre, fecha - abre);
    // The final '%' of an unknown name may open the next one.
    inicio = valor != nullptr ? fecha + 1 : fecha;
  }
}

}  // namespace

RegistroMemoria &RegistroMemoria::DoProcesso() {
  return Permanente<RegistroMemoria>();
}

bool RegistroMemoria::ExisteChave(const CString &chave) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return m_chaves.contains(ChaveDobrada(chave));
}

std::optional<CString> RegistroMemoria::LeTexto(const CString &chave, const CString &nome, bool expande) {
  const std::optional<Valor> valor = Acha(chave, nome);
  const auto *const texto = valor ? std::get_if<Texto>(&*valor) : nullptr;
  if (texto == nullptr) {
    return std::nullopt;
  }
  const CString ateZero = texto->texto.substr(0, texto->texto.find('\0'));
  return expande && texto->bExpansivel ? Expandido(ateZero) : ateZero;
}

std::optional<std::uint32_t> RegistroMemoria::LeNumero(const CString &chave, const CString &nome) {
  const std::optional<Valor> valor = Acha(chave, nome);
  const auto *const numero = valor ? std::get_if<std::uint32_t>(&*valor) : nullptr;
  return numero != nullptr ? std::optional<std::uint32_t>(*numero) : std::nullopt;
}

void RegistroMemoria::CriaChave(const CString &chave) {
  const CString dobrada = ChaveDobrada(chave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  for (std::size_t fim = dobrada.find('\\'); fim != CString::npos; fim = dobrada.find('\\', fim + 1)) {
    m_chaves[dobrada.substr(0, fim)];
  }
  m_chaves[dobrada];
}

void RegistroMemoria::DefineTexto(const CString &chave, const CString &nome, const CString &texto) {
  Define(chave, nome, Texto{texto, false});
}

void RegistroMemoria::DefineTextoExpansivel(const CString &chave, const CString &nome, const CString &texto) {
  Define(chave, nome, Texto{texto, true});
}

void RegistroMemoria::DefineNumero(const CString &chave, const CString &nome, std::uint32_t numero) {
  Define(chave, nome, numero);
}

void RegistroMemoria::DefineBinario(const CString &chave, const CString &nome, const CString &bytes) {
  Define(chave, nome, Binario{bytes});
}

void RegistroMemoria::RemoveValor(const CString &chave, const CString &nome) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  const auto achada = m_chaves.find(ChaveDobrada(chave));
  if (achada != m_chaves.end()) {
    achada->second.erase(Maiusculas(nome));
  }
}

void RegistroMemoria::RemoveChave(const CString &chave) {
  const CString dobrada = ChaveDobrada(chave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  std::erase_if(m_chaves,
                [&dobrada](const auto &par) { return par.first == dobrada || par.first.starts_with(dobrada + "\\"); });
}

void RegistroMemoria::Define(const CString &chave, const CString &nome, const Valor &valor) {
  CriaChave(chave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_chaves[ChaveDobrada(chave)].insert_or_assign(Maiusculas(nome), valor);
}

std::optional<RegistroMemoria::Valor> RegistroMemoria::Acha(const CString &chave, const CString &nome) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  const auto achada = m_chaves.find(ChaveDobrada(chave));
  if (achada == m_chaves.end()) {
    return std::nullopt;
  }
  const auto valor = achada->second.find(Maiusculas(nome));
  return valor != achada->second.end() ? std::optional<Valor>(valor->second) : std::nullopt;
}

IRegistro &RegistroDoSistema() {
  return RegistroMemoria::DoProcesso();
}

}  // namespace plataforma
