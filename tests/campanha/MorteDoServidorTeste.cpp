// The server is killed while clients write: what they were told done is done, byte for byte, and the company opens
// again.

#include <iostream>

#include "tests/campanha/ParteDaCampanha.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// A company begins anew after so many kills, so that its files are created under some of them.
constexpr unsigned kMortesPorEmpresa = 10;

/// Every fourth kill falls into the opening, the others behind some of the writes.
constexpr unsigned kAberturaMs = 80;
constexpr unsigned kGravacoes = 300;

using MorteDoServidor = ParteDaCampanha;

/// Whether the kill left a write half way or between record and header, by the note beside the vehicles.
bool NoMeioDeUmaGravacao(const Empresa &empresa) {
  const CString sNota = empresa.Caminho("DFVEIC.INT");
  return apoio::ExisteNoDisco(sNota) && apoio::LeArquivo(sNota).substr(0, 8) != std::string(8, '\0');
}

TEST_F(MorteDoServidor, OConfirmadoEstaLaEAEmpresaAbre) {
  LigaLogs();
  CLivro livro;
  unsigned uiNoMeio = 0;
  for (unsigned uiRodada = 0; uiRodada < apoio::Rodadas(); ++uiRodada) {
    SCOPED_TRACE(testing::Message() << "round " << uiRodada);
    if (uiRodada % kMortesPorEmpresa == 0) {
      m_empresas.clear();
      m_empresas.emplace_back();
      livro.Recomeca();
    }
    const Empresa &empresa = m_empresas.back();
    CEscritores escritores(empresa.Codigo(), {.uiQtd = 3}, livro, m_gerador);
    escritores.Comeca();
    escritores.EsperaGravacoes(uiRodada % 4 == 0 ? 0 : 1 + m_gerador() % kGravacoes);
    EsperaAte(uiRodada % 4 == 0 ? kAberturaMs : 1);
    MataServidores();
    escritores.Termina();
    EXPECT_TRUE(livro.Recusas().empty()) << std::hex << *livro.Recusas().begin();
    uiNoMeio += NoMeioDeUmaGravacao(empresa) ? 1U : 0U;
    ASSERT_NO_FATAL_FAILURE(Confere(empresa.Codigo(), livro));
    ASSERT_FALSE(TemSobras(empresa.Caminho("")));
  }
  std::cout << apoio::Rodadas() << " kills, " << livro.Confirmadas() << " writes acknowledged; " << Veredito() << "; "
            << uiNoMeio << " kills left a noted write" << std::endl;
}

}  // namespace
}  // namespace campanha
