// A base of version 0 loses its first record exactly once, whoever converts it and whenever that is killed.

#include <iostream>

#include "tests/campanha/ParteDaCampanha.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// A third of the kills fall somewhere into the opening, a third into what follows the file of the new records, the
/// others into what follows its move onto the old one.
constexpr unsigned kNaAberturaMs = 80;
constexpr unsigned kDepoisMs = 3;

using MorteNaConversao = ParteDaCampanha;

/// Records that are told apart, 256 bytes each.
std::string Base(char cPrimeiro) {
  std::string bytes;
  for (char c = cPrimeiro; c < '0' + 50; ++c) {
    bytes += std::string(256, c);
  }
  return bytes;
}

/// Waits until the server makes a file, or takes it away, or a second.
void EsperaQue(bool bExista, const CString &sCaminho) {
  const ULONGLONG ullFim = GetTickCount64() + 1000;
  while (apoio::ExisteNoDisco(sCaminho) != bExista && GetTickCount64() < ullFim) {
  }
}

// In turn: one server, which is killed; two, of which one is killed; two that are left alone.
TEST_F(MorteNaConversao, SoOPrimeiroRegistroSaiEUmaVez) {
  LigaLogs();
  unsigned uiNoMeio = 0;
  for (unsigned uiRodada = 0; uiRodada < apoio::Rodadas(); ++uiRodada) {
    SCOPED_TRACE(testing::Message() << "round " << uiRodada);
    m_empresas.clear();
    const Empresa &empresa = m_empresas.emplace_back();
    apoio::EscreveArquivo(empresa.Caminho("DFVEIC.DAT"), Base('0'));
    MataServidores();
    std::deque<CCliente> clientes;
    while (clientes.size() < (uiRodada % 3 == 0 ? 1U : 2U)) {
      EsqueceServidores();  // each client gets a server of its own
      ASSERT_EQ(Bits(clientes.emplace_back().Pede("cria").hr), Bits(S_OK));
    }
    const std::vector<Handle> servidores = Servidores();
    ASSERT_EQ(servidores.size(), clientes.size());
    for (CCliente &cliente : clientes) {
      cliente.EnviaLinha("abre " + empresa.Codigo());
    }
    if (uiRodada % 3 != 2) {
      const unsigned uiTrocas = m_gerador() % 3;  // of the new records' file that are waited for
      for (unsigned i = 0; i < uiTrocas; ++i) {
        EsperaQue(i == 0, empresa.Caminho("DFVEIC.TRA"));
      }
      EsperaAte(uiTrocas == 0 ? kNaAberturaMs : kDepoisMs);
      Mata(servidores[m_gerador() % servidores.size()].get());
    }
    for (CCliente &cliente : clientes) {
      cliente.Espera();
    }
    MataServidores();
    uiNoMeio += TemSobras(empresa.Caminho("")) ? 1U : 0U;

    const Resposta leitura = LeEmpresa(empresa.Codigo());
    ASSERT_EQ(Bits(leitura.hr), Bits(S_OK)) << "the company does not open";
    ASSERT_TRUE(Registros(empresa) == Base('1')) << "not the old records but the first";
    ASSERT_FALSE(TemSobras(empresa.Caminho("")));
  }
  std::cout << apoio::Rodadas() << " conversions, two of three with a kill, of which " << uiNoMeio
            << " left companions of files; " << Veredito() << " but one record each" << std::endl;
}

}  // namespace
}  // namespace campanha
