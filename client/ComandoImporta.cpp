#include "client/ComandoImporta.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "client/BarraProgresso.h"
#include "client/Codificacao.h"
#include "client/Console.h"
#include "client/Destino.h"
#include "client/EmpresaRegistrada.h"
#include "client/Importacao.h"
#include "client/Interrupcao.h"
#include "client/Servico.h"

namespace {

CCodigosConhecidos CodigosDaBase(CServico &servico) {
  CCodigosConhecidos codigos;
  PercorreVeiculos(servico, Posicoes(servico, 1, kMaiorPosicao),
                   [&](LONG, const auto &veiculo) { codigos.Acrescenta(veiculo); });
  return codigos;
}

/// Whether a write that failed may have happened nevertheless: the call was lost on its way, or broke off.
bool PodeTerGravado(HRESULT hr) {
  const auto uiOrigem = static_cast<std::uint32_t>(hr) >> 16;
  constexpr std::uint32_t kDoServidor = 0x8108;
  constexpr std::uint32_t kDeArquivo = 0x8004;
  return (uiOrigem != kDoServidor && uiOrigem != kDeArquivo) || EhFalhaDeMaquina(hr);
}

/// One import of one file.
class CImportador {
public:
  explicit CImportador(const CArgumentos &argumentos)
      : m_argumentos(argumentos),
        m_uiDesdeLinha(argumentos.Numero("desde-linha", 1, kSemLimite, 1)),
        m_conteudo(Decodifica(LeBytes(argumentos.Valores().front()), CodificacaoDeArgumentos(argumentos))),
        m_leitor(m_conteudo) {
    if (!m_conteudo.sAviso.empty()) {
      EscreveErro(m_conteudo.sAviso + "\n");
    }
  }

  ESaida Executa() {
    if (m_argumentos.Tem("ensaio")) {
      return Ensaia();
    }
    if (m_argumentos.Tem("tudo-ou-nada")) {
      Percorre(nullptr, [](const tagREG_VEICULOPS &) {});
      if (m_resultado.bParada || m_resultado.uiRecusados != 0) {
        Escreve("Gravados: 0  Recusados: " + std::to_string(m_resultado.uiRecusados) + "\n");
        return m_resultado.bParada ? kInterrompida : kLinhasRecusadas;
      }
      m_resultado = {};
    }
    return Importa();
  }

private:
  ESaida Ensaia() {
    CCodigosConhecidos conhecidos;
    if (SemRepetir()) {
      CServico servico(m_argumentos);
      conhecidos = CodigosDaBase(servico);
    }
    Percorre(SemRepetir() ? &conhecidos : nullptr, [](const tagREG_VEICULOPS &) {});
    Escreve("Ensaio, nada foi gravado. Bons: " + std::to_string(m_resultado.uiGravados) + Contagens() + "\n");
    return Saida();
  }

  ESaida Importa() {
    CServico servico(m_argumentos);
    CCodigosConhecidos conhecidos;
    if (SemRepetir()) {
      conhecidos = CodigosDaBase(servico);
    }
    const auto tInicio = std::chrono::steady_clock::now();
    std::string sFalha;
    try {
      Percorre(SemRepetir() ? &conhecidos : nullptr,
               [&](const tagREG_VEICULOPS &veiculo) { servico->Inclui(veiculo); });
    } catch (const CQZErroVeiculos &erro) {
      sFalha = TextoDaFalha(erro);
      sFalha += PodeTerGravado(erro.GetHR())
                    ? "O veículo da linha "_pt + std::to_string(m_resultado.uiProximaLinha) +
                          " pode já estar na base: confira, ou continue com --sem-repetir.\n"_pt
                    : std::string();
    }
    const std::chrono::duration<double> tempo = std::chrono::steady_clock::now() - tInicio;
    Escreve("Gravados: " + std::to_string(m_resultado.uiGravados) + Contagens() + Ritmo(tempo.count()) + "\n");
    EscreveErro(sFalha);
    if (!sFalha.empty() || m_resultado.bParada) {
      EscreveErro(OndeParou());
      return kInterrompida;
    }
    return Saida();
  }

  void Percorre(CCodigosConhecidos *pConhecidos, const std::function<void(const tagREG_VEICULOPS &)> &Grava) {
    CBarraProgresso barra;
    const CPassosImportacao passos{Grava,
                                   [&](const CLinhaCsv &linha) {
                                     barra.Limpa();
                                     EscreveErro("linha " + std::to_string(linha.uiLinha) + ": " + linha.sErro + "\n");
                                   },
                                   [&](std::size_t uiFeito, std::size_t uiTotal) { barra.Mostra(uiFeito, uiTotal); },
                                   CTrabalhoInterrompivel::Pedida};
    ImportaCsv(m_leitor, m_uiDesdeLinha, pConhecidos, passos, m_resultado);
  }

  bool SemRepetir() const { return m_argumentos.Tem("sem-repetir"); }

  ESaida Saida() const {
    return m_resultado.bParada ? kInterrompida : m_resultado.uiRecusados != 0 ? kLinhasRecusadas : kSucesso;
  }

  std::string Contagens() const {
    return "  Recusados: " + std::to_string(m_resultado.uiRecusados) +
           (SemRepetir() ? "  Repetidos: " + std::to_string(m_resultado.uiRepetidos) : "");
  }

  std::string Ritmo(double dSegundos) const {
    std::array<char, 120> aTempo;
    std::snprintf(aTempo.data(), aTempo.size(), "  Tempo: %.2f s  (%.0f registros/s)", dSegundos,
                  dSegundos > 0 ? static_cast<double>(m_resultado.uiGravados) / dSegundos : 0.0);
    std::string sTempo = aTempo.data();
    std::replace(sTempo.begin(), sTempo.end(), '.', ',');
    return sTempo;
  }

  std::string OndeParou() const {
    const std::string sUltima = m_resultado.uiUltimaGravada == 0
                                    ? "Nenhuma linha foi gravada."
                                    : "Última linha gravada: "_pt + std::to_string(m_resultado.uiUltimaGravada) + ".";
    return "A importação parou. "_pt + sUltima + " Para continuar: --desde-linha " +
           std::to_string(m_resultado.uiProximaLinha) + "\n";
  }

  const CTrabalhoInterrompivel m_trabalho;
  const CArgumentos &m_argumentos;
  std::size_t m_uiDesdeLinha;
  CConteudoTexto m_conteudo;
  CLeitorCsv m_leitor;
  CResultadoImportacao m_resultado;
};

}  // namespace

ESaida Importa(const CArgumentos &argumentos) {
  ExigeEmpresa(*argumentos.Opcao("empresa"));
  return CImportador(argumentos).Executa();
}
