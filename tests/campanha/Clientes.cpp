#include "tests/campanha/Clientes.h"

#include <atomic>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tests/campanha/Servidores.h"
#include "tests/campanha/VeiculoNumerado.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// The server process was not there, or went during the call: whether this did anything nobody was told.
bool ServidorSeFoi(HRESULT hr) {
  return HRESULT_FACILITY(hr) == FACILITY_WIN32 && HRESULT_CODE(hr) >= RPC_S_SERVER_UNAVAILABLE &&
         HRESULT_CODE(hr) <= RPC_S_CALL_FAILED_DNE;
}

/// Has an object until its input ends.
int Segura(const std::vector<std::string> & /*argumentos*/) {
  const Apartamento apartamento;
  const Veiculos spVeiculos = Cria();
  std::cout << (spVeiculos ? "pronto" : "") << std::endl;
  std::cin.get();
  return 0;
}
const apoio::RegistraFilha kSegura("campanha-segura", Segura);

constexpr int kNaoVoltou = 3;

/// Reads all vehicles and prints the result and their numbers. Ends with kNaoVoltou where that takes a minute.
int LeTudo(const std::vector<std::string> &argumentos) {
  std::thread([] {
    Sleep(60000);
    TerminateProcess(GetCurrentProcess(), kNaoVoltou);
  }).detach();
  const Apartamento apartamento;
  HRESULT hr = S_OK;
  std::vector<tagREG_VEICULOPS> veiculos;
  Veiculos spVeiculos = Cria(&hr);
  if (ServidorSeFoi(hr)) {
    // Wine alone: its service still named a server that had been ended by force. None of ours was reached.
    EsqueceServidores();
    spVeiculos = Cria(&hr);
  }
  if (spVeiculos) {
    UINT uiQtd = 0;
    std::vector<LONG> posicoes;
    hr = Inicializa(*spVeiculos, argumentos[0]);
    hr = hr == S_OK ? spVeiculos->GetQuantidadeRegistros(&uiQtd) : hr;
    if (hr == S_OK && uiQtd != 0) {
      posicoes = Busca(*spVeiculos, tagREG_FILTRO_VEICULOSPS{}, &hr);
      veiculos.resize(posicoes.size());
      hr = hr == S_OK && posicoes.size() != uiQtd ? E_UNEXPECTED : hr;
      hr = hr == S_OK ? spVeiculos->LePonteiros(uiQtd, posicoes.data(), veiculos.data()) : hr;
    }
  }
  std::ostringstream linha;
  linha << hr;
  for (const tagREG_VEICULOPS &veiculo : veiculos) {
    linha << " " << NumeroDe(veiculo);
  }
  std::cout << linha.str() << std::endl;
  return 0;
}
const apoio::RegistraFilha kLeTudo("campanha-le", LeTudo);

/// The client that writes. It prints what it is about to do, and what it was told.
class CCliente {
public:
  explicit CCliente(const std::vector<std::string> &argumentos)
      : m_sEmpresa(argumentos[0]),
        m_uiCliente(Numero(argumentos[1])),
        m_uiClientes(Numero(argumentos[2])),
        m_uiPorObjeto(Numero(argumentos[3])),
        m_uiMaior(Numero(argumentos[4])),
        m_uiNumero(Numero(argumentos[6])),
        m_gerador(Numero(argumentos[7])) {
    // The others divide what is there in the same way, and what is added belongs to who adds it.
    for (unsigned uiPos = 1; uiPos <= Numero(argumentos[5]); ++uiPos) {
      if (uiPos % m_uiClientes == m_uiCliente) {
        m_minhas.push_back(static_cast<LONG>(uiPos));
      }
    }
  }

  int Trabalha() {
    HRESULT hr = S_OK;
    m_spVeiculos = Cria(&hr);
    std::cout << "pronto" << std::endl;
    std::string sLinha;
    std::getline(std::cin, sLinha);
    std::thread escuta([this] {
      std::string sFim;
      std::getline(std::cin, sFim);
      m_bPara = true;
    });
    escuta.detach();
    if (m_spVeiculos) {
      hr = Abre();
    }
    while (!m_bPara && !ServidorSeFoi(hr)) {
      if (!m_spVeiculos) {
        Sleep(m_gerador() % 20);
        m_spVeiculos = Cria(&hr);
        hr = m_spVeiculos ? Abre() : hr;
        continue;
      }
      hr = GravaUma();
      const bool bTroca = m_uiPorObjeto != 0 && m_gerador() % m_uiPorObjeto == 0;
      if (bTroca || (FAILED(hr) && m_gerador() % 2 == 0)) {
        m_spVeiculos.reset();
      }
    }
    m_spVeiculos.reset();
    return 0;
  }

private:
  static unsigned Numero(const std::string &sNumero) { return static_cast<unsigned>(std::stoul(sNumero)); }

  HRESULT Abre() {
    const HRESULT hr = Inicializa(*m_spVeiculos, m_sEmpresa);
    if (hr != S_OK) {
      std::cout << "recusada " << hr << std::endl;
      m_spVeiculos.reset();
    }
    return hr;
  }

  HRESULT GravaUma() {
    const bool bCabe = m_minhas.empty() || static_cast<unsigned>(m_minhas.back()) < m_uiMaior;
    LONG lPos = bCabe && (m_minhas.empty() || m_gerador() % 2 == 0) ? 0 : m_minhas[m_gerador() % m_minhas.size()];
    const bool bNovo = lPos == 0;
    const std::uint32_t uiNumero = m_uiNumero++;
    std::cout << "grava " << lPos << " " << uiNumero << std::endl;
    const HRESULT hr = m_spVeiculos->Grava(&lPos, VeiculoNumerado(uiNumero));
    std::cout << (hr == S_OK ? "feita " : "falhou ") << (hr == S_OK ? lPos : hr) << std::endl;
    if (hr == S_OK && bNovo) {
      m_minhas.push_back(lPos);
    }
    return hr;
  }

  std::string m_sEmpresa;
  unsigned m_uiCliente;
  unsigned m_uiClientes;
  unsigned m_uiPorObjeto;
  unsigned m_uiMaior;
  std::uint32_t m_uiNumero;
  std::mt19937 m_gerador;
  Veiculos m_spVeiculos;
  std::vector<LONG> m_minhas;
  std::atomic<bool> m_bPara{false};
};

int Grava(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  return CCliente(argumentos).Trabalha();
}
const apoio::RegistraFilha kGrava("campanha-grava", Grava);

/// Reads a client's lines.
std::vector<Gravacao> LeLinhas(const std::vector<std::string> &linhas, std::map<HRESULT, unsigned> *pRecusas) {
  std::vector<Gravacao> gravacoes;
  for (const std::string &sLinha : linhas) {
    std::istringstream linha(sLinha);
    std::string sOque;
    HRESULT hr = S_OK;
    linha >> sOque;
    if (sOque == "grava") {
      linha >> gravacoes.emplace_back().lPos >> gravacoes.back().uiNumero;
    } else if (sOque == "feita") {
      gravacoes.back().eFim = Gravacao::Fim::Confirmada;
      linha >> gravacoes.back().lPos;
    } else if (linha >> hr && !ServidorSeFoi(hr)) {
      ++(*pRecusas)[hr];
      if (sOque == "falhou") {
        gravacoes.back().eFim = Gravacao::Fim::Recusada;
      }
    }
  }
  return gravacoes;
}

}  // namespace

CSeguraServidor::CSeguraServidor() {
  if (m_cliente.LeLinha() != "pronto") {
    throw std::runtime_error("no server");
  }
}

/// Wine alone: a release that meets the end of the last call on the class object can wait for ever, inside Wine's own
/// runtime (which looks whether a call is under way before it says that it waits for its end). Then client and server
/// are ended, and it is read once more.
Leitura LeEmpresa(const std::string &sEmpresa) {
  std::string sLinha;
  for (int iVez = 0; iVez < 2 && sLinha.empty(); ++iVez) {
    apoio::ProcessoFilho filho("campanha-le", {sEmpresa});
    sLinha = filho.LeLinha();
    if (filho.Espera() == kNaoVoltou) {
      std::cout << "a reading client did not come back; its server was ended\n";
      MataServidores();
    }
  }
  std::istringstream linha(sLinha);
  Leitura leitura;
  linha >> leitura.hr;
  for (std::uint32_t uiNumero = 0; linha >> uiNumero;) {
    leitura.numeros.push_back(uiNumero);
  }
  return leitura;
}

CEscritores::CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador) {
  for (unsigned i = 0; i < modo.uiQtd; ++i) {
    const std::uint32_t aNumeros[] = {i,
                                      modo.uiQtd,
                                      modo.uiGravacoesPorObjeto,
                                      modo.uiMaiorPosicao,
                                      static_cast<std::uint32_t>(livro.Veiculos()),
                                      livro.NumerosDe(i),
                                      static_cast<std::uint32_t>(gerador())};
    std::vector<std::string> argumentos{sEmpresa};
    for (const std::uint32_t uiNumero : aNumeros) {
      argumentos.push_back(std::to_string(uiNumero));
    }
    // One after another: several that activate at once each start a server under Wine.
    if (m_clientes.emplace_back(argumentos).processo.LeLinha() != "pronto") {
      throw std::runtime_error("a client did not start");
    }
  }
}

CEscritores::~CEscritores() {
  for (Cliente &cliente : m_clientes) {
    if (cliente.leitor.joinable()) {
      cliente.processo.Mata();
      cliente.leitor.join();
    }
  }
}

void CEscritores::Comeca() {
  m_uiEscutados = static_cast<unsigned>(m_clientes.size());
  for (Cliente &cliente : m_clientes) {
    cliente.leitor = std::thread([this, &cliente] { Escuta(cliente); });
  }
  for (Cliente &cliente : m_clientes) {
    cliente.processo.EnviaLinha("vai");
  }
}

void CEscritores::Escuta(Cliente &cliente) {
  bool bAcabou = false;
  while (!bAcabou) {
    const std::string sLinha = cliente.processo.LeLinha();
    bAcabou = sLinha.empty();
    const std::lock_guard trava(m_trava);
    if (bAcabou) {
      --m_uiEscutados;
    } else {
      cliente.linhas.push_back(sLinha);
      ++m_uiLinhas;
    }
    m_linhaNova.notify_one();
  }
}

void CEscritores::EsperaLinhas(unsigned uiLinhas) {
  std::unique_lock trava(m_trava);
  m_linhaNova.wait(trava, [&] { return m_uiLinhas >= uiLinhas || m_uiEscutados == 0; });
}

void CEscritores::Para() {
  for (Cliente &cliente : m_clientes) {
    cliente.processo.EnviaLinha("para");
  }
}

void CEscritores::Termina(CLivro *pLivro) {
  for (Cliente &cliente : m_clientes) {
    cliente.leitor.join();
    cliente.processo.Espera();
    pLivro->Anota(LeLinhas(cliente.linhas, &m_recusas));
  }
}

}  // namespace campanha
