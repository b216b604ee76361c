#include <gtest/gtest.h>

#include "tests/apoio/ChaveCabecalho.h"
#include "tests/campanha/Servidores.h"
#include "tests/com/ApoioCom.h"

namespace {

constexpr char kChave[] = "SOFTWARE\\Wow6432Node\\Tarvel";

/// Registers the server for all parts of the campaign, with the switch for headers as the program's own. The program
/// itself is no client: it ends servers, and the platform's memory of them with these.
class AmbienteCampanha : public testing::Environment {
public:
  void SetUp() override {
    std::string sErro;
    ASSERT_EQ(apoiocom::ExecutaKalvo("/RegServer", &sErro), 0U) << sErro;
    const DWORD dwLigado = 1;
    if (apoio::CabecalhosLigados()) {
      ASSERT_EQ(
          RegSetKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho, REG_DWORD, &dwLigado, sizeof(dwLigado)),
          0);
    }
  }

  void TearDown() override {
    campanha::MataServidores();
    apoiocom::EsqueceServidores();
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho);
    std::string sErro;
    EXPECT_EQ(apoiocom::ExecutaKalvo("/UnregServer", &sErro), 0U) << sErro;
  }
};

const testing::Environment *const g_pAmbiente = testing::AddGlobalTestEnvironment(new AmbienteCampanha);

}  // namespace
