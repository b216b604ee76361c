#ifndef KALVO_QZDADOS_TIPOARQUIVO_H
#define KALVO_QZDADOS_TIPOARQUIVO_H

#include "core/platform/Tipos.h"

/// What a file of a company holds, by its name.
enum class ETipoArquivo {
  Veiculos,  ///< the vehicles, records of 256 bytes
  Versao,    ///< the base's version, one record of 16 bytes
  Lista,     ///< the list of created files, a text file
  Texto,     ///< lines of text
  Diario,    ///< the journal of a conversion
  Intencao,  ///< what a server was about to write
  Log,
  Desconhecido,  ///< a data file whose records are not known, or no data file at all
};

/// A file's kind and place among the others.
struct IdentidadeArquivo {
  ETipoArquivo eTipo = ETipoArquivo::Desconhecido;
  /// The name of the data file, as the server writes it: the one that a header carries. That of X.TRA is X.DAT.
  CString sNome;
  /// A file that an interruption left and that the next opening of the company takes care of.
  bool bSobra = false;
};

/// Letter case does not matter for the names that the server knows.
IdentidadeArquivo IdentificaNome(const CString &sNome);

/// What a file of this kind is called to the user; Windows-1252.
CString NomeDoTipo(ETipoArquivo eTipo);

/// The last part of a path, whichever separators it has.
CString NomeDoCaminho(const CString &sCaminho);

#endif
