#include "core/qzdatabase/disco/QZCrc64.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

using apoio::EmpresaComBase;

constexpr char kDiario[] = "DFVEIVSD.TRA";

class Conversao : public apoio::ComEmpresa {
protected:
  static HRESULT Abre(const EmpresaComBase &empresa) {
    CBaseVeiculos base;
    return base.Inicializa(empresa.Codigo(), 7, 42);
  }
  HRESULT Abre() { return Abre(m_empresa); }
  void PoeBase(const std::string &letras) { m_empresa.Escreve("DFVEIC.DAT", Base(letras)); }
  std::string LeBase() { return m_empresa.Le("DFVEIC.DAT"); }
};

/// The journal of a conversion that ends with these vehicles.
std::string Diario(const std::string &letras, char versao = 1) {
  const std::string dados = Base(letras);
  std::string bytes = std::string(1, versao) + std::string(7, '\0') + Bytes(std::uint64_t{dados.size()}) +
                      Bytes(CalculaCrc64(dados.data(), dados.size()));
  return bytes + Bytes(CalculaCrc64(bytes.data(), bytes.size()));
}

/// Bases as they may be found, and what interrupted runs, and those who restore old files, may leave. An empty text is
/// no file, and no vehicles are none. Opening again answers the same.
TEST_F(Conversao, OQueSeEncontra) {
  const std::string sRasgada = Bytes(MontaRegVersao()) + "torn";
  const std::string sDois = Base("0ab");
  const std::string sComCabecalho =
      Bytes(MontaRegVersao()) + Bytes(MontaRegCabecalho(0, "DFVEIC.DAT", CalculaCrc64(sDois.data(), sDois.size())));
  const std::string sListada("\x0B\0\0\0DFVEIVS.DAT", 15);
  const std::string sZeros(1, '\0');
  const std::string sVersao2 = "\2" + std::string(15, '\0');
  const struct {
    const char *nome;
    std::string base, companheiro, diario, versao, lista;
    HRESULT hr;
    std::string depois;
  } casos[] = {
      {"version 0", sDois, "", "", "", "", codigos::kOk, "ab"},
      {"without vehicles", Base("0"), "", "", "", "", codigos::kOk, ""},
      {"nothing", "", "", "", "", "", codigos::kOk, ""},
      {"version 1", Base("ab"), "", "", kVersao1, "", codigos::kOk, "ab"},
      {"newer", sDois, "", "", sVersao2, "", codigos::kBaseMaisNova, "0ab"},
      {"not swapped", sDois, Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"not swapped, first record zero", Base(sZeros + "ab"), Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"not swapped, with header", sComCabecalho + sDois, Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"record file gone", "", Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"companion gone", sDois, "", Diario("ab"), "", "", codigos::kOk, "ab"},
      {"companion of something else", sDois, Base("xy"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"swapped", Base("ab"), "", Diario("ab"), "", "", codigos::kOk, "ab"},
      {"swapped, version torn", Base("ab"), "", Diario("ab"), sRasgada, "", codigos::kOk, "ab"},
      {"swapped, version listed", Base("ab"), "", Diario("ab"), "", sListada, codigos::kOk, "ab"},
      {"no vehicles, version torn", "", "", Diario(""), "x", "", codigos::kOk, ""},
      {"version torn, not swapped", sDois, Base("ab"), Diario("ab"), "x", "", codigos::kTamanhoDiferente, "0ab"},
      {"version torn, no journal", Base("ab"), "", "", "x", "", codigos::kTamanhoDiferente, "ab"},
      {"other base", Base("0xyz"), Base("ab"), Diario("ab"), "", "", codigos::kTraNaoRenomeado, "0xyz"},
      {"other base, as long as before", Base("0xy"), "", Diario("ab"), "", "", codigos::kTraNaoRenomeado, "0xy"},
      {"other base, as long as after", Base("xy"), "", Diario("ab"), "", "", codigos::kTraNaoRenomeado, "xy"},
      {"torn journal", sDois, Base("ab"), Diario("xy").replace(8, 1, "x"), "", "", codigos::kOk, "ab"},
      {"short journal", sDois, Base("ab"), Diario("ab").substr(0, 31), "", "", codigos::kOk, "ab"},
      {"other version's journal", sDois, "", Diario("xy", 2), "", "", codigos::kOk, "ab"},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.nome);
    EmpresaComBase empresa;
    const std::pair<const char *, std::string> arquivos[] = {{"DFVEIC.DAT", caso.base},
                                                             {"DFVEIC.TRA", caso.companheiro},
                                                             {kDiario, caso.diario},
                                                             {"DFVEIVS.DAT", caso.versao},
                                                             {"QZDATABASE_FILE_CTRL.DAT", caso.lista}};
    for (const auto &[lpNome, bytes] : arquivos) {
      if (!bytes.empty()) {
        empresa.Escreve(lpNome, bytes);
      }
    }
    for (int vez = 0; vez < 2; ++vez) {
      apoio::ColetorRastro rastro;
      EXPECT_EQ(Abre(empresa), caso.hr);
      EXPECT_EQ(empresa.Existe("DFVEIC.DAT") ? empresa.Le("DFVEIC.DAT") : "", Base(caso.depois));
      if (Falhou(caso.hr)) {
        EXPECT_EQ(rastro.Toma().back(), "CBaseVeiculos::OnInicializa|BaseVeiculos.cpp|ExecutaConversao()");
        EXPECT_EQ(empresa.Existe("DFVEIVS.DAT") ? empresa.Le("DFVEIVS.DAT") : "", caso.versao);
      } else {
        EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
        EXPECT_EQ(empresa.Existe("DFVEIC.DAT"), !caso.depois.empty());
        EXPECT_FALSE(empresa.Existe("DFVEIC.TRA") || empresa.Existe(kDiario));
      }
    }
  }
}

/// A journal that cannot be read just now is not taken for none.
TEST_F(Conversao, DiarioPresoFazEsperar) {
  PoeBase("0ab");
  Falha(apoio::kOpGrava, "DFVEIVS.DAT", 1117);
  EXPECT_EQ(Abre(), codigos::kArqErroFisico) << "stopped before the version";
  ASSERT_TRUE(m_empresa.Existe(kDiario));
  Falha(apoio::kOpAbre, kDiario, 32);
  EXPECT_EQ(Abre(), codigos::kArqCompartilhamento);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  Falha(apoio::kOpLe, kDiario, 1117);
  EXPECT_EQ(Abre(), codigos::kArqErroFisico);
  Falha(apoio::kOpAbre, kDiario, 32, false);
  EXPECT_EQ(Abre(), codigos::kOk) << "one busy moment is ridden out";
  EXPECT_EQ(LeBase(), Base("ab"));
}

/// What the next step depends on is on the storage device, or the step is not taken.
TEST_F(Conversao, OQueNaoChegaAoDispositivoNaoConta) {
  PoeBase("0ab");
  const std::tuple<const char *, unsigned, bool> casos[] = {{"DFVEIC.TRA", apoio::kOpDescarrega, false},
                                                            {kDiario, apoio::kOpDescarrega, false},
                                                            {kDiario, apoio::kOpDescarrega | apoio::kOpApaga, true}};
  for (const auto &[lpNome, operacoes, bFica] : casos) {
    SCOPED_TRACE(testing::Message() << lpNome << " " << operacoes);
    Falha(operacoes, lpNome, 1117);
    EXPECT_EQ(Abre(), codigos::kArqErroFisico);
    EXPECT_EQ(LeBase(), Base("0ab"));
    EXPECT_EQ(m_empresa.Existe(lpNome), bFica);
  }
  Falha(apoio::kOpDescarrega, "DFVEIVS.DAT", 1117);
  EXPECT_EQ(Abre(), codigos::kArqErroFisico);
  EXPECT_EQ(Abre(), codigos::kOk) << "the version can be read";
  EXPECT_TRUE(m_empresa.Existe(kDiario)) << "but a power cut may still take it";
  Falha(apoio::kOpLe, "DFVEIVS.DAT", 1117);
  EXPECT_EQ(Abre(), codigos::kArqErroFisico) << "not taken for a torn one";
  m_falhas.Desarma();
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe(kDiario));
  EXPECT_EQ(LeBase(), Base("ab"));
}

/// A swap that fails leaves the old base and no journal, which would refuse what others add to it; one that only seems
/// to have failed leaves the journal.
TEST_F(Conversao, TrocaQueFalha) {
  PoeBase("0ab");
  Falha(apoio::kOpMove, "DFVEIC.DAT", 5);
  EXPECT_EQ(Abre(), codigos::kTraNaoRenomeado);
  m_falhas.Desarma();
  EXPECT_EQ(LeBase(), Base("0ab"));
  EXPECT_FALSE(m_empresa.Existe("DFVEIC.TRA"));
  EXPECT_FALSE(m_empresa.Existe(kDiario));

  apoio::PlanoFalha respostaPerdida = Plano(apoio::kOpMove, "DFVEIC.DAT", 64, false);
  respostaPerdida.aoFalhar = [this] {
    const CString sCompanheiro = m_empresa.Caminho("DFVEIC.TRA");
    EXPECT_FALSE(
        plataforma::ServicosDoSistema().arquivos->MoveSubstituindo(sCompanheiro, m_empresa.Caminho("DFVEIC.DAT")));
  };
  m_falhas.Arma(respostaPerdida);
  EXPECT_EQ(Abre(), codigos::kTraNaoRenomeado);
  m_falhas.Desarma();
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(LeBase(), Base("ab"));
}

}  // namespace
