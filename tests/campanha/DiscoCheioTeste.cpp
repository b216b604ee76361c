// A company on a file system that becomes full.

#include <cstdlib>
#include <iostream>

#include "core/env/QZPath.h"
#include "tests/campanha/Clientes.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr std::uint32_t kDiscoCheio = 0x80043F08;

class DiscoCheio : public ParteDaCampanha {
protected:
  void SetUp() override {
    const char *const lpDisco = std::getenv("KALVO_DISCO_PEQUENO");
    if (lpDisco == nullptr || *lpDisco == '\0') {
      GTEST_SKIP() << "no small file system could be had (KALVO_DISCO_PEQUENO names none)";
    }
    m_sDisco = CString(lpDisco) + "\\";
    ParteDaCampanha::SetUp();
    for (const std::string &sNome : Sobras(m_sDisco, "")) {
      DeleteFileA((m_sDisco + sNome).c_str());
    }
    m_registro.DefineTexto(CString(kChaveSuite) + "Empresas\\" + kEmpresa, "DF", m_sDisco);
  }

  /// Another program takes all the room that is left.
  void Enche() const {
    const std::string sBloco(4096, 'x');
    const HANDLE hArquivo =
        CreateFileA((m_sDisco + "CHEIO").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD dwGravados = 1;
    while (WriteFile(hArquivo, sBloco.data(), static_cast<DWORD>(sBloco.size()), &dwGravados, nullptr) &&
           dwGravados != 0) {
    }
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISK_FULL));
    CloseHandle(hArquivo);
  }
  void Esvazia() const { EXPECT_TRUE(DeleteFileA((m_sDisco + "CHEIO").c_str())); }

  HRESULT Grava(CCliente &cliente, LONG lPos) {
    Gravacao gravacao{lPos, ++m_uiNumero};
    const HRESULT hr = cliente.Grava(&gravacao.lPos, m_uiNumero);
    gravacao.eFim = hr == S_OK ? Gravacao::Fim::Confirmada : Gravacao::Fim::Recusada;
    m_livro.Anota({gravacao});
    return hr;
  }

  void Confere() {
    const Resposta leitura = LeEmpresa(kEmpresa);
    ASSERT_EQ(Bits(leitura.hr), Bits(S_OK));
    ASSERT_EQ(m_livro.Confere(leitura.numeros), "");
  }

  static constexpr char kEmpresa[] = "DISCO";
  CString m_sDisco;
  apoio::RegistroTeste m_registro;
  CLivro m_livro;
  std::uint32_t m_uiNumero = 0;
};

TEST_F(DiscoCheio, DizODiscoCheioEVoltaAGravarQuandoHaLugar) {
  for (unsigned uiVez = 0; uiVez < 3; ++uiVez) {
    unsigned uiCabem = 0;
    {
      CCliente cliente;
      ASSERT_EQ(Bits(cliente.Pede("cria").hr), Bits(S_OK));
      ASSERT_EQ(Bits(cliente.Pede(CString("abre ") + kEmpresa).hr), Bits(S_OK));
      for (unsigned i = 0; i < 20; ++i) {
        ASSERT_EQ(Grava(cliente, 0), S_OK);
      }
      Enche();
      HRESULT hr = S_OK;
      for (; hr == S_OK && uiCabem < 100; uiCabem += hr == S_OK ? 1U : 0U) {
        hr = Grava(cliente, 0);
      }
      EXPECT_EQ(Bits(hr), kDiscoCheio);
      EXPECT_EQ(Bits(Grava(cliente, 0)), kDiscoCheio);
      EXPECT_EQ(Bits(Grava(cliente, 1 + static_cast<LONG>(uiVez))), Bits(S_OK)) << "needs no room";
      Confere();
      if (uiVez == 0) {
        Esvazia();
        EXPECT_EQ(Bits(Grava(cliente, 0)), Bits(S_OK)) << "there is room again";
      } else if (uiVez == 1) {
        MataServidores();
        EsqueceServidores();
      }
    }
    Confere();  // on the full disk, but for the first time
    if (uiVez != 0) {
      Esvazia();
    }
    std::cout << uiCabem << " vehicles fitted behind the others on the full disk, then 0x80043F08; ";
  }
  std::cout << m_livro.Confirmadas() << " acknowledged; " << Veredito() << std::endl;
}

}  // namespace
}  // namespace campanha
