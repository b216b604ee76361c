// A company on a file system that becomes full.

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "core/env/QZPath.h"
#include "tests/campanha/ParteDaCampanha.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr std::uint32_t kDiscoCheio = 0x80043F08;
constexpr char kEmpresa[] = "DISCO";

class DiscoCheio : public ParteDaCampanha {
protected:
  void SetUp() override {
    const char *const lpDisco = std::getenv("KALVO_DISCO_PEQUENO");
    if (lpDisco == nullptr || *lpDisco == '\0') {
      GTEST_SKIP() << "no small file system could be had (KALVO_DISCO_PEQUENO names none)";
    }
    m_sDisco = CString(lpDisco) + "\\";
    ParteDaCampanha::SetUp();
    m_registro.DefineTexto(CString(kChaveSuite) + "Empresas\\" + kEmpresa, "DF", m_sDisco);
  }

  /// Another program takes all the room that is left.
  void Enche() const {
    std::ofstream cheio(apoio::CaminhoDoSistema(m_sDisco + "CHEIO"), std::ios::binary);
    while (cheio << std::string(4096, 'x') << std::flush) {
    }
  }
  void Esvazia() const { EXPECT_TRUE(DeleteFileA((m_sDisco + "CHEIO").c_str())); }

  std::uint32_t Grava(CCliente &cliente, LONG lPos) {
    const Resposta resposta = cliente.Pede("grava " + std::to_string(lPos) + " " + std::to_string(++m_uiNumero));
    m_livro.Anota({resposta.hr == S_OK ? static_cast<LONG>(resposta.numeros.at(0)) : lPos, m_uiNumero, resposta.hr});
    return Bits(resposta.hr);
  }

  CString m_sDisco;
  CLivro m_livro;
  std::uint32_t m_uiNumero = 0;
};

TEST_F(DiscoCheio, DizODiscoCheioEVoltaAGravarQuandoHaLugar) {
  for (LONG lVez = 1; lVez <= 3; ++lVez) {
    unsigned uiCabem = 0;
    {
      CCliente cliente;
      ASSERT_EQ(Bits(cliente.Pede("cria").hr), Bits(S_OK));
      ASSERT_EQ(Bits(cliente.Pede(CString("abre ") + kEmpresa).hr), Bits(S_OK));
      for (unsigned i = 0; i < 20; ++i) {
        ASSERT_EQ(Grava(cliente, 0), Bits(S_OK));
      }
      Enche();
      std::uint32_t uiCodigo = 0;
      while ((uiCodigo = Grava(cliente, 0)) == 0 && uiCabem < 100) {
        ++uiCabem;
      }
      EXPECT_EQ(uiCodigo, kDiscoCheio);
      EXPECT_EQ(Grava(cliente, 0), kDiscoCheio);
      EXPECT_EQ(Grava(cliente, lVez), Bits(S_OK)) << "needs no room";
      ASSERT_NO_FATAL_FAILURE(Confere(kEmpresa, m_livro));
      if (lVez == 1) {
        Esvazia();
        EXPECT_EQ(Grava(cliente, 0), Bits(S_OK)) << "there is room again";
      } else if (lVez == 2) {
        MataServidores();
      }
    }
    ASSERT_NO_FATAL_FAILURE(Confere(kEmpresa, m_livro));  // on the full disk, but for the first time
    if (lVez != 1) {
      Esvazia();
    }
    std::cout << uiCabem << " vehicles fitted behind the others on the full disk, then 0x80043F08; ";
  }
  std::cout << m_livro.Confirmadas() << " acknowledged; " << Veredito() << std::endl;
}

}  // namespace
}  // namespace campanha
