#include "tests/campanha/ParteDaCampanha.h"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "core/env/QZPath.h"
#include "tests/apoio/ValoresProprios.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr char kChave[] = "SOFTWARE\\Wow6432Node\\Tarvel";

/// Registers the server for all parts of the campaign, with the switch for headers as the program's own. The program
/// itself is no client: it ends servers, and the platform's memory of them with these.
class AmbienteCampanha : public testing::Environment {
public:
  void SetUp() override {
    std::string sErro;
    ASSERT_EQ(ExecutaKalvo("/RegServer", &sErro), 0U) << sErro;
    const DWORD dwLigado = apoio::CabecalhosLigados() ? 1 : 0;
    ASSERT_EQ(
        RegSetKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho, REG_DWORD, &dwLigado, sizeof(dwLigado)), 0);
  }

  void TearDown() override {
    MataServidores();
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho);
    std::string sErro;
    EXPECT_EQ(ExecutaKalvo("/UnregServer", &sErro), 0U) << sErro;
  }
};

const testing::Environment *const g_pAmbiente = testing::AddGlobalTestEnvironment(new AmbienteCampanha);

}  // namespace

void Mata(HANDLE hServidor) {
  TerminateProcess(hServidor, 1);
  if (WaitForSingleObject(hServidor, kPrazo) != WAIT_OBJECT_0) {
    throw std::runtime_error("a server cannot be ended");
  }
}

void MataServidores() {
  for (const Handle &hServidor : Servidores()) {
    Mata(hServidor.get());
  }
  EsqueceServidores();
}

/// Wine alone, for both reasons to read once more. A release that meets the end of the last call on the class object
/// can wait for ever, inside Wine's own runtime (which looks whether a call is under way before it says that it waits
/// for its end). And its service can still name a server that was ended by force: none of ours was reached.
Resposta LeEmpresa(const std::string &sEmpresa) {
  for (bool bDeNovo = true;; bDeNovo = false) {
    CCliente cliente(kPrazo);
    Resposta lida = cliente.Pede("cria");
    const bool bNaoAlcancou = ServidorSeFoi(lida.hr);
    lida = lida.hr == S_OK ? cliente.Pede("abre " + sEmpresa) : lida;
    lida = lida.hr == S_OK ? cliente.Pede("le") : lida;
    if (cliente.Espera() == CCliente::kNaoVoltou || bNaoAlcancou) {
      std::cout << "a reading client did not come back or reach a server; all were ended" << std::endl;
      MataServidores();
    }
    if (!bDeNovo || !(bNaoAlcancou || lida.hr == Resposta::kCalado)) {
      return lida;
    }
  }
}

void ParteDaCampanha::SetUp() {
  std::cout << "seed " << m_uiSemente << std::endl;
  m_gerador.seed(m_uiSemente);
  MataServidores();
  m_registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", m_instalacao.Caminho());
}

void ParteDaCampanha::TearDown() {
  if (HasFailure()) {
    MataServidores();
    apoio::PastaTemporaria::GuardaTodas();
    std::cout << "seed " << m_uiSemente << ": the logs are kept in " << m_instalacao.Caminho();
    for (const Empresa &empresa : m_empresas) {
      std::cout << ", a company in " << empresa.Caminho("");
    }
    std::cout << std::endl;
  }
}

void ParteDaCampanha::LigaLogs() const {
  apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
}

void ParteDaCampanha::Confere(const std::string &sEmpresa, CLivro &livro) {
  const Resposta leitura = LeEmpresa(sEmpresa);
  ASSERT_EQ(Bits(leitura.hr), Bits(S_OK)) << "the company does not open";
  ASSERT_EQ(livro.Confere(leitura.numeros), "");
}

bool ParteDaCampanha::TemSobras(const CString &sPasta) {
  return std::ranges::any_of(std::filesystem::directory_iterator(apoio::CaminhoDoSistema(sPasta)),
                             [](const auto &arquivo) { return arquivo.path().extension() == ".TRA"; });
}

void ParteDaCampanha::EsperaAte(unsigned uiMilissegundos) {
  const std::chrono::microseconds tempo(m_gerador() % (uiMilissegundos * 1000 + 1));
  for (const auto fim = std::chrono::steady_clock::now() + tempo; std::chrono::steady_clock::now() < fim;) {
    std::this_thread::yield();
  }
}

}  // namespace campanha
