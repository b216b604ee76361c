#include "tests/apoio/Corrida.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ChaveCabecalho.h"

namespace apoio {
namespace {

/// Nanoseconds on a clock that the processes of the machine share.
long long Agora() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void EsperaAte(long long llInstante) {
  while (Agora() < llInstante) {
    std::this_thread::yield();
  }
}

/// Waits up to a tenth of a millisecond before and after each open and before each move, so that processes meet which
/// otherwise, started together, stay in step.
class ArquivosSemPasso final : public ArquivosDecorado {
public:
  explicit ArquivosSemPasso(unsigned uiSemente)
      : ArquivosDecorado(*plataforma::ServicosDoSistema().arquivos), m_gerador(uiSemente) {}

  FalhaArquivo Abre(const CString &sCaminho, const plataforma::ModoAbertura &modo,
                    std::unique_ptr<plataforma::IArquivoAberto> *pArquivo) override {
    Demora();
    const FalhaArquivo falha = ArquivosDecorado::Abre(sCaminho, modo, pArquivo);
    Demora();
    return falha;
  }
  FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) override {
    Demora();
    return ArquivosDecorado::MoveSubstituindo(sOrigem, sDestino);
  }

private:
  void Demora() { EsperaAte(Agora() + static_cast<long long>(m_gerador() % 100000)); }

  std::minstd_rand m_gerador;
};

/// Tries of a part that meets a busy file; each has waited about a second.
constexpr int kTentativas = 30;

/// Enough for the last child to have its order before the gate opens.
constexpr long long kAntecedencia = 2000000;

}  // namespace

unsigned DoAmbiente(const char *lpNome, unsigned uiSenao) {
  const char *const lpValor = std::getenv(lpNome);
  return lpValor != nullptr ? static_cast<unsigned>(std::stoul(lpValor)) : uiSenao;
}

std::string LinhaDaLista(const CString &sNome) {
  return std::string(1, static_cast<char>(sNome.size())) + std::string(3, '\0') + sNome;
}

Corrida::Corrida(const std::string &sNome, const EmpresaTeste &empresa, unsigned uiProcessos,
                 const std::string &sConfiguracao)
    : m_empresa(empresa) {
  for (unsigned i = 0; i < uiProcessos; ++i) {
    m_filhos.emplace_back(
        sNome, std::vector<std::string>{empresa.Codigo(), empresa.Caminho(""), std::to_string(i), sConfiguracao});
  }
  m_sTitulo = std::to_string(uiProcessos) + " processes, headers " + (CabecalhosLigados() ? "on" : "off") + ", " +
              sConfiguracao + ": ";
}

Corrida::~Corrida() {
  for (ProcessoFilho &filho : m_filhos) {
    EXPECT_EQ(filho.Espera(), 0);
  }
  std::ostringstream sLinha;
  sLinha << m_sTitulo << m_uiRodada << " rounds, " << m_uiConfirmados << " acknowledged";
  std::size_t uiErrados = 0;
  for (const auto &[sOque, qtd] : m_contas) {
    sLinha << ", " << qtd << " " << sOque;
    uiErrados += qtd;
  }
  std::cout << sLinha.str() << std::endl;
  EXPECT_EQ(uiErrados, 0U) << "in the line above";
}

bool Corrida::Proxima() {
  for (const CString &sNome : Arquivos()) {
    if (plataforma::Arquivos().Apaga(m_empresa.Caminho(sNome))) {
      throw std::runtime_error("cannot delete " + sNome);
    }
  }
  if (m_uiRodada == Rodadas()) {
    return false;
  }
  ++m_uiRodada;
  return true;
}

std::vector<unsigned> Corrida::Roda() {
  const std::string sInstante = std::to_string(Agora() + kAntecedencia);
  for (ProcessoFilho &filho : m_filhos) {
    filho.EnviaLinha(sInstante);
  }
  std::vector<unsigned> feitos;
  for (ProcessoFilho &filho : m_filhos) {
    std::istringstream resposta(filho.LeLinha());
    HRESULT hr = codigos::kOk;
    if (!(resposta >> feitos.emplace_back() >> hr)) {
      throw std::runtime_error("a child has ended");
    }
    m_uiConfirmados += feitos.back();
    if (Falhou(hr)) {
      Recusa(hr);
    }
  }
  return feitos;
}

void Corrida::Conta(const std::string &sOque, std::size_t qtd) {
  if (qtd != 0) {
    m_contas[sOque] += qtd;
  }
}

void Corrida::Recusa(HRESULT hr) {
  std::ostringstream sOque;
  sOque << "with 0x" << std::hex << BitsResultado(hr);
  Conta("refused");
  Conta(sOque.str());
}

std::string Corrida::Dados(const CString &sNome) const {
  const std::string sBytes = m_empresa.Existe(sNome) ? m_empresa.Le(sNome) : "";
  return sBytes.substr(CabecalhosLigados() ? std::min(kTamanhoCabecalho, sBytes.size()) : 0);
}

void Corrida::ConfereRegistros(const CString &sNome, std::size_t cbRegistro, std::multiset<std::string> registros) {
  const std::string sDados = Dados(sNome);
  for (std::size_t i = 0; i < sDados.size(); i += cbRegistro) {
    const auto achado = registros.find(sDados.substr(i, cbRegistro));
    if (achado == registros.end()) {
      Conta("written by nobody or twice");
    } else {
      registros.erase(achado);
    }
  }
  Conta("lost", registros.size());
}

void Corrida::ConferePasta(const std::vector<CString> &listados) {
  std::string sLista = Dados("QZDATABASE_FILE_CTRL.DAT");
  for (const CString &sNome : listados) {
    const std::string sLinha = LinhaDaLista(sNome);
    const std::size_t onde = sLista.find(sLinha);
    Conta("names missing", onde == std::string::npos);
    sLista.erase(std::min(onde, sLista.size()), sLinha.size());
  }
  Conta("names twice", !sLista.empty());
  for (const CString &sNome : Arquivos()) {
    Conta("left over", !sNome.ends_with(".DAT"));
  }
}

std::vector<CString> Corrida::Arquivos() const {
  std::vector<CString> nomes;
  if (plataforma::Arquivos().Lista(m_empresa.Caminho(""), &nomes)) {
    throw std::runtime_error("cannot list the directory");
  }
  return nomes;
}

int Corrida::Corre(const std::vector<std::string> &argumentos, const Parte &parte) {
  RegistroTeste registro;
  const CString sChave = CString(kChaveSuite) + "Empresas\\" + argumentos[0];
  if (!plataforma::Registro().ExisteChave(sChave)) {  // a system without a registry has one in each process
    registro.DefineTexto(sChave, "DF", argumentos[1]);
  }
  ArquivosSemPasso arquivos(static_cast<unsigned>(std::stoul(argumentos[2])) + 1);
  long long llInstante = 0;
  for (unsigned uiRodada = 1; std::cin >> llInstante; ++uiRodada) {
    // In step and out of step are different races.
    const ServicosTrocados servicos(uiRodada % 2 == 0 ? &arquivos : nullptr);
    EsperaAte(llInstante);
    unsigned uiFeitos = 0;
    HRESULT hr = codigos::kArqCompartilhamento;
    for (int i = 0; i < kTentativas && hr == codigos::kArqCompartilhamento; ++i) {
      hr = parte(uiRodada, &uiFeitos);
    }
    std::cout << uiFeitos << " " << hr << std::endl;
  }
  return 0;
}

}  // namespace apoio
