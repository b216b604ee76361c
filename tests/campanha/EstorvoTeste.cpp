// Another program holds, renames, makes read-only and deletes the files of companies while clients work on them.

#include <cstdio>
#include <iostream>
#include <memory>

#include "tests/campanha/Clientes.h"
#include "tests/campanha/Estorvo.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// Small companies, opened and closed all the time: an open file cannot be taken.
constexpr CEscritores::Modo kModos[] = {{.uiQtd = 1, .uiGravacoesPorObjeto = 4, .lMaiorPosicao = 200},
                                        {.uiQtd = 2, .uiGravacoesPorObjeto = 4, .lMaiorPosicao = 200},
                                        {.uiQtd = 1, .uiGravacoesPorObjeto = 50, .lMaiorPosicao = 200}};
constexpr unsigned kGravacoesDePreparo = 30;

/// Result codes of files that somebody else has or took.
bool EhDeArquivoAlheio(HRESULT hr) {
  const std::uint32_t kCodigos[] = {0x80043EB7, 0x80043EEE, 0x80043F00, 0x80043ED0, 0x80043ED1, 0x810809F2, 0x81080A50};
  return std::count(std::begin(kCodigos), std::end(kCodigos), Bits(hr)) != 0;
}

std::string Hexa(HRESULT hr) {
  char texto[16];
  std::snprintf(texto, sizeof(texto), "0X%08X", static_cast<unsigned>(Bits(hr)));
  return texto;
}

struct CompanhiaEmUso {
  const Empresa *pEmpresa;
  CEscritores::Modo modo;
  CLivro livro;
  std::unique_ptr<CEscritores> spEscritores;
};

class EstorvoDeFora : public ParteDaCampanha {
protected:
  void SetUp() override {
    ParteDaCampanha::SetUp();
    LigaLogs();
    ASSERT_EQ(m_segura.Pede("cria").hr, S_OK);
    m_idServidor = IdsDosServidores();
    ASSERT_EQ(m_idServidor.size(), 1U);
    for (const CEscritores::Modo &modo : kModos) {
      m_companhias.push_back({&MaisUmaEmpresa(), modo, {}, nullptr});
    }
  }

  /// Lets clients work on all companies, the last of which nobody disturbs.
  void Estorva(CEstorvo::Modo eModo, unsigned uiSegundos) {
    for (CompanhiaEmUso &companhia : m_companhias) {
      companhia.spEscritores =
          std::make_unique<CEscritores>(companhia.pEmpresa->Codigo(), companhia.modo, companhia.livro, m_gerador);
      companhia.spEscritores->Comeca();
      companhia.spEscritores->EsperaGravacoes(kGravacoesDePreparo);
    }
    CEstorvo estorvo({m_companhias[0].pEmpresa->Arquivo(""), m_companhias[1].pEmpresa->Arquivo("")}, eModo,
                     static_cast<unsigned>(m_gerador()));
    Espera(std::chrono::seconds(uiSegundos));
    estorvo.Para();
    EXPECT_EQ(estorvo.Perdidos(), std::vector<CString>());
    for (const auto &[sOque, uiVezes] : estorvo.Feitos()) {
      std::cout << sOque << " " << uiVezes << " times, ";
    }
    for (CompanhiaEmUso &companhia : m_companhias) {
      companhia.spEscritores->Para();
      companhia.spEscritores->Termina(&companhia.livro);
      const Resposta leitura = LeEmpresa(companhia.pEmpresa->Codigo());
      EXPECT_EQ(Hexa(leitura.hr), Hexa(S_OK));
      EXPECT_EQ(companhia.livro.Confere(leitura.numeros), "");
      m_uiConfirmadas += companhia.livro.Confirmadas();
      ConfereRecusas(companhia);
    }
    EXPECT_TRUE(m_companhias.back().spEscritores->Recusas().empty()) << "the trouble of other companies";
    EXPECT_TRUE(eModo == CEstorvo::Modo::Tudo || m_uiFalhas == 0);
    EXPECT_EQ(IdsDosServidores(), m_idServidor);
    std::cout << m_uiConfirmadas << " writes acknowledged, " << m_uiFalhas << " calls told that they failed; "
              << Veredito() << std::endl;
  }

  /// What failed did so because of the files, and the company's log says it.
  void ConfereRecusas(const CompanhiaEmUso &companhia) {
    for (const auto &[hr, uiVezes] : companhia.spEscritores->Recusas()) {
      const CString sLog = companhia.pEmpresa->Arquivo("QZProfilerErros.dat");
      EXPECT_TRUE(EhDeArquivoAlheio(hr)) << Hexa(hr);
      EXPECT_NE(apoio::LeArquivo(sLog).find(Hexa(hr)), std::string::npos) << Hexa(hr) << " is not in the log";
      std::cout << Hexa(hr) << " " << uiVezes << " times, ";
      m_uiFalhas += uiVezes;
    }
  }

  CCliente m_segura;  ///< with an object for as long as it lives: the server does not end by itself
  std::vector<CompanhiaEmUso> m_companhias;
  std::vector<DWORD> m_idServidor;
  std::size_t m_uiConfirmadas = 0;
  unsigned m_uiFalhas = 0;
};

TEST_F(EstorvoDeFora, QuemSeguraPoucoNaoEstorvaNinguem) {
  Estorva(CEstorvo::Modo::SeguraPouco, Segundos(4));
}

TEST_F(EstorvoDeFora, OQueFaltouFoiDitoENadaSePerdeu) {
  Estorva(CEstorvo::Modo::Tudo, Segundos(4));
}

}  // namespace
}  // namespace campanha
