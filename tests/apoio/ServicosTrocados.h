#ifndef KALVO_TESTS_APOIO_SERVICOSTROCADOS_H
#define KALVO_TESTS_APOIO_SERVICOSTROCADOS_H

#include "core/platform/Plataforma.h"

namespace apoio {

/// Puts replaced services in force for a scope; a null one stays as it is. Scopes may nest.
class ServicosTrocados {
public:
  explicit ServicosTrocados(plataforma::IArquivos *pArquivos, plataforma::IRegistro *pRegistro = nullptr,
                            plataforma::IRelogio *pRelogio = nullptr, plataforma::IInformacoes *pInformacoes = nullptr,
                            plataforma::ICaixaMensagem *pCaixaMensagem = nullptr)
      : m_anteriores(plataforma::ServicosEmVigor()), m_novos(m_anteriores) {
    m_novos.arquivos = pArquivos != nullptr ? pArquivos : m_novos.arquivos;
    m_novos.registro = pRegistro != nullptr ? pRegistro : m_novos.registro;
    m_novos.relogio = pRelogio != nullptr ? pRelogio : m_novos.relogio;
    m_novos.informacoes = pInformacoes != nullptr ? pInformacoes : m_novos.informacoes;
    m_novos.caixaMensagem = pCaixaMensagem != nullptr ? pCaixaMensagem : m_novos.caixaMensagem;
    plataforma::SubstituiServicos(&m_novos);
  }
  ~ServicosTrocados() { plataforma::SubstituiServicos(&m_anteriores); }
  ServicosTrocados(const ServicosTrocados &) = delete;
  ServicosTrocados &operator=(const ServicosTrocados &) = delete;

private:
  const plataforma::Servicos &m_anteriores;
  plataforma::Servicos m_novos;
};

}  // namespace apoio

#endif
