// Another program holds, renames, makes read-only and deletes the files of companies while clients work on them.

#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>

#include "tests/campanha/Clientes.h"
#include "tests/campanha/Estorvo.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"

using namespace apoiocom;

namespace campanha {
namespace {

/// Small companies, opened and closed all the time: an open file cannot be taken.
constexpr CEscritores::Modo kInquieto{.uiQtd = 1, .uiGravacoesPorObjeto = 4, .uiMaiorPosicao = 200};
constexpr CEscritores::Modo kInquietos{.uiQtd = 2, .uiGravacoesPorObjeto = 4, .uiMaiorPosicao = 200};
constexpr CEscritores::Modo kSossegado{.uiQtd = 1, .uiGravacoesPorObjeto = 50, .uiMaiorPosicao = 200};
constexpr unsigned kLinhasDePreparo = 60;

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
    m_spSegura = std::make_unique<CSeguraServidor>();
    m_idServidor = IdsDosServidores();
    ASSERT_EQ(m_idServidor.size(), 1U);
    for (const CEscritores::Modo &modo : {kInquieto, kInquietos, kSossegado}) {
      CompanhiaEmUso &companhia = m_companhias.emplace_back();
      companhia.pEmpresa = &MaisUmaEmpresa();
      companhia.modo = modo;
      CEscritores escritores(companhia.pEmpresa->Codigo(), {.uiQtd = 1}, companhia.livro, m_gerador);
      escritores.Comeca();
      escritores.EsperaLinhas(kLinhasDePreparo);
      escritores.Para();
      escritores.Termina(&companhia.livro);
      Confere(companhia);
    }
  }

  /// Lets clients work on all companies, the last of which nobody disturbs.
  void Estorva(CEstorvo::Modo eModo, unsigned uiSegundos) {
    for (CompanhiaEmUso &companhia : m_companhias) {
      companhia.spEscritores =
          std::make_unique<CEscritores>(companhia.pEmpresa->Codigo(), companhia.modo, companhia.livro, m_gerador);
      companhia.spEscritores->Comeca();
    }
    CEstorvo estorvo({m_companhias[0].pEmpresa->Arquivo(""), m_companhias[1].pEmpresa->Arquivo("")}, eModo,
                     static_cast<unsigned>(m_gerador()));
    Espera(std::chrono::seconds(uiSegundos));
    estorvo.Para();
    EXPECT_EQ(estorvo.Perdidos(), std::vector<CString>());
    EXPECT_FALSE(estorvo.Feitos().empty());
    for (const auto &[sOque, uiVezes] : estorvo.Feitos()) {
      std::cout << sOque << " " << uiVezes << " times, ";
    }
    for (CompanhiaEmUso &companhia : m_companhias) {
      companhia.spEscritores->Para();
      companhia.spEscritores->Termina(&companhia.livro);
      Confere(companhia);
    }
    EXPECT_TRUE(m_companhias.back().spEscritores->Recusas().empty()) << "the trouble of other companies";
    EXPECT_EQ(IdsDosServidores(), m_idServidor);
  }

  static void Confere(CompanhiaEmUso &companhia) {
    const Leitura leitura = LeEmpresa(companhia.pEmpresa->Codigo());
    EXPECT_EQ(Hexa(leitura.hr), Hexa(S_OK));
    EXPECT_EQ(companhia.livro.Confere(leitura.numeros), "");
  }

  /// The calls that failed, with their codes.
  std::map<HRESULT, unsigned> Recusas() const {
    std::map<HRESULT, unsigned> recusas;
    for (const CompanhiaEmUso &companhia : m_companhias) {
      for (const auto &[hr, uiVezes] : companhia.spEscritores->Recusas()) {
        recusas[hr] += uiVezes;
      }
    }
    return recusas;
  }

  std::size_t Confirmadas() const {
    std::size_t uiTotal = 0;
    for (const CompanhiaEmUso &companhia : m_companhias) {
      uiTotal += companhia.livro.Confirmadas();
    }
    return uiTotal;
  }

  std::unique_ptr<CSeguraServidor> m_spSegura;
  std::vector<CompanhiaEmUso> m_companhias;
  std::vector<DWORD> m_idServidor;
};

TEST_F(EstorvoDeFora, QuemSeguraPoucoNaoEstorvaNinguem) {
  Estorva(CEstorvo::Modo::SeguraPouco, Segundos(4));
  for (const auto &[hr, uiVezes] : Recusas()) {
    ADD_FAILURE() << Hexa(hr) << " " << uiVezes << " times";
  }
  std::cout << Confirmadas() << " writes acknowledged, " << Recusas().size() << " result codes of failures; "
            << Veredito() << std::endl;
}

TEST_F(EstorvoDeFora, OQueFaltouFoiDitoENadaSePerdeu) {
  Estorva(CEstorvo::Modo::Tudo, Segundos(4));
  unsigned uiFalhas = 0;
  for (const auto &[hr, uiVezes] : Recusas()) {
    EXPECT_TRUE(EhDeArquivoAlheio(hr)) << Hexa(hr);
    std::cout << Hexa(hr) << " " << uiVezes << " times, ";
    uiFalhas += uiVezes;
  }
  for (const CompanhiaEmUso &companhia : m_companhias) {
    for (const auto &[hr, uiVezes] : companhia.spEscritores->Recusas()) {
      const CString sLog = companhia.pEmpresa->Arquivo("QZProfilerErros.dat");
      EXPECT_NE(apoio::LeArquivo(sLog).find(Hexa(hr)), std::string::npos) << Hexa(hr) << " is not in the log";
    }
  }
  std::cout << Confirmadas() << " writes acknowledged, " << uiFalhas << " calls told that they failed; " << Veredito()
            << std::endl;
}

}  // namespace
}  // namespace campanha
