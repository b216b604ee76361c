// Several processes that find a base of version 0 at once: it is converted once.

#include <gtest/gtest.h>

#include <numeric>

#include "tests/apoio/Corrida.h"
#include "tests/vehicles/AmostraVeiculos.h"

namespace {

int Participa(const std::vector<std::string> &argumentos) {
  return apoio::Corrida::Corre(argumentos, [&](unsigned, unsigned *puiFeitos) {
    const HRESULT hr = AbreUmaVez(argumentos[0]);
    *puiFeitos = Falhou(hr) ? 0 : 1;
    return hr;
  });
}
const apoio::RegistraFilha kQueConverte("corrida-de-conversoes", Participa);

TEST(CorridaDeConversoes, SoOPrimeiroRegistroSaiEUmaVez) {
  std::string letras(50, '0');
  std::iota(letras.begin(), letras.end(), '0');
  const apoio::EmpresaComBase empresa;
  for (const unsigned uiProcessos : {2U, 4U}) {
    apoio::Corrida corrida("corrida-de-conversoes", empresa, uiProcessos, "base of version 0");
    while (corrida.Proxima()) {
      empresa.Escreve("DFVEIC.DAT", Base(letras));
      static_cast<void>(corrida.Roda());
      EXPECT_EQ(corrida.Dados("DFVEIVS.DAT"), kVersao1);
      EXPECT_TRUE(corrida.Dados("DFVEIC.DAT") == Base(letras.substr(1)));
      corrida.ConferePasta({"DFVEIVS.DAT"});
      EXPECT_EQ(AbreUmaVez(empresa.Codigo()), codigos::kOk);
    }
  }
}

}  // namespace
