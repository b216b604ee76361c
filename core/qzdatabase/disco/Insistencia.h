#ifndef KALVO_CORE_QZDATABASE_DISCO_INSISTENCIA_H
#define KALVO_CORE_QZDATABASE_DISCO_INSISTENCIA_H

#include "core/platform/Plataforma.h"

// What is tried again because another process may hold a file for a moment: a record write, a deletion, a move.

/// Attempts, and the pause after each failed one.
inline constexpr int kTentativasInsistencia = 50;
inline constexpr std::uint32_t kPausaInsistenciaMs = 10;

/// Repeats `acao` until `feito` holds. The outcome is judged by the look of the disk alone, whatever the action
/// reported.
template <typename A, typename F>
bool RepeteAte(A &&acao, F &&feito) {
  for (int i = 0; i < kTentativasInsistencia && !feito(); ++i) {
    if (acao()) {
      plataforma::Relogio().Espera(kPausaInsistenciaMs);
    }
  }
  return feito();
}

/// True when a file is known to be at the path.
inline bool ExisteNoCaminho(const CString &sCaminho) {
  bool bExiste = false;
  static_cast<void>(plataforma::Arquivos().Existe(sCaminho, &bExiste));
  return bExiste;
}

/// True when no file is at the path, now or already.
inline bool ApagaInsistindo(const CString &sCaminho) {
  return RepeteAte([&] { return static_cast<bool>(plataforma::Arquivos().Apaga(sCaminho)); },
                   [&] { return !ExisteNoCaminho(sCaminho); });
}

/// True when no file is at the path of origin any more.
inline bool MoveInsistindo(const CString &sOrigem, const CString &sDestino) {
  return RepeteAte([&] { return static_cast<bool>(plataforma::Arquivos().MoveSubstituindo(sOrigem, sDestino)); },
                   [&] { return !ExisteNoCaminho(sOrigem); });
}

#endif
