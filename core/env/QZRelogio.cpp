#include "core/env/QZRelogio.h"

#include <array>
#include <cstdio>
#include <limits>
#include <optional>

#include "core/env/CalendarioCivil.h"
#include "core/env/QZException.h"
#include "core/platform/Plataforma.h"

namespace {

using plataforma::CamposData;

constexpr char kChaveAmbiente[] = "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";
constexpr char kValorDeslocamento[] = "QZ_DATETIME";
constexpr std::uint32_t kErroParametroInvalido = 87;

[[noreturn]] void Lanca(const char *lpTexto, std::uint32_t uiErroSO) {
  throw new CQZException(lpTexto, CQZException::kProdutoPrincipal, uiErroSO);
}

CamposData CamposOuLanca(QZRelogio::Ticks100ns ticks, const char *lpTexto) {
  CamposData campos;
  if (!calendario::ParaCampos(ticks, &campos)) {
    Lanca(lpTexto, kErroParametroInvalido);
  }
  return campos;
}

/// The moment that seven numbers (day, month, year, hour, minute, second, millisecond) stand for.
std::optional<std::uint64_t> Momento(const unsigned *numeros) {
  std::array<std::uint16_t, 7> n{};
  for (std::size_t i = 0; i < n.size(); ++i) {
    if (numeros[i] > std::numeric_limits<std::uint16_t>::max()) {
      return std::nullopt;
    }
    n[i] = static_cast<std::uint16_t>(numeros[i]);
  }
  std::uint64_t ticks = 0;
  if (!calendario::ParaTicks({n[2], n[1], 0, n[0], n[3], n[4], n[5], n[6]}, &ticks)) {
    return std::nullopt;
  }
  return ticks;
}

/// By how much the clock is shifted: target minus reference, modulo 2^64.
std::uint64_t Deslocamento() {
  const auto sValor = plataforma::Registro().LeTexto(kChaveAmbiente, kValorDeslocamento, false);
  if (!sValor || sValor->empty()) {
    return 0;
  }
  unsigned ligado = 0;
  std::array<unsigned, 14> n{};
  // At most nine digits: a number that does not fit would otherwise count by its low bits.
  const int lidos =
      std::sscanf(sValor->c_str(), "%9u;%9u/%9u/%9u;%9u:%9u:%9u:%9u;%9u/%9u/%9u;%9u:%9u:%9u:%9u", &ligado, &n[0], &n[1],
                  &n[2], &n[3], &n[4], &n[5], &n[6], &n[7], &n[8], &n[9], &n[10], &n[11], &n[12], &n[13]);
  const auto alvo = Momento(n.data());
  const auto referencia = Momento(n.data() + 7);
  return lidos == 15 && ligado != 0 && alvo && referencia ? *alvo - *referencia : 0;
}

QZRelogio::Ticks100ns AgoraLocal() {
  return QZRelogio::Helper_SystemTimeToFileTime(plataforma::Relogio().HoraLocal()) + Deslocamento();
}

template <typename... Numeros>
CString Formata(const char *lpFormato, Numeros... numeros) {
  std::array<char, 48> texto{};
  std::snprintf(texto.data(), texto.size(), lpFormato, numeros...);
  return texto.data();
}

CString FormataData(const CamposData &agora, bool bAnoLongo) {
  return bAnoLongo ? Formata("%02d/%02d/%04d", agora.dia, agora.mes, agora.ano)
                   : Formata("%02d/%02d/%02d", agora.dia, agora.mes, agora.ano % 100);
}

std::uint32_t SegundosDe(const CamposData &agora) {
  return agora.hora * 3600U + agora.minuto * 60U + agora.segundo;
}

}  // namespace

CamposData QZRelogio::GetCurrentTime_LocalTime() {
  return CamposOuLanca(AgoraLocal(), "GetCurrentTime_LocalTime: FileTimeToSystemTime");
}

QZRelogio::Ticks100ns QZRelogio::GetCurrentTime_SystemTimeAsFileTime() {
  Ticks100ns utc = 0;
  std::uint32_t uiErroSO = 0;
  if (!plataforma::Relogio().LocalParaUtc(AgoraLocal(), &utc, &uiErroSO)) {
    Lanca("GetCurrentTime_SystemTimeAsFileTime: LocalFileTimeToFileTime", uiErroSO);
  }
  return utc;
}

CamposData QZRelogio::GetCurrentTime_SystemTime() {
  return CamposOuLanca(GetCurrentTime_SystemTimeAsFileTime(), "GetCurrentTime_SystemTime: FileTimeToSystemTime");
}

std::uint32_t QZRelogio::SegundosDesdeMeiaNoite() {
  return SegundosDe(GetCurrentTime_LocalTime());
}

CString QZRelogio::TextoHora(std::uint32_t uiSegundos, int *pHoras, int *pMinutos, int *pSegundos) {
  const double horas = uiSegundos / 3600.0;
  const double minutos = 60 * (horas - static_cast<int>(horas));
  const int h = static_cast<int>(horas);
  const int m = static_cast<int>(minutos);
  const int s = static_cast<int>(60 * (minutos - m));
  const auto entrega = [](int *pSaida, int valor) {
    if (pSaida != nullptr) {
      *pSaida = valor;
    }
  };
  entrega(pHoras, h);
  entrega(pMinutos, m);
  entrega(pSegundos, s);
  return Formata("%02d:%02d:%02d", h, m, s);
}

CString QZRelogio::TextoData(bool bAnoLongo) {
  return FormataData(GetCurrentTime_LocalTime(), bAnoLongo);
}

CString QZRelogio::TextoDataHora(bool bAnoLongo) {
  const CamposData agora = GetCurrentTime_LocalTime();
  return FormataData(agora, bAnoLongo) + " " + TextoHora(SegundosDe(agora));
}

QZRelogio::Ticks100ns QZRelogio::Helper_SystemTimeToFileTime(const CamposData &campos) {
  Ticks100ns ticks = 0;
  if (!calendario::ParaTicks(campos, &ticks)) {
    Lanca("Helper_SystemTimeToFileTime: SystemTimeToFileTime", kErroParametroInvalido);
  }
  return ticks;
}
