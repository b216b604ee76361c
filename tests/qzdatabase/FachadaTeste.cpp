// Shared databases: who shares, who counts, who closes.

#include "core/conx/QZBaseParaRotinas.h"
#include "core/qzdatabase/banco/QZDataBaseFacade.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Rotina : public CQZDataBaseFacade<BancoTeste, CQZBaseParaRotinas> {
public:
  ~Rotina() override { FinalizaNoDestrutor(); }
  BancoTeste *Banco() const { return m_pDataBase; }

protected:
  HRESULT OnInicializa() override { return QZDataBaseInicializa(); }
};

class Fachada : public ComEmpresa {
protected:
  /// True when nobody holds the company's file: it can be had exclusively.
  bool ArquivoLivre() {
    std::unique_ptr<plataforma::IArquivoAberto> arquivo;
    return !plataforma::Arquivos().Abre(m_empresa.Caminho("TESTE.DAT"), {}, &arquivo);
  }
};

TEST_F(Fachada, CodigosQueSoDiferemNasMaiusculasCompartilham) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 1));
  CString sMinusculo = m_empresa.Codigo();
  sMinusculo[0] = 't';
  Rotina a;
  Rotina b;
  EXPECT_FALSE(a.QZDataBaseEstaInicializado());
  ASSERT_EQ(a.Inicializa(m_empresa.Codigo(), 1, 1), codigos::kOk);
  ASSERT_EQ(a.Inicializa(m_empresa.Codigo(), 1, 1), codigos::kOk) << "again, and is counted once";
  ASSERT_EQ(b.Inicializa(sMinusculo, 2, 2), codigos::kOk);
  EXPECT_EQ(a.Banco(), b.Banco());
  EXPECT_EQ(b.Banco()->GetUsuario(), 1) << "the first one's identity";
  EXPECT_EQ(a.Finaliza(), codigos::kOk);
  EXPECT_EQ(a.Banco(), nullptr);
  EXPECT_EQ(a.Finaliza(), codigos::kOk) << "a second time does nothing";
  EXPECT_TRUE(a.QZDataBaseEstaInicializado()) << "the other one still has it";
  EXPECT_FALSE(ArquivoLivre());
  EXPECT_EQ(b.Finaliza(), codigos::kOk);
  EXPECT_TRUE(ArquivoLivre());
}

/// What could not be put right at the end is told, as far as it is the last file's, and nothing stays open all the
/// same.
TEST_F(Fachada, FalhaNoFimEContada) {
  Poe("TESTE.DAT", Bytes(1, 1));
  Poe("UNICO.DAT", Bytes(1, 1));
  Rotina a;
  ASSERT_EQ(a.Inicializa(m_empresa.Codigo(), 1, 1), codigos::kOk);
  Falha(apoio::kOpGrava, "UNICO.DAT", 1117);
  EXPECT_TRUE(Falhou(a.Banco()->m_Unico.Grava(Registro(2))));
  EXPECT_EQ(a.Finaliza(), codigos::kArqErroFisico);
  EXPECT_TRUE(ArquivoLivre());
}

TEST_F(Fachada, EmpresasDeMesmoCrcSaoDuas) {
  const CString sUma(64, 'A');
  const CString sOutra = "CCAAAAACCACACCCCCACAAAAACACAACCACAACCAAACACAACCAAAACAACAACCCAAAC";
  ASSERT_EQ(CalculaCrc64(sUma.data(), sUma.size()), CalculaCrc64(sOutra.data(), sOutra.size()));
  apoio::RegistroTeste registro;
  registro.DefineTexto(CString(kChaveSuite) + "Empresas\\" + sUma, "DF", m_empresa.Caminho(""));
  CQZDataBaseContainer<BancoTeste> container;
  BancoTeste *pBanco = nullptr;
  ASSERT_EQ(container.Inicializa(sUma, 1, 1, &pBanco), codigos::kOk);
  EXPECT_TRUE(container.Possui(sUma));
  EXPECT_FALSE(container.Possui(sOutra));
  EXPECT_EQ(container.Finaliza(&pBanco), codigos::kOk);
}

TEST_F(Fachada, ArquivosSobrevivemAoBanco) {
  auto pBanco = std::make_unique<CQZDataBase>(QZ_DF);
  CQZFile<RegTeste> arquivo("TESTE.DAT", pBanco.get());
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 1));
  ASSERT_EQ(pBanco->Inicializa(m_empresa.Dono()), codigos::kOk);
  pBanco.reset();
  EXPECT_TRUE(ArquivoLivre());
}

}  // namespace
