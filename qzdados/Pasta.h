#ifndef KALVO_QZDADOS_PASTA_H
#define KALVO_QZDADOS_PASTA_H

#include "qzdados/Exame.h"

/// Examines every file of a directory (its path ends with a separator) and holds them against each other: the list of
/// created files against what is there, the journal of a conversion against the vehicles, the version against both. A
/// file that the list names and that is missing has a result of its own. In the order of the names; raises CErroArquivo
/// when the directory cannot be read.
std::vector<ResultadoExame> ExaminaPasta(const CString &sPasta, const FProgresso &progresso);

#endif
