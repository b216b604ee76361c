// The process ends, or the power fails, during the conversion of a base of version 0, or another one keeps its lock.

#include <cstdlib>

#include "tests/apoio/SerieFalhas.h"
#include "tests/vehicles/AmostraVeiculos.h"

namespace {

constexpr char kLista[] = "QZDATABASE_FILE_CTRL.DAT";

/// Whenever it fails: the first record goes, once, and no vehicle does.
TEST(ForcaNaConversao, SoOPrimeiroRegistroSai) {
  apoio::RelogioFalso relogio;
  const apoio::ServicosTrocados servicos(nullptr, nullptr, &relogio);
  const std::tuple<const char *, const char *, bool, bool> casos[] = {
      {"0abc", "abc", false, false}, {"0", "", true, false}, {"0ab", "ab", true, true}};
  for (const auto &[antes, depois, bListado, bComCabecalho] : casos) {
    SCOPED_TRACE(antes);
    const std::string bytes = Base(antes);
    for (apoio::SerieQuedas serie; serie.Proxima();) {
      const apoio::EmpresaComBase empresa;
      empresa.Escreve("DFVEIC.DAT", bComCabecalho ? apoio::NoDisco("DFVEIC.DAT", bytes) : bytes);
      if (bListado) {
        empresa.Escreve(kLista, apoio::Linhas({"DFVEIC.DAT"}));
      }
      serie.Roda(empresa.Caminho(""), [&] { static_cast<void>(AbreUmaVez(empresa.Codigo())); });
      HRESULT hr = AbreUmaVez(empresa.Codigo());
      if (hr == codigos::kDadosNaoConferem && apoio::CabecalhosLigados() && !serie.DoProcesso()) {
        // Between a line of the list of created files and the header that vouches for it.
        ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho(kLista)));
        hr = AbreUmaVez(empresa.Codigo());
      }
      ASSERT_EQ(hr, codigos::kOk) << std::hex << BitsResultado(hr);
      ASSERT_EQ(empresa.Existe("DFVEIC.DAT") ? empresa.Le("DFVEIC.DAT") : "", Base(depois));
      ASSERT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
      for (const char *lpResto : {"DFVEIC.TRA", "DFVEIVS.TRA", "DFVEIVSD.TRA"}) {
        ASSERT_FALSE(empresa.Existe(lpResto)) << lpResto;
      }
    }
  }
}

/// The lock of the directory cannot be had, as when another process keeps it for too long.
TEST(TravaDaConversao, SemElaNadaEConvertido) {
  const apoio::EmpresaComBase empresa;
  const std::string bytes = Base("0a");
  empresa.Escreve("DFVEIC.DAT", bytes);
  const char *const lpTemp = std::getenv("TMPDIR");
  const std::string sAntes = lpTemp != nullptr ? lpTemp : "/tmp";
  ASSERT_EQ(::setenv("TMPDIR", empresa.Caminho("nada").c_str(), 1), 0);
  EXPECT_EQ(AbreUmaVez(empresa.Codigo()), codigos::kArqCompartilhamento);
  ASSERT_EQ(::setenv("TMPDIR", sAntes.c_str(), 1), 0);
  EXPECT_EQ(empresa.LeInteiro("DFVEIC.DAT"), bytes);
}

}  // namespace
