#include "core/env/CalendarioCivil.h"

#include <chrono>

namespace calendario {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using TicksDuracao = std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>;

constexpr sys_days kInicio = sys_days(std::chrono::year(1601) / 1 / 1);
constexpr std::uint16_t kPrimeiroAno = 1601;
constexpr std::uint16_t kUltimoAno = 30827;
constexpr std::uint16_t kMeses = 12;
constexpr std::uint16_t kMaisDias = 31;

/// False for what is no date. The calendar's own types keep eight bits of a day or month, so these are looked at first.
bool EhData(const plataforma::CamposData &campos) {
  return campos.ano >= kPrimeiroAno && campos.ano <= kUltimoAno && campos.mes <= kMeses && campos.dia <= kMaisDias &&
         year_month_day(std::chrono::year(campos.ano), std::chrono::month(campos.mes), std::chrono::day(campos.dia))
             .ok();
}

}  // namespace

bool ParaTicks(const plataforma::CamposData &campos, std::uint64_t *puiTicks) {
  if (!EhData(campos) || campos.hora > 23 || campos.minuto > 59 || campos.segundo > 59 || campos.milissegundo > 999) {
    return false;
  }
  const year_month_day data(std::chrono::year(campos.ano), std::chrono::month(campos.mes),
                            std::chrono::day(campos.dia));
  const TicksDuracao dia = days((sys_days(data) - kInicio).count());
  const TicksDuracao hora =
      hours(campos.hora) + minutes(campos.minuto) + seconds(campos.segundo) + milliseconds(campos.milissegundo);
  *puiTicks = static_cast<std::uint64_t>((dia + hora).count());
  return true;
}

bool ParaCampos(std::uint64_t ticks, plataforma::CamposData *pCampos) {
  if (static_cast<std::int64_t>(ticks) < 0) {
    return false;
  }
  const TicksDuracao total(static_cast<std::int64_t>(ticks));
  const days dia = std::chrono::duration_cast<days>(total);
  const sys_days data = kInicio + dia;
  const year_month_day civil(data);
  const std::chrono::hh_mm_ss hora(std::chrono::duration_cast<milliseconds>(total - dia));
  const auto u16 = [](auto valor) { return static_cast<std::uint16_t>(valor); };
  *pCampos = {u16(static_cast<int>(civil.year())),
              u16(static_cast<unsigned>(civil.month())),
              u16(std::chrono::weekday(data).c_encoding()),
              u16(static_cast<unsigned>(civil.day())),
              u16(hora.hours().count()),
              u16(hora.minutes().count()),
              u16(hora.seconds().count()),
              u16(hora.subseconds().count())};
  return true;
}

}  // namespace calendario
