#ifndef KALVO_CORE_QZDATABASE_DISCO_INSISTENCIA_H
#define KALVO_CORE_QZDATABASE_DISCO_INSISTENCIA_H

#include <functional>

#include "core/platform/Plataforma.h"

// What is tried again because another process may hold a file for a moment: an opening, a record write, a deletion, a
// move.

/// Attempts at an opening; at everything else; and the pause after each attempt that wants another one.
inline constexpr int kTentativasAbertura = 100;
inline constexpr int kTentativasInsistencia = 50;
inline constexpr std::uint32_t kPausaInsistenciaMs = 10;

/// What an attempt has come to.
enum class EVeredito { Acabou, OutraVez };

/// Makes at most `iTentativas` attempts, until one has come to an end, well or badly. `tentativa(bUltima)` decides that
/// itself, while the operating system's answer to its own call is at hand: what the disk looks like afterwards may be
/// somebody else's doing.
template <typename F>
void Insiste(int iTentativas, F &&tentativa) {
  for (int i = 1; i <= iTentativas && tentativa(i == iTentativas) == EVeredito::OutraVez; ++i) {
    plataforma::Relogio().Espera(kPausaInsistenciaMs);
  }
}

/// Deletes a file. No failure when it is gone by this call, or when the call says that nothing is there.
plataforma::FalhaArquivo ApagaInsistindo(const CString &sCaminho);

/// What is to become of a move whose first attempt failed.
enum class EMovimento { Tenta, Espera, Desiste };
using AntesDeMoverDeNovo = std::function<EMovimento()>;

/// Moves a file onto another or onto a free name. No failure only when this very call moved it: a file of origin that
/// vanishes between two attempts is one. `antesDeMoverDeNovo`, when given, is asked before each attempt but the first.
plataforma::FalhaArquivo MoveInsistindo(const CString &sOrigem, const CString &sDestino,
                                        const AntesDeMoverDeNovo &antesDeMoverDeNovo = {});

#endif
