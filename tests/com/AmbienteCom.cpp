#include <gtest/gtest.h>

#include <memory>

#include "tests/com/ApoioCom.h"

namespace {

/// Registers the server for all tests of the program and keeps one client apartment open.
class AmbienteCom : public testing::Environment {
public:
  void SetUp() override {
    apoiocom::EsqueceServidores();  // an earlier run may have ended one
    std::string sErro;
    ASSERT_EQ(apoiocom::ExecutaKalvo("/RegServer", &sErro), 0U) << sErro;
    m_spApartamento = std::make_unique<apoiocom::Apartamento>();
    // Several clients that activate at once each start a server under Wine; the first activation is made alone.
    HRESULT hr = S_OK;
    const apoiocom::Veiculos spVeiculos = apoiocom::Cria(&hr);
    ASSERT_EQ(hr, S_OK);
  }

  void TearDown() override {
    m_spApartamento.reset();
    EXPECT_GE(apoiocom::EsperaServidorTerminar(), 0) << "the server did not end";
    std::string sErro;
    EXPECT_EQ(apoiocom::ExecutaKalvo("-unregserver", &sErro), 0U) << sErro;
  }

private:
  std::unique_ptr<apoiocom::Apartamento> m_spApartamento;
};

const testing::Environment *const g_pAmbiente = testing::AddGlobalTestEnvironment(new AmbienteCom);

}  // namespace
