#ifndef KALVO_CLIENT_SERVICO_H
#define KALVO_CLIENT_SERVICO_H

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "client/Argumentos.h"
#include "client/QZVeiculosCliente.h"

inline constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<LONG>::max();

/// The service of the command line's company, user and session, in an apartment of its own. Raises CErroEmpresa before
/// the server is asked for anything (EmpresaRegistrada.h), CErroUso and CQZErroVeiculos.
class CServico {
public:
  explicit CServico(const CArgumentos &argumentos);
  CQZVeiculos *operator->() { return &m_veiculos; }

private:
  CQZApartamento m_apartamento;
  CQZVeiculos m_veiculos;
};

/// The positions of the base from uiDe to uiAte, as far as there are any.
std::vector<LONG> Posicoes(CServico &servico, std::uint64_t uiDe, std::uint64_t uiAte);

/// Hands the records of the positions to fVeiculo, in order, many read by one call. Raises CInterrompido when the user
/// wishes to end.
void PercorreVeiculos(CServico &servico, const std::vector<LONG> &aPosicoes,
                      const std::function<void(LONG, const tagREG_VEICULOPS &)> &fVeiculo);

/// A failure of the service with what to do about it, in lines.
std::string TextoDaFalha(const CQZErroVeiculos &erro);

#endif
