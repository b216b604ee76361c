// A base of version 0 loses its first record exactly once, whoever converts it and whenever that is killed.

#include <iostream>

#include "tests/apoio/Corrida.h"
#include "tests/campanha/Clientes.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// A third of the kills fall somewhere into the opening, a third into what follows the file of the new records, the
/// others into what follows its move onto the old one.
constexpr unsigned kNaAberturaMs = 80;
constexpr unsigned kDepoisMs = 3;
enum Momento { kNaAbertura, kComRegistrosNovos, kDepoisDaTroca, kMomentos };

/// Records that are told apart, 256 bytes each.
std::string Base(char cPrimeiro, char cFim) {
  std::string bytes;
  for (char c = cPrimeiro; c < cFim; ++c) {
    bytes += std::string(256, c);
  }
  return bytes;
}
constexpr char kPrimeiro = '0';
constexpr char kFim = kPrimeiro + 50;

/// The letter that each record begins with.
std::string Letras(const std::string &bytes) {
  std::string letras;
  for (std::size_t i = 0; i < bytes.size(); i += 256) {
    letras += bytes[i];
  }
  return letras;
}

class MorteNaConversao : public ParteDaCampanha {
protected:
  /// Waits until the server makes a file, or takes it away, or a second.
  static void EsperaQue(bool bExista, const CString &sCaminho) {
    const auto fim = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (apoio::ExisteNoDisco(sCaminho) != bExista && std::chrono::steady_clock::now() < fim) {
    }
  }
};

// In turn: one server, which is killed; two, of which one is killed; two that are left alone.
TEST_F(MorteNaConversao, SoOPrimeiroRegistroSaiEUmaVez) {
  LigaLogs();
  const unsigned uiRodadas = apoio::Rodadas();
  unsigned uiMortas = 0;
  unsigned uiNoMeio = 0;
  unsigned uiConvertidas = 0;
  for (unsigned uiRodada = 0; uiRodada < uiRodadas; ++uiRodada) {
    SCOPED_TRACE(testing::Message() << "round " << uiRodada);
    const Empresa &empresa = OutraEmpresa();
    apoio::EscreveArquivo(empresa.Arquivo("DFVEIC.DAT"), Base(kPrimeiro, kFim));
    MataServidores();
    const unsigned uiServidores = uiRodada % 3 == 0 ? 1 : 2;
    std::deque<CCliente> clientes;
    for (unsigned i = 0; i < uiServidores; ++i) {
      EsqueceServidores();  // each client gets a server of its own
      ASSERT_EQ(Bits(clientes.emplace_back().Pede("cria").hr), Bits(S_OK));
    }
    const std::vector<Handle> servidores = Servidores();
    ASSERT_EQ(servidores.size(), uiServidores);
    for (CCliente &cliente : clientes) {
      cliente.Manda("abre " + empresa.Codigo());
    }
    if (uiRodada % 3 != 2) {
      const auto eMomento = static_cast<Momento>(m_gerador() % kMomentos);
      for (int i = kComRegistrosNovos; i <= eMomento; ++i) {
        EsperaQue(i == kComRegistrosNovos, empresa.Arquivo("DFVEIC.TRA"));
      }
      Espera(Sorteia(eMomento == kNaAbertura ? kNaAberturaMs : kDepoisMs));
      Mata(servidores[m_gerador() % servidores.size()].get());
      ++uiMortas;
    }
    for (CCliente &cliente : clientes) {
      uiConvertidas += cliente.Ouve().hr == S_OK ? 1U : 0U;
      cliente.Termina();
    }
    MataServidores();
    EsqueceServidores();
    uiNoMeio += Sobras(empresa.Arquivo(""), ".TRA").empty() ? 0U : 1U;

    const Resposta leitura = LeEmpresa(empresa.Codigo());
    ASSERT_EQ(Bits(leitura.hr), Bits(S_OK)) << "the company does not open";
    ASSERT_TRUE(Registros(empresa) == Base(kPrimeiro + 1, kFim)) << Letras(Registros(empresa));
    ASSERT_EQ(Sobras(empresa.Arquivo(""), ".TRA"), std::vector<std::string>());
  }
  std::cout << uiRodadas << " conversions, " << uiMortas << " with a kill, of which " << uiNoMeio
            << " left companions of files; " << uiConvertidas << " clients were told that it was done; " << Veredito()
            << " but one record each" << std::endl;
}

}  // namespace
}  // namespace campanha
