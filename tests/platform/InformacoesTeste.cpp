#include "core/platform/Informacoes.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/platform/Relogio.h"
#include "core/platform/ServicosSistema.h"
#include "tests/apoio/PastaTemporaria.h"

namespace {

plataforma::IInformacoes &Informacoes() {
  return plataforma::InformacoesDoSistema();
}

TEST(Informacoes, ProcessoEMaquina) {
  const CString processo = Informacoes().NomeProcesso();
  EXPECT_TRUE(processo == "teste_platform" || processo == "teste_platform.exe") << processo;
  EXPECT_FALSE(Informacoes().UsuarioLocal().empty());
  std::uint32_t outra = 0;
  std::thread([&outra] { outra = Informacoes().IdThread(); }).join();
  EXPECT_NE(Informacoes().IdThread(), outra);
  EXPECT_GE(Informacoes().VersaoSO().maior, 2U);
  EXPECT_NE(Informacoes().NovoGuid(), Informacoes().NovoGuid());
  std::uint64_t disponivel = 0;
  std::uint64_t total = 0;
  std::uint64_t doProcesso = 0;
  EXPECT_TRUE(Informacoes().MemoriaMaquina(&disponivel, &total));
  EXPECT_TRUE(Informacoes().MemoriaProcesso(&doProcesso));
  EXPECT_LT(disponivel, total);
  EXPECT_TRUE(doProcesso > 100000 && doProcesso < total / 2) << doProcesso;
}

TEST(Informacoes, CaminhoAbsoluto) {
  const CString arquivo = Informacoes().CaminhoAbsoluto("log.ini");
  EXPECT_TRUE(arquivo.size() > 8 && arquivo.ends_with("\\log.ini")) << arquivo;
  EXPECT_EQ(Informacoes().CaminhoAbsoluto("x/..\\log.ini"), arquivo);
  EXPECT_EQ(Informacoes().CaminhoAbsoluto(arquivo), arquivo);
}

TEST(Relogio, EsperaAoMenosOPedido) {
  const auto antes = std::chrono::steady_clock::now();
  plataforma::RelogioDoSistema().Espera(40);
  // The system may round the end of a wait to its tick of up to 16 ms.
  EXPECT_GE(std::chrono::steady_clock::now() - antes, std::chrono::milliseconds(24));
}

TEST(ArquivosIni, Regras) {
  const apoio::PastaTemporaria pasta;
  const CString arquivo = pasta / "regras.ini";
  const struct {
    const char *linha;
    const char *texto;
    std::uint32_t numero;
  } casos[] = {{"K = 1 ", "1", 1},
               {"k=0x1F", "0x1F", 31},
               {"K=-1abc", "-1abc", 0xFFFFFFFF},
               {"K=\"1\"", "1", 1},
               {"K=12345678901234", "1234567890", 1942892530},
               {"K=1\r\nK=2", "1", 1},
               {";K=1\r\nK=2;nota", "2;nota", 2},
               {"K=", "", 7},
               {"KK=1", "padrao", 7},
               {"[Outra]\r\nK=1\r\n[S]\r\nK=2", "padrao", 7}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.linha);
    apoio::EscreveArquivo(arquivo, CString("K=9\r\n[SS]\r\nK=8\r\n [ s ]\r\n") + caso.linha + "\r\n");
    EXPECT_EQ(plataforma::ArquivosIniDoSistema().LeTexto(arquivo, "S", "K", "padrao", 10), caso.texto);
    EXPECT_EQ(plataforma::ArquivosIniDoSistema().LeInteiro(arquivo, "S", "K", 7), caso.numero);
  }
  EXPECT_EQ(plataforma::ArquivosIniDoSistema().LeTexto(pasta / "falta.ini", "S", "K", "padrao", 259), "padrao");
  EXPECT_EQ(plataforma::ArquivosIniDoSistema().LeInteiro(pasta / "falta.ini", "S", "K", 7), 7U);
}

}  // namespace
