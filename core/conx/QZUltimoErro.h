#ifndef KALVO_CORE_CONX_QZULTIMOERRO_H
#define KALVO_CORE_CONX_QZULTIMOERRO_H

#include "core/platform/Tipos.h"

/// One error of a routine.
struct CQZDadosDF_Erro {
  HRESULT hr = 0;
  std::int32_t iNumeroServidor = 0;  ///< the suite's number of the server that raised it
  std::int32_t lComplemento = 0;     ///< what the code alone does not say; its meaning belongs to the code
  CString sMensagem{};               ///< for people; may be empty
};

/// The last error of a routine; none at first. Not synchronised.
class CQZUltimoErro {
public:
  void SetErro(const CQZDadosDF_Erro &erro) { m_erro = erro; }
  void SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento);
  /// With a message in the form of printf.
  [[gnu::format(printf, 5, 6)]] void SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento,
                                             const char *lpFormato, ...);

  const CQZDadosDF_Erro &GetErro() const { return m_erro; }
  HRESULT GetUltimoHR() const { return m_erro.hr; }
  std::int32_t GetNumeroServidorUltimoHR() const { return m_erro.iNumeroServidor; }

  void LimpaErro() { m_erro = {}; }

private:
  CQZDadosDF_Erro m_erro;
};

#endif
