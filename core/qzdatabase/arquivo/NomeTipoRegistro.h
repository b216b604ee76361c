#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_NOMETIPOREGISTRO_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_NOMETIPOREGISTRO_H

/// Name of a record type as it stands in the qualified names of the error records ("struct RegVeiculo"). Every record
/// type specialises it with a `kNome`.
template <typename T>
struct NomeTipoRegistro;

#endif
