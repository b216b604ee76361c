#ifndef KALVO_CORE_PLATFORM_RELOGIO_H
#define KALVO_CORE_PLATFORM_RELOGIO_H

#include <cstdint>

namespace plataforma {

/// Passing time. Any thread may call, several at once.
class IRelogio {
public:
  virtual ~IRelogio() = default;

  /// Gives up the processor for at least `milissegundos`; 0 yields once.
  virtual void Espera(std::uint32_t milissegundos) = 0;

protected:
  IRelogio() = default;
  IRelogio(const IRelogio &) = default;
  IRelogio &operator=(const IRelogio &) = default;
};

}  // namespace plataforma

#endif
