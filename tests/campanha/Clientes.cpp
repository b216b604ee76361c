#include "tests/campanha/Clientes.h"

#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tests/campanha/Servidores.h"
#include "tests/campanha/VeiculoNumerado.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr DWORD kPrazoDeLeituraMs = 60000;

/// A client is asked for several writes at once: none of them waits for this program.
constexpr unsigned kDeUmaVez = 8;

/// The server process was not there, or went during the call: whether this did anything nobody was told.
bool ServidorSeFoi(HRESULT hr) {
  return HRESULT_FACILITY(hr) == FACILITY_WIN32 && HRESULT_CODE(hr) >= RPC_S_SERVER_UNAVAILABLE &&
         HRESULT_CODE(hr) <= RPC_S_CALL_FAILED_DNE;
}

Resposta Grava(IQZDF_Veiculos &veiculos, LONG lPos, std::uint32_t uiNumero) {
  const HRESULT hr = veiculos.Grava(&lPos, VeiculoNumerado(uiNumero));
  return {hr, {static_cast<std::uint32_t>(lPos)}};
}

Resposta LeTudo(IQZDF_Veiculos &veiculos) {
  Resposta lida;
  UINT uiQtd = 0;
  lida.hr = veiculos.GetQuantidadeRegistros(&uiQtd);
  if (lida.hr != S_OK || uiQtd == 0) {
    return lida;
  }
  std::vector<LONG> posicoes = Busca(veiculos, tagREG_FILTRO_VEICULOSPS{}, &lida.hr);
  std::vector<tagREG_VEICULOPS> veiculosLidos(posicoes.size());
  lida.hr = lida.hr == S_OK && posicoes.size() != uiQtd ? E_UNEXPECTED : lida.hr;
  lida.hr = lida.hr == S_OK ? veiculos.LePonteiros(uiQtd, posicoes.data(), veiculosLidos.data()) : lida.hr;
  for (const tagREG_VEICULOPS &veiculo : veiculosLidos) {
    lida.numeros.push_back(NumeroDe(veiculo));
  }
  return lida;
}

/// The client's side. What needs an object without having one fails.
int Obedece(const std::vector<std::string> &argumentos) {
  std::thread([dwPrazoMs = static_cast<DWORD>(std::stoul(argumentos[0]))] {
    Sleep(dwPrazoMs);
    TerminateProcess(GetCurrentProcess(), CCliente::kNaoVoltou);
  }).detach();
  const Apartamento apartamento;
  Veiculos spVeiculos;
  std::string sPedido;
  std::string sEmpresa;
  LONG lPos = 0;
  std::uint32_t uiNumero = 0;
  while (std::cin >> sPedido) {
    Resposta resposta{E_FAIL, {}};
    if (sPedido == "cria") {
      spVeiculos = Cria(&resposta.hr);
    } else if (sPedido == "solta") {
      spVeiculos.reset();
      resposta.hr = S_OK;
    } else if (sPedido == "abre" && std::cin >> sEmpresa && spVeiculos) {
      resposta.hr = Inicializa(*spVeiculos, sEmpresa);
    } else if (sPedido == "grava" && std::cin >> lPos >> uiNumero && spVeiculos) {
      resposta = Grava(*spVeiculos, lPos, uiNumero);
    } else if (sPedido == "le" && spVeiculos) {
      resposta = LeTudo(*spVeiculos);
    }
    std::ostringstream linha;
    linha << resposta.hr;
    for (const std::uint32_t uiDeles : resposta.numeros) {
      linha << " " << uiDeles;
    }
    std::cout << linha.str() << std::endl;
  }
  return 0;
}
const apoio::RegistraFilha kObedece("campanha-cliente", Obedece);

}  // namespace

Resposta CCliente::Ouve() {
  std::istringstream linha(m_processo.LeLinha());
  Resposta resposta;
  if (HRESULT hr = S_OK; linha >> hr) {
    resposta.hr = hr;
  }
  for (std::uint32_t uiNumero = 0; linha >> uiNumero;) {
    resposta.numeros.push_back(uiNumero);
  }
  return resposta;
}

Resposta CCliente::Pede(const std::string &sPedido) {
  Manda(sPedido);
  return Ouve();
}

HRESULT CCliente::Grava(LONG *plPos, std::uint32_t uiNumero) {
  MandaGravar(*plPos, uiNumero);
  const Resposta resposta = Ouve();
  *plPos = resposta.hr == S_OK ? resposta.Posicao() : *plPos;
  return resposta.hr;
}

/// Wine alone: a release that meets the end of the last call on the class object can wait for ever, inside Wine's own
/// runtime (which looks whether a call is under way before it says that it waits for its end). Then client and server
/// are ended, and it is read once more.
Resposta LeEmpresa(const std::string &sEmpresa) {
  Resposta lida;
  for (int iVez = 0; iVez < 2 && lida.hr == Resposta::kCalado; ++iVez) {
    CCliente cliente(kPrazoDeLeituraMs);
    lida = cliente.Pede("cria");
    if (ServidorSeFoi(lida.hr)) {
      // Wine alone: its service still named a server that had been ended by force. None of ours was reached.
      EsqueceServidores();
      lida = cliente.Pede("cria");
    }
    lida = lida.hr == S_OK ? cliente.Pede("abre " + sEmpresa) : lida;
    lida = lida.hr == S_OK ? cliente.Pede("le") : lida;
    if (cliente.Termina() == CCliente::kNaoVoltou) {
      std::cout << "a reading client did not come back; its server was ended\n";
      MataServidores();
    }
  }
  return lida;
}

CEscritores::CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador)
    : m_sEmpresa(sEmpresa), m_modo(modo) {
  for (unsigned i = 0; i < modo.uiQtd; ++i) {
    Escritor &escritor = m_escritores.emplace_back();
    escritor.gerador.seed(static_cast<std::uint32_t>(gerador()));
    escritor.uiNumero = livro.NumerosDe(i);
    // The others divide what is there in the same way, and what is added belongs to who adds it.
    for (std::size_t uiPos = 1; uiPos <= livro.Veiculos(); ++uiPos) {
      if (uiPos % modo.uiQtd == i) {
        escritor.minhas.push_back(static_cast<LONG>(uiPos));
      }
    }
    // One after another: several that activate at once each start a server under Wine.
    if (escritor.cliente.Pede("cria").hr != S_OK) {
      throw std::runtime_error("a client did not start");
    }
  }
}

void CEscritores::Comeca() {
  m_uiAtivos = m_modo.uiQtd;
  for (Escritor &escritor : m_escritores) {
    escritor.thread = std::jthread([this, &escritor](const std::stop_token &para) {
      Trabalha(escritor, para);
      const std::lock_guard trava(m_trava);
      --m_uiAtivos;
      m_novidade.notify_one();
    });
  }
}

void CEscritores::Trabalha(Escritor &escritor, const std::stop_token &para) {
  CCliente &cliente = escritor.cliente;
  std::mt19937 &gerador = escritor.gerador;
  HRESULT hr = Abre(cliente);
  bool bAberta = hr == S_OK;
  while (!para.stop_requested() && !ServidorSeFoi(hr) && hr != Resposta::kCalado) {
    if (!bAberta) {
      Sleep(gerador() % 20);
      hr = cliente.Pede("cria").hr;
      hr = hr == S_OK ? Abre(cliente) : hr;
      bAberta = hr == S_OK;
      continue;
    }
    const unsigned uiPorObjeto = m_modo.uiGravacoesPorObjeto;
    hr = Grava(escritor, uiPorObjeto != 0 ? 1 + gerador() % (2 * uiPorObjeto - 1) : kDeUmaVez);
    if (uiPorObjeto != 0 || (FAILED(hr) && gerador() % 2 == 0)) {
      cliente.Pede("solta");
      bAberta = false;
    }
  }
}

HRESULT CEscritores::Abre(CCliente &cliente) {
  const HRESULT hr = cliente.Pede("abre " + m_sEmpresa).hr;
  if (hr != S_OK) {
    AnotaRecusa(hr);
    cliente.Pede("solta");
  }
  return hr;
}

HRESULT CEscritores::Grava(Escritor &escritor, unsigned uiQtd) {
  std::vector<LONG> &minhas = escritor.minhas;
  std::vector<Gravacao> gravacoes(uiQtd);
  for (Gravacao &gravacao : gravacoes) {
    const bool bCabe = minhas.empty() || minhas.back() < m_modo.lMaiorPosicao;
    const bool bNovo = bCabe && (minhas.empty() || escritor.gerador() % 2 == 0);
    gravacao.lPos = bNovo ? 0 : minhas[escritor.gerador() % minhas.size()];
    gravacao.uiNumero = escritor.uiNumero++;
    escritor.cliente.MandaGravar(gravacao.lPos, gravacao.uiNumero);
  }
  HRESULT hr = S_OK;
  for (Gravacao &gravacao : gravacoes) {
    const Resposta resposta = escritor.cliente.Ouve();
    hr = hr == S_OK ? resposta.hr : hr;
    if (resposta.hr != S_OK) {
      gravacao.eFim = ServidorSeFoi(resposta.hr) ? Gravacao::Fim::SemResposta : Gravacao::Fim::Recusada;
      AnotaRecusa(resposta.hr);
    } else if (gravacao.lPos == 0) {
      gravacao.lPos = minhas.emplace_back(resposta.Posicao());
    }
    escritor.gravacoes.push_back(gravacao);
    const std::lock_guard trava(m_trava);
    ++m_uiGravacoes;
    m_novidade.notify_one();
  }
  return hr;
}

void CEscritores::AnotaRecusa(HRESULT hr) {
  if (!ServidorSeFoi(hr)) {
    const std::lock_guard trava(m_trava);
    ++m_recusas[hr];
  }
}

void CEscritores::EsperaGravacoes(unsigned uiQtd) {
  std::unique_lock trava(m_trava);
  m_novidade.wait(trava, [&] { return m_uiGravacoes >= uiQtd || m_uiAtivos == 0; });
}

void CEscritores::Para() {
  for (Escritor &escritor : m_escritores) {
    escritor.thread.request_stop();
  }
}

void CEscritores::Termina(CLivro *pLivro) {
  for (Escritor &escritor : m_escritores) {
    escritor.thread.join();
    escritor.cliente.Termina();
    pLivro->Anota(escritor.gravacoes);
  }
}

}  // namespace campanha
