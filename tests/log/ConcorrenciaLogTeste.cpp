#include <atomic>
#include <set>
#include <thread>

#include "core/log/EscopoProfiler.h"
#include "core/log/RegistroLog.h"
#include "tests/log/LogTeste.h"

namespace {

constexpr int kRegistros = 200;  ///< of each writer

/// Opens a log file that another writer has taken once it is free, so that no record is dropped for want of attempts.
class ArquivosQueEsperam final : public apoio::ArquivosComFalha {
public:
  using ArquivosComFalha::ArquivosComFalha;

  apoio::FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                           std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override {
    apoio::FalhaArquivo falha;
    while ((falha = ArquivosComFalha::Abre(caminho, modo, arquivo)).causa ==
           plataforma::CausaArquivo::ViolacaoCompartilhamento) {
      std::this_thread::yield();
    }
    return falha;
  }
};

/// Text of the n-th record of a writer, long enough to show a torn line.
std::string Texto(const std::string &sEscritor, int n) {
  return sEscritor + "." + std::to_string(n) + "." + std::string(static_cast<std::size_t>(n), 'x') + ".fim";
}

using ConcorrenciaLog = LogTeste;

TEST_F(ConcorrenciaLog, DoisEscrevemEnquantoAsChavesMudam) {
  ArquivosQueEsperam arquivos(plataforma::Arquivos());
  const apoio::ServicosTrocados servicos(&arquivos, nullptr, plataforma::ServicosDoSistema().relogio);
  EscreveIni("TimeoutConfig=0");
  std::atomic<int> ativos{2};
  const auto trabalha = [&](const char *lpEscritor) {
    for (int n = 0; n < kRegistros; ++n) {
      const CQZEscopoProfiler escopo(&m_profiler, {"C::F"});
      GravaRegistroErro(nullptr, "C::F", "C.cpp", n, Texto(lpEscritor, n));
    }
    --ativos;
  };
  const std::jthread um(trabalha, "0");
  const std::jthread outro(trabalha, "1");
  for (int n = 0; ativos > 0; ++n) {
    EscreveIni(std::string("TimeoutConfig=0\r\nEntrada=1\r\nMemory=1\r\nProcessos=") +
               (n % 2 == 0 ? "todos" : "outro"));
    std::this_thread::yield();
  }
  // One header and all records, whole and each once.
  std::multiset<std::string> esperados{kCabecalhoErrosEsperado};
  for (int i = 0; i < 2 * kRegistros; ++i) {
    const int n = i % kRegistros;
    esperados.insert("|C.cpp|" + std::to_string(n) + "|" + Texto(std::to_string(i / kRegistros), n) + "|");
  }
  std::multiset<std::string> lidos;
  for (const std::string &erro : ErrosDaInstalacao()) {
    lidos.insert(erro[2] == '/' ? erro.substr(std::min(erro.find("|C.cpp|"), erro.size())) : erro);
  }
  EXPECT_EQ(lidos, esperados);
  // A reload may meet the file while it is being written: between two others, the memory is then not measured.
  for (const std::string &linha : Profiler()) {
    EXPECT_TRUE(linha == kCabecalhoProfilerEsperado || linha.ends_with("|17179869184|3276800|0|0|") ||
                linha.ends_with("|17179869184|0|0|0|"))
        << linha;
  }
}

}  // namespace
