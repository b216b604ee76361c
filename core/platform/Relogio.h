#ifndef KALVO_CORE_PLATFORM_RELOGIO_H
#define KALVO_CORE_PLATFORM_RELOGIO_H

#include <cstdint>

namespace plataforma {

/// A moment in calendar fields, as the system keeps its local time.
struct CamposData {
  std::uint16_t ano = 0;
  std::uint16_t mes = 0;        ///< 1 to 12
  std::uint16_t diaSemana = 0;  ///< 0 is Sunday
  std::uint16_t dia = 0;        ///< 1 to 31
  std::uint16_t hora = 0;
  std::uint16_t minuto = 0;
  std::uint16_t segundo = 0;
  std::uint16_t milissegundo = 0;
};

/// Passing time. Any thread may call, several at once.
class IRelogio {
public:
  virtual ~IRelogio() = default;

  /// Gives up the processor for at least `milissegundos`; 0 yields once.
  virtual void Espera(std::uint32_t milissegundos) = 0;

  /// Milliseconds since the machine started: a 32-bit count that wraps after about 49.7 days.
  virtual std::uint32_t Ticks() = 0;

  /// The machine's local time.
  virtual CamposData HoraLocal() = 0;

  /// Converts local time to UTC by the machine's present time zone; both in 100-nanosecond ticks since 1601. False,
  /// with the system's error number, when the moment cannot be converted.
  virtual bool LocalParaUtc(std::uint64_t local, std::uint64_t *puiUtc, std::uint32_t *puiErroSO) = 0;

protected:
  IRelogio() = default;
  IRelogio(const IRelogio &) = default;
  IRelogio &operator=(const IRelogio &) = default;
};

}  // namespace plataforma

#endif
