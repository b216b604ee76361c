#include "tests/apoio/Corrida.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "core/platform/Plataforma.h"
#include "tests/apoio/ArquivosComFalha.h"

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

/// Tries of a part that meets a busy file; each has waited about a second.
constexpr int kTentativas = 30;

/// Enough for the last child to have its order before the gate opens.
constexpr long long kAntecedencia = 2000000;

}  // namespace

Corrida::Corrida(const std::string &sNome, const EmpresaComBase &empresa, unsigned uiProcessos,
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
  std::cout << m_sTitulo << m_uiRodada << " rounds, " << m_uiConfirmados << " acknowledged" << std::endl;
}

bool Corrida::Proxima() {
  for (const auto &arquivo : std::filesystem::directory_iterator(CaminhoDoSistema(m_empresa.Caminho("")))) {
    std::filesystem::remove(arquivo);
  }
  if (m_uiRodada == Rodadas()) {
    return false;
  }
  ++m_uiRodada;
  m_rastro.emplace(__FILE__, __LINE__, m_sTitulo + "round " + std::to_string(m_uiRodada));
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
    EXPECT_FALSE(Falhou(hr)) << std::hex << BitsResultado(hr);
  }
  return feitos;
}

std::string Corrida::Dados(const CString &sNome) const {
  return m_empresa.Existe(sNome) ? m_empresa.Le(sNome) : "";
}

void Corrida::ConfereRegistros(const CString &sNome, std::size_t cbRegistro,
                               const std::multiset<std::string> &registros) const {
  const std::string sDados = Dados(sNome);
  std::multiset<std::string> lidos;
  for (std::size_t i = 0; i < sDados.size(); i += cbRegistro) {
    lidos.insert(sDados.substr(i, cbRegistro));
  }
  EXPECT_EQ(lidos, registros) << "lost, or written by nobody or twice";
}

void Corrida::ConferePasta(const std::vector<CString> &listados) const {
  std::string sLista = Dados("QZDATABASE_FILE_CTRL.DAT");
  for (const CString &sNome : listados) {
    const std::size_t onde = sLista.find(Linhas({sNome}));
    EXPECT_NE(onde, std::string::npos) << sNome;
    sLista.erase(std::min(onde, sLista.size()), Linhas({sNome}).size());
  }
  EXPECT_EQ(sLista, "") << "twice or too much";
  for (const auto &arquivo : std::filesystem::directory_iterator(CaminhoDoSistema(m_empresa.Caminho("")))) {
    EXPECT_EQ(arquivo.path().extension().string(), ".DAT") << arquivo.path().string();
  }
}

int Corrida::Corre(const std::vector<std::string> &argumentos, const Parte &parte) {
  RegistroTeste registro;
  const CString sChave = CString(kChaveSuite) + "Empresas\\" + argumentos[0];
  if (!plataforma::Registro().ExisteChave(sChave)) {  // a system without a registry has one in each process
    registro.DefineTexto(sChave, "DF", argumentos[1]);
  }
  // Up to a tenth of a millisecond before and after each open and before each move: processes meet which otherwise,
  // started together, stay in step.
  std::minstd_rand gerador(static_cast<unsigned>(std::stoul(argumentos[2])) + 1);
  ArquivosComFalha arquivos(*plataforma::ServicosDoSistema().arquivos);
  arquivos.Arma({.operacoes = kOpAbre | kOpTamanho | kOpMove, .bPersistente = true, .falha = {}, .aoFalhar = [&] {
                   EsperaAte(Agora() + static_cast<long long>(gerador() % 100000));
                 }});
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
