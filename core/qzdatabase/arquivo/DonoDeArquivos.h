#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_DONODEARQUIVOS_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_DONODEARQUIVOS_H

#include "core/env/QZPath.h"
#include "core/platform/SecaoCritica.h"

class CQZFileBase;

/// The database as its files see it. It does not own them: they register themselves on construction and leave on
/// destruction.
class IDonoDeArquivos {
public:
  virtual ~IDonoDeArquivos() = default;

  virtual void AddFile(CQZFileBase *pFile) = 0;
  /// Takes a file out; an absent one is no matter.
  virtual void RemoveFile(CQZFileBase *pFile) = 0;

  virtual ModuloQZ GetModulo() const = 0;
  /// Place of the files' locks in the lock order.
  virtual plataforma::NivelTrava NivelDosArquivos() const = 0;
  /// True when new files bring their headers up to date only when they are finished.
  virtual bool FlushAdiado() const = 0;

protected:
  IDonoDeArquivos() = default;
  IDonoDeArquivos(const IDonoDeArquivos &) = default;
  IDonoDeArquivos &operator=(const IDonoDeArquivos &) = default;
};

#endif
