// A process that is killed while it writes vehicles: what it was told done is done, and the company opens again.

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <random>
#include <sstream>

#include "tests/apoio/Corrida.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

/// The vehicle of a process's N-th write.
tagREG_VEICULOPS VeiculoDaVez(unsigned uiVez, LONG lPos) {
  return Veiculo(std::to_string(uiVez) + "/" + std::to_string(lPos));
}

/// Appends and writes over without end; before each write its position and number are told, and after it "done".
int GravaAteMorrer(const std::vector<std::string> &argumentos) {
  apoio::RegistroTeste registro;
  const CString sChave = CString(kChaveSuite) + "Empresas\\" + argumentos[0];
  if (!plataforma::Registro().ExisteChave(sChave)) {  // a system without a registry has one in each process
    registro.DefineTexto(sChave, "DF", argumentos[1]);
  }
  std::mt19937 gerador(static_cast<unsigned>(std::stoul(argumentos[2])));
  CBaseVeiculos base;
  std::uint32_t iQtd = 0;
  if (Falhou(base.Inicializa(argumentos[0], 7, 42)) || Falhou(base.GetQuantidadeRegistros(&iQtd))) {
    return 1;
  }
  for (unsigned uiVez = 1;; ++uiVez) {
    const bool bAcrescenta = iQtd == 0 || gerador() % 2 == 0;
    const auto lPos = static_cast<LONG>(bAcrescenta ? iQtd + 1 : 1 + gerador() % iQtd);
    std::cout << lPos << " " << uiVez << std::endl;
    LONG lOnde = bAcrescenta ? 0 : lPos;
    if (Falhou(base.Grava(&lOnde, VeiculoDaVez(uiVez, lPos))) || lOnde != lPos) {
      return 1;
    }
    iQtd += bAcrescenta ? 1 : 0;
    std::cout << "done" << std::endl;
  }
}
const apoio::RegistraFilha kQueGrava("grava-ate-morrer", GravaAteMorrer);

TEST(MorteNoMeioDaGravacao, OQueFoiConfirmadoEstaLa) {
  const apoio::EmpresaComBase empresa;
  const unsigned uiSemente = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << uiSemente);
  std::mt19937 gerador(uiSemente);
  std::vector<std::string> base;  // the vehicles of the company
  unsigned uiConfirmadas = 0;
  for (unsigned uiRodada = 0; uiRodada < apoio::Rodadas(); ++uiRodada) {
    apoio::ProcessoFilho filho("grava-ate-morrer", {empresa.Codigo(), empresa.Caminho(""), std::to_string(gerador())});
    std::pair<LONG, std::string> emCurso{0, ""};
    const auto uiAte = static_cast<unsigned>(1 + gerador() % 200);
    unsigned uiLidas = 0;
    for (std::string sLinha = filho.LeLinha(); !sLinha.empty(); sLinha = filho.LeLinha()) {
      if (sLinha == "done") {
        base.resize(std::max(base.size(), static_cast<std::size_t>(emCurso.first)));
        base[static_cast<std::size_t>(emCurso.first - 1)] = emCurso.second;
        emCurso.first = 0;
        ++uiConfirmadas;
      } else {
        unsigned uiVez = 0;
        std::istringstream(sLinha) >> emCurso.first >> uiVez;
        emCurso.second = Bytes(VeiculoDaVez(uiVez, emCurso.first));
      }
      if (++uiLidas == uiAte) {
        const auto fim = std::chrono::steady_clock::now() + std::chrono::microseconds(gerador() % 300);
        while (std::chrono::steady_clock::now() < fim) {
        }
        filho.Mata();
      }
    }
    CBaseVeiculos registro;
    ASSERT_EQ(registro.Inicializa(empresa.Codigo(), 7, 42), codigos::kOk) << "round " << uiRodada;
    std::uint32_t iQtd = 0;
    ASSERT_EQ(registro.GetQuantidadeRegistros(&iQtd), codigos::kOk);
    for (LONG lPos = 1; lPos <= static_cast<LONG>(std::max<std::size_t>(iQtd, base.size())); ++lPos) {
      tagREG_VEICULOPS veiculo;
      ASSERT_EQ(registro.LePonteiros(1, &lPos, &veiculo), codigos::kOk) << "round " << uiRodada;
      const auto indice = static_cast<std::size_t>(lPos - 1);
      base.resize(std::max(base.size(), indice + 1));
      if (lPos == emCurso.first && Bytes(veiculo) == emCurso.second) {
        base[indice] = emCurso.second;  // nobody was told, but it was done
      }
      ASSERT_EQ(Bytes(veiculo), base[indice]) << "round " << uiRodada << ", position " << lPos;
    }
  }
  std::cout << apoio::Rodadas() << " rounds, " << uiConfirmadas << " acknowledged, 0 lost, 0 refused" << std::endl;
}

}  // namespace
