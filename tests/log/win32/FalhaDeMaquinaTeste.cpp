#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/platform/LivroDaThread.h"
#include "tests/log/LogTeste.h"

namespace {

int *volatile g_nulo = nullptr;

TEST_F(LogTeste, FalhaDeMaquinaNoMeioDaGravacaoFechaOArquivo) {
  auto grava = [this]() -> HRESULT {
    GravaLinhaLog("c\t", "x", ETipoRegistro::Erro, &m_profiler);
    return 0;
  };
  const std::size_t marca = plataforma::LivroDaThread::Marca();
  m_falhas.Arma({.operacoes = apoio::kOpGrava, .aoFalhar = [] { *g_nulo = 1; }});
  EXPECT_TRUE(EhErroSEH(ChamaSEH(grava)));
  EXPECT_EQ(plataforma::LivroDaThread::Marca(), marca);
  EXPECT_EQ(m_falhas.Abertos(), 0);
  EXPECT_EQ(ChamaSEH(grava), 0);
  EXPECT_EQ(ErrosDaEmpresa().back(), "c|x");
}

}  // namespace
