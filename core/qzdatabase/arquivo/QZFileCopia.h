#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILECOPIA_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILECOPIA_H

#include "core/qzdatabase/arquivo/QZFileBase.h"

/// The destination of a whole-file copy. Initialising it deletes what is at its path and opens nothing; it carries the
/// source's bytes, header included, and manages none of its own. To be used by one thread.
class CQZFileCopia : public CQZFileBase {
public:
  CQZFileCopia(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase);
  ~CQZFileCopia() override { FinalizaNoDestrutor(); }

  /// The open file, to be written raw; only after a successful AbreArquivo.
  using CQZFileBase::Arquivo;

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT CarregaMemoria() override { return codigos::kOk; }
  void EsvaziaMemoria() override {}
};

#endif
