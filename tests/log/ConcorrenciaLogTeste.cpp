#include <algorithm>
#include <atomic>
#include <list>
#include <set>
#include <thread>

#include "core/log/EscopoProfiler.h"
#include "core/log/RegistroLog.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/log/LogTeste.h"

namespace {

constexpr int kEscritores = 2;  ///< processes, and as many threads
constexpr int kRegistros = 200;

/// Opens a log file that another writer has taken once it is free, so that no record is dropped for want of attempts.
class ArquivosQueEsperam final : public apoio::ArquivosDecorado {
public:
  using ArquivosDecorado::ArquivosDecorado;

  apoio::FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                           std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override {
    apoio::FalhaArquivo falha;
    while ((falha = ArquivosDecorado::Abre(caminho, modo, arquivo)).causa ==
           plataforma::CausaArquivo::ViolacaoCompartilhamento) {
      std::this_thread::yield();
    }
    return falha;
  }
};

/// Text of the n-th record of a writer, long enough to show a torn line.
std::string Texto(const std::string &escritor, int n) {
  return escritor + "." + std::to_string(n) + "." + std::string(static_cast<std::size_t>(n), 'x') + ".fim";
}

/// Writes a writer's records into the error file of the installation in force.
void GravaRegistros(const std::string &escritor) {
  for (int n = 0; n < kRegistros; ++n) {
    GravaRegistroErro(nullptr, "C::F", "C.cpp", n, Texto(escritor, n));
  }
}

/// <folder> <writer>: the same, for the installation in that folder.
int GravaRegistrosDeUmFilho(const std::vector<std::string> &argumentos) {
  apoio::RegistroFalso registro;
  registro.m_textos[{kChaveInstalacao, "Path"}] = argumentos.at(0);
  ArquivosQueEsperam arquivos(plataforma::Arquivos());
  const apoio::ServicosTrocados servicos(&arquivos, &registro);
  GravaRegistros(argumentos.at(1));
  return 0;
}
const apoio::RegistraFilha kFilha("grava-registros", GravaRegistrosDeUmFilho);

using ConcorrenciaLog = LogTeste;

TEST_F(ConcorrenciaLog, ProcessosEThreadsEscrevemEnquantoAsChavesMudam) {
  ArquivosQueEsperam arquivos(plataforma::Arquivos());
  const apoio::ServicosTrocados servicos(&arquivos, nullptr, plataforma::ServicosDoSistema().relogio);
  EscreveIni("TimeoutConfig=0");
  std::set<std::string> faltam;
  for (int escritor = 0; escritor < 2 * kEscritores; ++escritor) {
    for (int n = 0; n < kRegistros; ++n) {
      faltam.insert("|C.cpp|" + std::to_string(n) + "|" + Texto(std::to_string(escritor), n) + "|");
    }
  }
  std::list<apoio::ProcessoFilho> filhos;
  std::list<std::thread> threads;
  std::atomic<int> ativos{kEscritores};
  for (int i = 0; i < kEscritores; ++i) {
    filhos.emplace_back("grava-registros", std::vector<std::string>{m_instalacao.Caminho(), std::to_string(i)});
    threads.emplace_back([this, i, &ativos] {
      for (int n = 0; n < kRegistros; ++n) {
        const CQZEscopoProfiler escopo(&m_profiler, {"C::F"});
      }
      GravaRegistros(std::to_string(kEscritores + i));
      --ativos;
    });
  }
  for (int n = 0; ativos > 0; ++n) {
    EscreveIni(std::string("TimeoutConfig=0\r\nEntrada=1\r\nMemory=1\r\nProcessos=") +
               (n % 2 == 0 ? "todos" : "outro"));
    std::this_thread::yield();
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  for (apoio::ProcessoFilho &filho : filhos) {
    EXPECT_EQ(filho.Espera(), 0);
  }
  // One header and all records, whole and each once.
  const std::vector<std::string> erros = ErrosDaInstalacao();
  EXPECT_EQ(erros.front(), kCabecalhoErrosEsperado);
  for (std::size_t i = 1; i < erros.size(); ++i) {
    const std::size_t inicio = std::min(erros[i].find("|C.cpp|"), erros[i].size());
    EXPECT_EQ(faltam.erase(erros[i].substr(inicio)), 1U) << erros[i];
    EXPECT_EQ(erros[i].substr(2, 1), "/") << erros[i];
  }
  EXPECT_EQ(faltam, std::set<std::string>()) << "lost";
  // A reload may meet the file while it is being written: between two others, the memory is then not measured.
  for (const std::string &linha : Profiler()) {
    EXPECT_TRUE(linha == kCabecalhoProfilerEsperado || linha.ends_with("|17179869184|3276800|0|0|") ||
                linha.ends_with("|17179869184|0|0|0|"))
        << linha;
  }
}

}  // namespace
