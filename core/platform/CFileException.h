#ifndef KALVO_CORE_PLATFORM_CFILEEXCEPTION_H
#define KALVO_CORE_PLATFORM_CFILEEXCEPTION_H

#include "core/platform/CException.h"
#include "core/platform/FalhaArquivo.h"
#include "core/platform/Tipos.h"

/// A failed file operation of the framework, thrown by pointer. The file services of this system return the same facts
/// as a FalhaArquivo instead; the exception comes from code that uses the framework's own file classes.
class CFileException : public CException {
public:
  /// `lErroSO` is the platform's error number, 0 or below when there is none.
  CFileException(plataforma::CausaArquivo eCausa, LONG lErroSO) : m_eCausa(eCausa), m_lErroSO(lErroSO) {}

  const CRuntimeClass *GetRuntimeClass() const override {
    static constexpr CRuntimeClass classe{"CFileException"};
    return &classe;
  }

  plataforma::CausaArquivo GetCausa() const { return m_eCausa; }
  LONG GetErroSO() const { return m_lErroSO; }

private:
  plataforma::CausaArquivo m_eCausa;
  LONG m_lErroSO;
};

#endif
