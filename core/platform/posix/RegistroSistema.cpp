#include <unistd.h>

#include <cstring>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/Textos.h"
#include "core/platform/posix/RegistroMemoria.h"

namespace plataforma {
namespace {

CString ChaveDobrada(const CString &sChave) {
  const std::size_t ultimo = sChave.find_last_not_of('\\');
  return Maiusculas(sChave.substr(0, ultimo == CString::npos ? 0 : ultimo + 1));
}

/// The value of a variable, whose name's letter case does not matter; null when there is none.
const char *Variavel(const CString &sNome) {
  const CString sProcurada = Maiusculas(sNome) + "=";
  for (char **variavel = environ; *variavel != nullptr; ++variavel) {
    if (Maiusculas(CString(*variavel, ::strnlen(*variavel, sProcurada.size()))) == sProcurada) {
      return *variavel + sProcurada.size();
    }
  }
  return nullptr;
}

/// The text with each %NAME% of a known variable replaced; unknown ones stay as they are.
CString Expandido(const CString &sTexto) {
  CString sSaida;
  std::size_t inicio = 0;
  for (;;) {
    const std::size_t abre = sTexto.find('%', inicio);
    const std::size_t fecha = abre == CString::npos ? abre : sTexto.find('%', abre + 1);
    if (fecha == CString::npos) {
      return sSaida + sTexto.substr(inicio);
    }
    sSaida += sTexto.substr(inicio, abre - inicio);
    const char *const valor = Variavel(sTexto.substr(abre + 1, fecha - abre - 1));
    sSaida += valor != nullptr ? CString(valor) : sTexto.substr(abre, fecha - abre);
    // The final '%' of an unknown name may open the next one.
    inicio = valor != nullptr ? fecha + 1 : fecha;
  }
}

}  // namespace

RegistroMemoria &RegistroMemoria::DoProcesso() {
  return Permanente<RegistroMemoria>();
}

bool RegistroMemoria::ExisteChave(const CString &sChave) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return m_chaves.contains(ChaveDobrada(sChave));
}

std::optional<CString> RegistroMemoria::LeTexto(const CString &sChave, const CString &sNome, bool bExpande) {
  const std::optional<Valor> valor = Acha(sChave, sNome);
  const auto *const texto = valor ? std::get_if<Texto>(&*valor) : nullptr;
  if (texto == nullptr) {
    return std::nullopt;
  }
  const CString sAteZero = texto->texto.substr(0, texto->texto.find('\0'));
  return bExpande && texto->bExpansivel ? Expandido(sAteZero) : sAteZero;
}

std::optional<std::uint32_t> RegistroMemoria::LeNumero(const CString &sChave, const CString &sNome) {
  const std::optional<Valor> valor = Acha(sChave, sNome);
  const auto *const numero = valor ? std::get_if<std::uint32_t>(&*valor) : nullptr;
  return numero != nullptr ? std::optional<std::uint32_t>(*numero) : std::nullopt;
}

void RegistroMemoria::CriaChave(const CString &sChave) {
  const CString sDobrada = ChaveDobrada(sChave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  for (std::size_t fim = sDobrada.find('\\'); fim != CString::npos; fim = sDobrada.find('\\', fim + 1)) {
    m_chaves[sDobrada.substr(0, fim)];
  }
  m_chaves[sDobrada];
}

void RegistroMemoria::DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto) {
  Define(sChave, sNome, Texto{sTexto, false});
}

void RegistroMemoria::DefineTextoExpansivel(const CString &sChave, const CString &sNome, const CString &sTexto) {
  Define(sChave, sNome, Texto{sTexto, true});
}

void RegistroMemoria::DefineNumero(const CString &sChave, const CString &sNome, std::uint32_t numero) {
  Define(sChave, sNome, numero);
}

void RegistroMemoria::DefineBinario(const CString &sChave, const CString &sNome, const CString &sBytes) {
  Define(sChave, sNome, Binario{sBytes});
}

void RegistroMemoria::RemoveChave(const CString &sChave) {
  const CString sDobrada = ChaveDobrada(sChave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  std::erase_if(m_chaves, [&sDobrada](const auto &par) {
    return par.first == sDobrada || par.first.starts_with(sDobrada + "\\");
  });
}

void RegistroMemoria::Define(const CString &sChave, const CString &sNome, const Valor &valor) {
  CriaChave(sChave);
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_chaves[ChaveDobrada(sChave)].insert_or_assign(Maiusculas(sNome), valor);
}

std::optional<RegistroMemoria::Valor> RegistroMemoria::Acha(const CString &sChave, const CString &sNome) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  const auto achada = m_chaves.find(ChaveDobrada(sChave));
  if (achada == m_chaves.end()) {
    return std::nullopt;
  }
  const auto valor = achada->second.find(Maiusculas(sNome));
  return valor != achada->second.end() ? std::optional<Valor>(valor->second) : std::nullopt;
}

IRegistro &RegistroDoSistema() {
  return RegistroMemoria::DoProcesso();
}

}  // namespace plataforma
