#include "core/qzdatabase/disco/QZCrc64.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

using apoio::EmpresaComBase;

constexpr char kDiario[] = "DFVEIVSD.TRA";

using Conversao = apoio::ComEmpresa;

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
      EXPECT_EQ(AbreUmaVez(empresa.Codigo()), caso.hr);
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

/// What fails from where an earlier run got, and what is left of the base and the journal; the next start comes to the
/// end. What the next step depends on is on the storage device, or the step is not taken. A journal that cannot be read
/// just now is not taken for none, nor a version for a torn one. One beside the old base would refuse what others add
/// to that; where the swap only seems to have failed it is needed.
TEST_F(Conversao, FalhaEmCadaPasso) {
  apoio::PlanoFalha respostaPerdida = Plano(apoio::kOpMove, "DFVEIC.DAT", 64, false);
  respostaPerdida.aoFalhar = [this] {
    const CString sCaminhos = m_falhas.CaminhoDoDisparo();
    const std::size_t uiMeio = sCaminhos.find('\0');
    EXPECT_FALSE(plataforma::ServicosDoSistema().arquivos->MoveSubstituindo(sCaminhos.substr(0, uiMeio),
                                                                            sCaminhos.substr(uiMeio + 1)));
  };
  const std::tuple<std::string, std::string, apoio::PlanoFalha, HRESULT, const char *, bool> casos[] = {
      {"0ab", "", Plano(apoio::kOpDescarrega, "DFVEIC.TRA", 1117), codigos::kArqErroFisico, "0ab", false},
      {"0ab", "", Plano(apoio::kOpDescarrega, kDiario, 1117), codigos::kArqErroFisico, "0ab", false},
      {"0ab", "", Plano(apoio::kOpDescarrega | apoio::kOpApaga, kDiario, 1117), codigos::kArqErroFisico, "0ab", true},
      {"0ab", "", Plano(apoio::kOpMove, "DFVEIC.DAT", 5), codigos::kTraNaoRenomeado, "0ab", false},
      {"0ab", "", respostaPerdida, codigos::kTraNaoRenomeado, "ab", true},
      {"0ab", "", Plano(apoio::kOpGrava, "DFVEIVS.DAT", 1117), codigos::kArqErroFisico, "ab", true},
      {"0ab", "", Plano(apoio::kOpDescarrega, "DFVEIVS.DAT", 1117), codigos::kArqErroFisico, "ab", true},
      {"ab", "", Plano(apoio::kOpAbre, kDiario, 32), codigos::kArqCompartilhamento, "ab", true},
      {"ab", "", Plano(apoio::kOpAbre, kDiario, 32, false), codigos::kOk, "ab", false},
      {"ab", "", Plano(apoio::kOpLe, kDiario, 1117), codigos::kArqErroFisico, "ab", true},
      {"ab", kVersao1, Plano(apoio::kOpLe, "DFVEIVS.DAT", 1117), codigos::kArqErroFisico, "ab", true},
      {"ab", kVersao1, Plano(apoio::kOpDescarrega, "DFVEIVS.DAT", 1117), codigos::kOk, "ab", true},
  };
  for (const auto &[antes, versao, plano, hr, depois, bDiario] : casos) {
    SCOPED_TRACE(testing::Message() << antes << ", " << plano.trecho << ", " << plano.operacoes);
    const EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", apoio::NoDisco("DFVEIC.DAT", Base(antes)));
    if (antes == "ab") {
      empresa.Escreve(kDiario, Diario("ab"));
    }
    if (!versao.empty()) {
      empresa.Escreve("DFVEIVS.DAT", versao);
    }
    m_falhas.Arma(plano);
    EXPECT_EQ(AbreUmaVez(empresa.Codigo()), hr);
    m_falhas.Desarma();
    EXPECT_EQ(empresa.Le("DFVEIC.DAT"), Base(depois));
    EXPECT_EQ(empresa.Existe(kDiario), bDiario);
    EXPECT_FALSE(empresa.Existe("DFVEIC.TRA"));
    EXPECT_EQ(AbreUmaVez(empresa.Codigo()), codigos::kOk);
    EXPECT_EQ(empresa.Le("DFVEIC.DAT"), Base("ab"));
    EXPECT_FALSE(empresa.Existe(kDiario));
  }
}

}  // namespace
