#include <gtest/gtest.h>

#include "tests/com/ApoioCom.h"

namespace {

/// Registers the server for all tests of the program and keeps one client apartment open.
class AmbienteCom : public testing::Environment {
public:
  void SetUp() override {
    apoiocom::EsqueceServidores();  // an earlier run may have ended one
    std::string sErro;
    ASSERT_EQ(apoiocom::ExecutaKalvo("/RegServer", &sErro), 0U) << sErro;
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    // Several clients that activate at once each start a server under Wine; the first activation is made alone.
    HRESULT hr = S_OK;
    const apoiocom::Veiculos spVeiculos = apoiocom::Cria(&hr);
    ASSERT_EQ(hr, S_OK);
  }

  void TearDown() override {
    CoUninitialize();
    EXPECT_GE(apoiocom::EsperaServidorTerminar(), 0) << "the server did not end";
    std::string sErro;
    EXPECT_EQ(apoiocom::ExecutaKalvo("-unregserver", &sErro), 0U) << sErro;
  }
};

const testing::Environment *const g_pAmbiente = testing::AddGlobalTestEnvironment(new AmbienteCom);

}  // namespace
