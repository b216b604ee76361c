#ifndef KALVO_QZDADOS_RELATORIO_H
#define KALVO_QZDADOS_RELATORIO_H

#include "qzdados/Exame.h"

/// The result of an examination in one line: state, path, what there is or what is wrong. Windows-1252, ends with '\n';
/// control characters of names are shown as '.'.
CString LinhaRelatorio(const ResultadoExame &exame);

/// Everything that is known of the file, a line each, indented.
CString DetalhesRelatorio(const ResultadoExame &exame);

#endif
