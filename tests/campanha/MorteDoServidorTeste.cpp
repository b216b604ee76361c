// The server is killed while clients write: what they were told done is done, byte for byte, and the company opens
// again.

#include <iostream>

#include "tests/apoio/Corrida.h"
#include "tests/campanha/Clientes.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// A company begins anew after so many kills, so that its files are created under some of them.
constexpr unsigned kMortesPorEmpresa = 10;

/// Every fourth kill falls into the opening, the others behind some of the writes.
constexpr unsigned kAberturaMs = 80;
constexpr unsigned kGravacoes = 300;

class MorteDoServidor : public ParteDaCampanha {
protected:
  /// Whether the kill left a write half way or between record and header, by the note beside the vehicles.
  static bool NoMeioDeUmaGravacao(const Empresa &empresa) {
    const CString sNota = empresa.Arquivo("DFVEIC.INT");
    return apoio::ExisteNoDisco(sNota) && apoio::LeArquivo(sNota).substr(0, 8) != std::string(8, '\0');
  }
};

TEST_F(MorteDoServidor, OConfirmadoEstaLaEAEmpresaAbre) {
  LigaLogs();
  const unsigned uiRodadas = apoio::Rodadas();
  CLivro livro;
  Empresa *pEmpresa = nullptr;
  std::size_t uiConfirmadas = 0;
  std::size_t uiNinguemSoube = 0;
  unsigned uiNoMeio = 0;
  const auto soma = [&] {
    uiConfirmadas += livro.Confirmadas();
    uiNinguemSoube += livro.SemRespostaFeitas();
  };
  for (unsigned uiRodada = 0; uiRodada < uiRodadas; ++uiRodada) {
    SCOPED_TRACE(testing::Message() << "round " << uiRodada);
    if (uiRodada % kMortesPorEmpresa == 0) {
      soma();
      pEmpresa = &OutraEmpresa();
      livro = CLivro();
    }
    CEscritores escritores(pEmpresa->Codigo(), {.uiQtd = 3}, livro, m_gerador);
    escritores.Comeca();
    escritores.EsperaGravacoes(uiRodada % 4 == 0 ? 0 : 1 + m_gerador() % kGravacoes);
    Espera(Sorteia(uiRodada % 4 == 0 ? kAberturaMs : 1));
    MataServidores();
    escritores.Termina(&livro);
    EXPECT_TRUE(escritores.Recusas().empty()) << std::hex << escritores.Recusas().begin()->first;
    uiNoMeio += NoMeioDeUmaGravacao(*pEmpresa) ? 1U : 0U;
    EsqueceServidores();

    const Resposta leitura = LeEmpresa(pEmpresa->Codigo());
    ASSERT_EQ(Bits(leitura.hr), Bits(S_OK)) << "the company does not open";
    ASSERT_EQ(livro.Confere(leitura.numeros), "");
    ASSERT_EQ(Sobras(pEmpresa->Arquivo(""), ".TRA"), std::vector<std::string>());
  }
  soma();
  std::cout << uiRodadas << " kills, " << uiConfirmadas << " writes acknowledged; " << Veredito() << "; "
            << uiNinguemSoube << " done although nobody was told, " << uiNoMeio << " kills left a noted write"
            << std::endl;
}

}  // namespace
}  // namespace campanha
