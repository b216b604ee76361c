#ifndef KALVO_QZDADOS_EXAME_H
#define KALVO_QZDADOS_EXAME_H

#include <optional>
#include <vector>

#include "qzdados/ArquivoEmExame.h"
#include "qzdados/Cabecalhos.h"
#include "qzdados/TipoArquivo.h"
#include "vehicles/DiarioConversao.h"

/// How a file is, from best to worst; the numbers are the program's exit codes.
enum class EEstado {
  Sao = 0,
  Reparavel = 1,   ///< the server refuses it or loses something by it; a repaired copy keeps every whole record
  Danificado = 2,  ///< what it lacks cannot be had from it
  Ilegivel = 3,
};

/// What the examination of one file has found. Texts are for the user, Windows-1252.
struct ResultadoExame {
  CString sCaminho;
  IdentidadeArquivo identidade;
  EEstado eEstado = EEstado::Sao;
  std::vector<CString> aAchados;  ///< what is wrong, or worth knowing before the file is used
  std::vector<CString> aNotas;    ///< more, for whoever asks for details

  std::uint64_t uiTamanho = 0;
  CabecalhosLidos cabecalhos;
  std::uint64_t uiCrcDados = 0;         ///< of everything behind the headers
  std::uint64_t uiUnidades = 0;         ///< whole records, or whole lines
  std::uint64_t uiTamanhoInteiros = 0;  ///< bytes of these
  /// So many records from the first on, or all whole lines, are those that the header was last written for; nothing
  /// where no such number exists or there is no header that tells.
  std::optional<std::uint64_t> conferem;
  std::uint64_t uiCrcSemPrimeiro = 0;  ///< of the vehicles without the first record, where there is one
  std::optional<RegDiario> diario;     ///< of a journal that holds

  /// Bytes behind the last whole record or line.
  std::uint64_t Fragmento() const { return uiTamanho - cabecalhos.uiInicioDados - uiTamanhoInteiros; }
  /// Makes the state no better than this one, for this reason.
  void Acha(EEstado ePior, const CString &sTexto);
};

/// Examines a file under a name, in one or two readings from end to end; memory does not depend on its length. Never
/// raises: a file that cannot be read is Ilegivel.
ResultadoExame ExaminaArquivo(const CString &sCaminho, const IdentidadeArquivo &identidade,
                              const FProgresso &progresso);

/// Examines an open file; raises CErroArquivo.
ResultadoExame ExaminaAberto(CArquivoEmExame &arquivo, const IdentidadeArquivo &identidade);

/// "1200 registros", "1 linha"; nothing for a kind that has neither.
CString TextoQuantidade(ETipoArquivo eTipo, std::uint64_t uiQuantidade);

/// Size of a record of this kind; 0 for other kinds.
std::uint64_t TamanhoRegistro(ETipoArquivo eTipo);

#endif
