// The process ends, or the power fails, during the conversion of a base of version 0.

#include "tests/apoio/SerieFalhas.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

constexpr char kLista[] = "QZDATABASE_FILE_CTRL.DAT";

class ForcaNaConversao : public testing::Test {
protected:
  static HRESULT Abre(const apoio::EmpresaComBase &empresa) {
    CBaseVeiculos base;
    return base.Inicializa(empresa.Codigo(), 7, 42);
  }

  static void Recomeca(const apoio::EmpresaComBase &empresa, const char *lpLetras, const apoio::SerieQuedas &serie) {
    HRESULT hr = Abre(empresa);
    if (hr == codigos::kDadosNaoConferem && apoio::CabecalhosLigados() && !serie.DoProcesso()) {
      // Between a line of the list of created files and the header that vouches for it.
      ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho(kLista)));
      hr = Abre(empresa);
    }
    ASSERT_EQ(hr, codigos::kOk) << std::hex << BitsResultado(hr);
    ASSERT_EQ(empresa.Existe("DFVEIC.DAT") ? empresa.Le("DFVEIC.DAT") : "", Base(lpLetras));
    ASSERT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
    for (const char *lpResto : {"DFVEIC.TRA", "DFVEIVS.TRA", "DFVEIVSD.TRA"}) {
      ASSERT_FALSE(empresa.Existe(lpResto)) << lpResto;
    }
  }

  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
};

/// Whenever it fails: the first record goes, once, and no vehicle does.
TEST_F(ForcaNaConversao, SoOPrimeiroRegistroSai) {
  const struct {
    const char *antes;
    const char *depois;
    bool bListado;
    bool bComCabecalho;
  } casos[] = {{"0abc", "abc", false, false}, {"0", "", true, false}, {"0ab", "ab", true, true}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.antes);
    const std::string bytes = Base(caso.antes);
    for (apoio::SerieQuedas serie; serie.Proxima();) {
      const apoio::EmpresaComBase empresa;
      empresa.Escreve("DFVEIC.DAT", caso.bComCabecalho ? apoio::NoDisco("DFVEIC.DAT", bytes) : bytes);
      if (caso.bListado) {
        empresa.Escreve(kLista, std::string("\x0A\0\0\0DFVEIC.DAT", 14));
      }
      serie.Roda(empresa.Caminho(""), [&] { static_cast<void>(Abre(empresa)); });
      Recomeca(empresa, caso.depois, serie);
    }
  }
}

}  // namespace
