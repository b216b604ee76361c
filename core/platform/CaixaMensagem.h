#ifndef KALVO_CORE_PLATFORM_CAIXAMENSAGEM_H
#define KALVO_CORE_PLATFORM_CAIXAMENSAGEM_H

#include "core/platform/Tipos.h"

namespace plataforma {

// Icons of a message box, as bits of its type; the exclamation mark is a combination. The remaining bits choose the
// buttons and are the platform's.

inline constexpr std::uint32_t kIconeErro = 0x10;
inline constexpr std::uint32_t kIconePergunta = 0x20;
inline constexpr std::uint32_t kIconeExclamacao = 0x30;
inline constexpr std::uint32_t kIconeInformacao = 0x40;

/// Which window a box belongs to.
enum class DonoCaixa {
  Nenhum,
  JanelaDaThread,  ///< the main window of the calling thread, none when it has none
};

/// Modal message boxes. Any thread may call.
class ICaixaMensagem {
public:
  virtual ~ICaixaMensagem() = default;

  /// Shows a box, blocks until somebody answers it and returns the answer. Where nobody can see a box (a service, a
  /// server activated without a desktop) returns 0 at once: there a box would hold its thread, and whatever locks that
  /// thread has, for ever.
  virtual int Mostra(const CString &sTexto, const CString &sTitulo, std::uint32_t tipo, DonoCaixa eDono) = 0;

protected:
  ICaixaMensagem() = default;
  ICaixaMensagem(const ICaixaMensagem &) = default;
  ICaixaMensagem &operator=(const ICaixaMensagem &) = default;
};

}  // namespace plataforma

#endif
