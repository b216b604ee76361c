#include "client/Servico.h"

#include <algorithm>
#include <cstddef>

#include "client/Codificacao.h"
#include "client/EmpresaRegistrada.h"
#include "client/Interrupcao.h"
#include "client/Programa.h"
#include "client/Remedios.h"

namespace {

/// Records of one LePonteiros call: enough to make the calls few, small enough to keep each message below 100 KB.
constexpr std::size_t kBlocoLeitura = 500;

const std::string &Empresa(const CArgumentos &argumentos) {
  const std::string &sCodigo = *argumentos.Opcao("empresa");
  ExigeEmpresa(sCodigo);
  return sCodigo;
}

}  // namespace

CServico::CServico(const CArgumentos &argumentos)
    : m_veiculos(Empresa(argumentos), UsuarioDeArgumentos(argumentos), SessaoDeArgumentos(argumentos)) {}

std::vector<LONG> Posicoes(CServico &servico, std::uint64_t uiDe, std::uint64_t uiAte) {
  const std::uint64_t uiUltima = std::min<std::uint64_t>(uiAte, servico->GetQuantidadeRegistros());
  std::vector<LONG> aPosicoes;
  for (std::uint64_t uiPosicao = uiDe; uiPosicao <= uiUltima; ++uiPosicao) {
    aPosicoes.push_back(static_cast<LONG>(uiPosicao));
  }
  return aPosicoes;
}

void PercorreVeiculos(CServico &servico, const std::vector<LONG> &aPosicoes,
                      const std::function<void(LONG, const tagREG_VEICULOPS &)> &fVeiculo) {
  const CTrabalhoInterrompivel trabalho;
  for (auto it = aPosicoes.begin(); it != aPosicoes.end();) {
    if (CTrabalhoInterrompivel::Pedida()) {
      throw CInterrompido();
    }
    const std::size_t uiBloco = std::min(kBlocoLeitura, static_cast<std::size_t>(aPosicoes.end() - it));
    const std::vector<LONG> aBloco(it, it + static_cast<std::ptrdiff_t>(uiBloco));
    const std::vector<tagREG_VEICULOPS> aVeiculos = servico->LePonteiros(aBloco);
    for (std::size_t i = 0; i < uiBloco; ++i) {
      fVeiculo(aBloco[i], aVeiculos[i]);
    }
    it += static_cast<std::ptrdiff_t>(uiBloco);
  }
}

std::string TextoDaFalha(const CQZErroVeiculos &erro) {
  const std::string sRemedio = RemedioDoErro(static_cast<std::uint32_t>(erro.GetHR()));
  return std::string(erro.what()) + "\n" + (sRemedio.empty() ? "" : "O que fazer: " + sRemedio + ".\n");
}
