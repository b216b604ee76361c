#ifndef KALVO_QZDADOS_REPARO_H
#define KALVO_QZDADOS_REPARO_H

#include "qzdados/Exame.h"
#include "qzdados/Tela.h"

// New files beside damaged or unsuitable ones. None of these writes to its origin or over an existing file; each says
// what it did. They raise CErroArquivo; `identidade` is what the origin is taken for, and the new file will be.

/// A copy of a repairable file that the server opens: its whole records or lines, in their positions, behind one new
/// header where the origin had any. A sound file is not copied. The origin's state where nothing was written, and Sao
/// after a copy.
EEstado Recupera(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela);

/// A copy of a sound file with, or without, a header. The same answers; a file that has, or has not, a header already
/// is not copied.
EEstado PoeCabecalho(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela);
EEstado TiraCabecalho(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela);

/// The version file of a base of the present version, without a header.
void CriaVersao(const CString &sNovo, ITela &tela);

#endif
