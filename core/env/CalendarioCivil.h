#ifndef KALVO_CORE_ENV_CALENDARIOCIVIL_H
#define KALVO_CORE_ENV_CALENDARIOCIVIL_H

#include <cstdint>

#include "core/platform/Relogio.h"

/// Conversion between calendar fields of the Gregorian calendar and 100-nanosecond ticks since 1 January 1601, by
/// computation alone: platforms differ in the dates that they refuse. Pure functions.
namespace calendario {

/// False when the fields are no date or time of the years 1601 to 30827 (the day of the week is not looked at).
bool ParaTicks(const plataforma::CamposData &campos, std::uint64_t *puiTicks);

/// False for ticks beyond what a signed 64-bit count holds.
bool ParaCampos(std::uint64_t ticks, plataforma::CamposData *pCampos);

}  // namespace calendario

#endif
