#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/platform/LivroTravas.h"
#include "tests/log/LogTeste.h"

namespace {

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

int *volatile g_nulo = nullptr;

/// Meets an access violation at the first write.
class ArquivosQueFalham final : public apoio::ArquivosDecorado {
public:
  using ArquivosDecorado::ArquivosDecorado;

  FalhaArquivo Abre(const CString &caminho, const ModoAbertura &modo,
                    std::unique_ptr<IArquivoAberto> *arquivo) override {
    class Arquivo final : public apoio::ArquivoDecorado {
    public:
      using ArquivoDecorado::ArquivoDecorado;
      FalhaArquivo Grava(std::uint64_t, const void *, std::size_t) override {
        *g_nulo = 1;
        return plataforma::kSemFalha;
      }
    };
    std::unique_ptr<IArquivoAberto> base;
    const FalhaArquivo falha = ArquivosDecorado::Abre(caminho, modo, &base);
    *arquivo = std::make_unique<Arquivo>(std::move(base));
    return falha;
  }
};

TEST_F(LogTeste, FalhaDeMaquinaNoMeioDaGravacaoFechaOArquivo) {
  auto grava = [this]() -> HRESULT {
    GravaLinhaLog("c\t", "x", TipoRegistro::Erro, &m_profiler);
    return 0;
  };
  const std::size_t marca = plataforma::LivroTravas::Marca();
  {
    ArquivosQueFalham arquivos(plataforma::ArquivosDoSistema());
    const apoio::ServicosTrocados servicos(&arquivos);
    EXPECT_TRUE(EhErroSEH(ChamaSEH(grava)));
  }
  EXPECT_EQ(plataforma::LivroTravas::Marca(), marca);
  EXPECT_EQ(ChamaSEH(grava), 0);
  EXPECT_EQ(ErrosDaEmpresa().back(), "c|x");
}

}  // namespace
