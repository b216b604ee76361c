// The list of created files: who is listed, what a listed file's absence means, and deletions on purpose.

#include "core/qzdatabase/arquivo/QZFileBase.h"

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

/// A list on disk.
std::string Lista(const std::vector<std::string> &nomes) {
  std::string bytes;
  for (const std::string &nome : nomes) {
    bytes += std::string(1, static_cast<char>(nome.size())) + std::string(3, '\0') + nome;
  }
  return bytes;
}

class Controle : public ComBanco {
protected:
  HRESULT Acrescenta(std::uint32_t uiNumero) {
    std::uint64_t uiPosicao = 0;
    return Arquivo().Grava(uiPosicao, Registro(uiNumero));
  }
  void Apaga(const CString &nome) { ASSERT_FALSE(plataforma::Arquivos().Apaga(m_empresa.Caminho(nome))); }
};

TEST_F(Controle, SoOQueOSistemaCriouEListado) {
  m_empresa.Escreve("UNICO.DAT", Bytes(1, 1));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe(kArquivoControle)) << "reading lists nothing";
  ASSERT_EQ(Acrescenta(1), codigos::kOk);
  ASSERT_EQ(Unico().Grava(Registro(2)), codigos::kOk);
  ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le(kArquivoControle), Lista({"TESTE.DAT"})) << "neither a file that was there nor the list";
  for (const char *lpNome : {"COPIA.TRA", "copia.ofl"}) {
    CQZDataBase qzDB(QZ_DF);
    CQZFile<RegTeste> qzFile(lpNome, &qzDB);
    ASSERT_EQ(qzDB.Inicializa(m_empresa.Dono()), codigos::kOk);
    std::uint64_t uiPosicao = 0;
    EXPECT_EQ(qzFile.Grava(uiPosicao, Registro(1)), codigos::kOk);
  }
  EXPECT_EQ(m_empresa.Le(kArquivoControle), Lista({"TESTE.DAT"})) << "companions are not listed";
}

/// Gone without the system's doing: reported at every open, for reading too, until the file is back.
TEST_F(Controle, ArquivoListadoQueSumiuERelatado) {
  ASSERT_EQ(Abre(), codigos::kOk);
  ASSERT_EQ(Acrescenta(1), codigos::kOk);
  const std::string sBom = (static_cast<void>(m_banco.Finaliza()), m_empresa.LeInteiro("TESTE.DAT"));
  Apaga("TESTE.DAT");
  apoio::ColetorRastro rastro;
  EXPECT_EQ(Abre(), codigos::kArquivoDesapareceu);
  EXPECT_EQ(rastro.Toma().front(),
            "CQZFileBase::GerenciaControleCriacaoArquivos|QZFileBase.cpp|((HRESULT)0x81080A50L)");
  EXPECT_EQ(Abre(), codigos::kArquivoDesapareceu);
  EXPECT_FALSE(m_empresa.Existe("TESTE.DAT"));
  m_empresa.Escreve("TESTE.DAT", sBom);
  EXPECT_EQ(Abre(), codigos::kOk);
  ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);

  // Names are compared with their letter case.
  m_empresa.Escreve(kArquivoControle, Lista({"teste.dat", "TESTE.DA", "TESTE.DATX"}));
  Apaga("TESTE.DAT");
  EXPECT_EQ(Abre(), codigos::kOk);
}

/// The ways in which the system itself takes a file away.
TEST_F(Controle, DelecaoDePropositoNaoERelatada) {
  const CQZProfilerEmpresa dono = m_empresa.Dono();
  const std::function<HRESULT()> formas[] = {
      [&] { return CQZDataBaseUtil::DeletaArquivo(m_empresa.Codigo(), QZ_DF, "TESTE.DAT"); },
      [&] { return CQZDataBaseUtil::RenomeiaArquivoTRA(m_empresa.Codigo(), QZ_DF, "TESTE.DAT"); },
      [&] { return CQZDataBaseUtil::RemoveRegistroZero<RegTeste>(&dono, QZ_DF, "TESTE.DAT"); },
      [&] {
        Apaga("TESTE.DAT");
        BancoTeste banco;
        banco.m_Registros.DesabilitaControleCriacaoArquivos();
        return banco.Inicializa(dono);
      }};
  ASSERT_EQ(Abre(), codigos::kOk);
  ASSERT_EQ(Unico().Grava(Registro(1)), codigos::kOk);
  std::vector<std::string> lista{"UNICO.DAT"};
  for (const auto &forma : formas) {
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(Acrescenta(1), codigos::kOk);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    EXPECT_EQ(forma(), codigos::kOk);
    EXPECT_FALSE(m_empresa.Existe("TESTE.DAT"));
    lista.emplace_back("");
    EXPECT_EQ(m_empresa.Le(kArquivoControle), Lista(lista));
  }
}

/// Whatever fails while a file is created: afterwards the list and the disk agree, and the next write creates it.
TEST_F(Controle, FalhaEmCadaOperacaoDaCriacaoNaoTrancaAEmpresa) {
  for (apoio::SerieFalhas serie(m_falhas, {.gravaAntes = 9}); serie.Proxima();) {
    apoio::EmpresaComBase empresa;
    ASSERT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk);
    const HRESULT hr = serie.Roda([&] { return Acrescenta(1); });
    static_cast<void>(m_banco.Finaliza());
    ASSERT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk);
    if (Falhou(hr)) {
      ASSERT_EQ(Acrescenta(1), codigos::kOk);
    }
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    ASSERT_EQ(empresa.Le("TESTE.DAT"), Bytes(1, 1));
    ASSERT_TRUE(empresa.Le(kArquivoControle).ends_with(Lista({"TESTE.DAT"})));
    ASSERT_FALSE(empresa.Existe("TESTE.TRA"));
  }
}

}  // namespace
