#ifndef KALVO_CORE_ENV_QZRELOGIO_H
#define KALVO_CORE_ENV_QZRELOGIO_H

#include <cstdint>

#include "core/platform/Relogio.h"
#include "core/platform/Tipos.h"

/// The system's notion of "now": the machine's local time, shifted by the registry value "QZ_DATETIME" when that is on.
///
/// The value has the form
/// "on;day/month/year;hour:minute:second:millisecond;day/month/year;hour:minute:second:millisecond". With a first
/// number other than 0 the clock shows the first moment (the target) when the machine shows the second one (the
/// reference), and runs on from there. A value that is missing, malformed or names no possible date shifts nothing. It
/// is read from the registry at every call, so a change takes effect at once.
///
/// A moment outside what calendar fields can express raises a CQZException. Any thread may call.
class QZRelogio {
public:
  /// A point in time in 100-nanosecond ticks since 1 January 1601.
  using Ticks100ns = std::uint64_t;

  static plataforma::CamposData GetCurrentTime_LocalTime();
  /// The current time in UTC.
  static Ticks100ns GetCurrentTime_SystemTimeAsFileTime();
  /// The current time in UTC, as calendar fields.
  static plataforma::CamposData GetCurrentTime_SystemTime();

  /// Seconds since midnight of the current local time.
  static std::uint32_t SegundosDesdeMeiaNoite();

  /// "hh:mm:ss" of a number of seconds; the three numbers also go to the outputs that are given. Computed in double
  /// precision and truncated, which makes some values come out one second short.
  static CString TextoHora(std::uint32_t uiSegundos, int *pHoras = nullptr, int *pMinutos = nullptr,
                           int *pSegundos = nullptr);
  /// "dd/mm/yyyy", or "dd/mm/yy" without the long year.
  static CString TextoData(bool bAnoLongo);
  /// The date text, a blank and the time text.
  static CString TextoDataHora(bool bAnoLongo);

  /// Calendar fields to ticks; fields that are no date raise a CQZException.
  static Ticks100ns Helper_SystemTimeToFileTime(const plataforma::CamposData &campos);
};

#endif
