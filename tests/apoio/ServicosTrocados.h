#ifndef KALVO_TESTS_APOIO_SERVICOSTROCADOS_H
#define KALVO_TESTS_APOIO_SERVICOSTROCADOS_H

#include "core/platform/Plataforma.h"

namespace apoio {

/// Puts replaced services in force for a scope; a null one stays as it is. Scopes may nest.
class ServicosTrocados {
public:
  explicit ServicosTrocados(plataforma::IArquivos *arquivos, plataforma::IRegistro *registro = nullptr,
                            plataforma::IRelogio *relogio = nullptr, plataforma::IInformacoes *informacoes = nullptr,
                            plataforma::ICaixaMensagem *caixaMensagem = nullptr,
                            plataforma::IArquivosIni *arquivosIni = nullptr)
      : m_anteriores(plataforma::ServicosEmVigor()), m_novos(m_anteriores) {
    m_novos.arquivos = arquivos != nullptr ? arquivos : m_novos.arquivos;
    m_novos.registro = registro != nullptr ? registro : m_novos.registro;
    m_novos.relogio = relogio != nullptr ? relogio : m_novos.relogio;
    m_novos.informacoes = informacoes != nullptr ? informacoes : m_novos.informacoes;
    m_novos.caixaMensagem = caixaMensagem != nullptr ? caixaMensagem : m_novos.caixaMensagem;
    m_novos.arquivosIni = arquivosIni != nullptr ? arquivosIni : m_novos.arquivosIni;
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
