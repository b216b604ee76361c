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

constexpr int kEscritores = 4;
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

/// <folder> <writer>: writes its records into the error file of an installation.
int GravaRegistros(const std::vector<std::string> &argumentos) {
  apoio::RegistroFalso registro;
  registro.m_textos[{kChaveInstalacao, "Path"}] = argumentos.at(0);
  ArquivosQueEsperam arquivos(plataforma::Arquivos());
  const apoio::ServicosTrocados servicos(&arquivos, &registro);
  for (int n = 0; n < kRegistros; ++n) {
    GravaRegistroErro(nullptr, "C::F", "C.cpp", n, Texto(argumentos.at(1), n));
  }
  return 0;
}
const apoio::RegistraFilha kFilha("grava-registros", GravaRegistros);

class ConcorrenciaLog : public LogTeste {
protected:
  /// Checks that the error file is one header and all records, whole and each once.
  void ConfereErros() {
    std::set<std::string> faltam;
    for (int escritor = 0; escritor < kEscritores; ++escritor) {
      for (int n = 0; n < kRegistros; ++n) {
        faltam.insert("|C.cpp|" + std::to_string(n) + "|" + Texto(std::to_string(escritor), n) + "|");
      }
    }
    std::vector<std::string> linhas = ErrosDaInstalacao();
    EXPECT_EQ(linhas.empty() ? "" : linhas.front(), kCabecalhoErrosEsperado);
    for (std::size_t i = 1; i < linhas.size(); ++i) {
      const std::size_t inicio = std::min(linhas[i].find("|C.cpp|"), linhas[i].size());
      EXPECT_EQ(faltam.erase(linhas[i].substr(inicio)), 1U) << linhas[i];
      EXPECT_EQ(linhas[i].substr(2, 1), "/") << linhas[i];
    }
    EXPECT_EQ(faltam, std::set<std::string>()) << "lost";
  }
};

TEST_F(ConcorrenciaLog, QuatroProcessosNoMesmoArquivo) {
  std::list<apoio::ProcessoFilho> filhos;
  for (int i = 0; i < kEscritores; ++i) {
    filhos.emplace_back("grava-registros", std::vector<std::string>{m_instalacao.Caminho(), std::to_string(i)});
  }
  for (apoio::ProcessoFilho &filho : filhos) {
    EXPECT_EQ(filho.Espera(), 0);
  }
  ConfereErros();
}

TEST_F(ConcorrenciaLog, ThreadsEscrevemEnquantoAsChavesMudam) {
  ArquivosQueEsperam arquivos(plataforma::Arquivos());
  const apoio::ServicosTrocados servicos(&arquivos, nullptr, plataforma::ServicosDoSistema().relogio);
  EscreveIni("TimeoutConfig=0");
  std::atomic<int> ativos{kEscritores};
  std::list<std::thread> threads;
  for (int i = 0; i < kEscritores; ++i) {
    threads.emplace_back([this, i, &ativos] {
      for (int n = 0; n < kRegistros; ++n) {
        const CQZEscopoProfiler escopo(&m_profiler, {"C::F"});
        GravaRegistroErro(nullptr, "C::F", "C.cpp", n, Texto(std::to_string(i), n));
      }
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
  ConfereErros();
  // A reload may meet the file while it is being written: between two others, the memory is then not measured.
  for (const std::string &linha : Profiler()) {
    EXPECT_TRUE(linha == kCabecalhoProfilerEsperado || linha.ends_with("|17179869184|3276800|0|0|") ||
                linha.ends_with("|17179869184|0|0|0|"))
        << linha;
  }
}

}  // namespace
