#include "tests/campanha/ParteDaCampanha.h"

#include <cstdlib>
#include <iostream>
#include <thread>

#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"
#include "tests/campanha/Servidores.h"

using apoiocom::Empresa;

namespace campanha {
namespace {

unsigned DoAmbiente(const char *lpNome, unsigned uiSenao) {
  const char *const lpValor = std::getenv(lpNome);
  return lpValor != nullptr ? static_cast<unsigned>(std::stoul(lpValor)) : uiSenao;
}

void CopiaPasta(const CString &sOrigem, const CString &sDestino) {
  std::vector<CString> nomes;
  CreateDirectoryA(sDestino.c_str(), nullptr);
  static_cast<void>(plataforma::Arquivos().Lista(sOrigem, &nomes));
  for (const CString &sNome : nomes) {
    CopyFileA((sOrigem + sNome).c_str(), (sDestino + "\\" + sNome).c_str(), FALSE);
  }
}

}  // namespace

ParteDaCampanha::ParteDaCampanha() : m_uiSemente(DoAmbiente("KALVO_SEMENTE", std::random_device()())) {
  m_gerador.seed(m_uiSemente);
}

void ParteDaCampanha::SetUp() {
  std::cout << "seed " << m_uiSemente << std::endl;
  MataServidores();
  apoiocom::EsqueceServidores();
  m_registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", m_instalacao.Caminho());
}

void ParteDaCampanha::TearDown() {
  if (HasFailure()) {
    MataServidores();
    Guarda();
  }
}

void ParteDaCampanha::LigaLogs() {
  apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
}

Empresa &ParteDaCampanha::OutraEmpresa() {
  m_empresas.clear();
  return MaisUmaEmpresa();
}

Empresa &ParteDaCampanha::MaisUmaEmpresa() {
  return m_empresas.emplace_back();
}

std::vector<std::string> ParteDaCampanha::Sobras(const CString &sPasta, const char *lpFim) {
  std::vector<CString> nomes;
  EXPECT_FALSE(plataforma::Arquivos().Lista(sPasta, &nomes));
  std::erase_if(nomes, [&](const CString &sNome) { return !sNome.ends_with(lpFim); });
  return {nomes.begin(), nomes.end()};
}

std::chrono::microseconds ParteDaCampanha::Sorteia(unsigned uiMilissegundos) {
  return std::chrono::microseconds(m_gerador() % (uiMilissegundos * 1000 + 1));
}

void ParteDaCampanha::Espera(std::chrono::microseconds tempo) {
  // The system sleeps in steps of a millisecond or more.
  constexpr std::chrono::milliseconds kPasso(3);
  const auto fim = std::chrono::steady_clock::now() + tempo;
  if (tempo > kPasso) {
    std::this_thread::sleep_for(tempo - kPasso);
  }
  while (std::chrono::steady_clock::now() < fim) {
  }
}

unsigned ParteDaCampanha::Segundos(unsigned uiSenao) {
  return DoAmbiente("KALVO_SEGUNDOS", uiSenao);
}

void ParteDaCampanha::Guarda() const {
  const CString sRaiz = apoiocom::PastaDoPrograma() + "..\\campanha";
  const CString sPasta =
      sRaiz + "\\" + testing::UnitTest::GetInstance()->current_test_info()->name() + "-" + std::to_string(m_uiSemente);
  CreateDirectoryA(sRaiz.c_str(), nullptr);
  CreateDirectoryA(sPasta.c_str(), nullptr);
  CopiaPasta(m_instalacao.Caminho(), sPasta + "\\instalacao");
  for (const Empresa &empresa : m_empresas) {
    CopiaPasta(empresa.Arquivo(""), sPasta + "\\" + empresa.Codigo());
  }
  std::cout << "seed " << m_uiSemente << ": the companies and the logs are kept in " << sPasta << std::endl;
}

}  // namespace campanha
