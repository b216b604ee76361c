// Another program holds, renames, makes read-only and replaces the files of companies while clients work on them.

#include <cstdio>
#include <iostream>
#include <memory>

#include "core/platform/Plataforma.h"
#include "tests/campanha/ParteDaCampanha.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr unsigned kGravacoesDePreparo = 30;

constexpr unsigned kSeguraPoucoMs = 250;  ///< a server insists for half a second at least
constexpr unsigned kSeguraMs = 2000;
constexpr unsigned kSumidoMs = 1000;
constexpr DWORD kPausaMs = 250;  ///< one trouble at a time
constexpr ULONGLONG kTentaMs = 300;
constexpr ULONGLONG kTentaDeVoltaMs = 30000;

/// Result codes of files that somebody else has or took.
constexpr std::uint32_t kDeArquivoAlheio[] = {0x80043EB7, 0x80043EEE, 0x80043F00, 0x80043ED0,
                                              0x80043ED1, 0x810809F2, 0x81080A50};

std::string Hexa(HRESULT hr) {
  char texto[16];
  std::snprintf(texto, sizeof(texto), "0X%08X", static_cast<unsigned>(Bits(hr)));
  return texto;
}

/// Tries until it works.
template <class Tentativa>
bool Insiste(ULONGLONG ullMs, Tentativa tenta) {
  const ULONGLONG ullFim = GetTickCount64() + ullMs;
  bool bFeito = false;
  while (!(bFeito = tenta()) && GetTickCount64() < ullFim) {
    Sleep(1);
  }
  return bFeito;
}

class EstorvoDeFora : public ParteDaCampanha {
protected:
  /// Lets clients work on all companies, the last of which nobody disturbs. What is disturbed is either all, or logs
  /// too but only held, for less than a server insists.
  void Estorva(bool bTudo) {
    LigaLogs();
    CCliente segura;  // an object all the time: the server does not end by itself
    ASSERT_EQ(segura.Pede("cria").hr, S_OK);
    const std::vector<Handle> servidores = Servidores();
    ASSERT_EQ(servidores.size(), 1U);
    const unsigned uiSegundos = apoio::DoAmbiente("KALVO_SEGUNDOS", 4);
    // Companies that are opened and closed all the time: an open file cannot be taken.
    CEscritores::Modo modo{.uiGravacoesPorObjeto = 4, .uiSegundos = uiSegundos + 1};
    CLivro livros[3];
    std::deque<CEscritores> escritores;
    for (CLivro &livro : livros) {
      escritores.emplace_back(m_empresas.emplace_back().Codigo(), modo, livro, m_gerador).Comeca();
      escritores.back().EsperaGravacoes(kGravacoesDePreparo);
      modo.uiQtd = 2;
    }
    unsigned uiFeitos = 0;
    for (const ULONGLONG ullFim = GetTickCount64() + uiSegundos * 1000; GetTickCount64() < ullFim || uiFeitos == 0;) {
      uiFeitos += EstorvaArquivo(SorteiaArquivo(bTudo), bTudo) ? 1U : 0U;
      Sleep(kPausaMs);
    }
    std::cout << uiFeitos << " troubles, ";
    std::size_t uiConfirmadas = 0;
    for (std::size_t i = 0; i < escritores.size(); ++i) {
      escritores[i].Termina();
      ASSERT_NO_FATAL_FAILURE(Confere(m_empresas[i].Codigo(), livros[i]));
      ConfereRecusas(m_empresas[i], livros[i]);
      uiConfirmadas += livros[i].Confirmadas();
      EXPECT_TRUE(livros[i].Recusas().empty() || (bTudo && i + 1 < escritores.size())) << "without trouble";
    }
    EXPECT_EQ(WaitForSingleObject(servidores[0].get(), 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "the server has ended";
    EXPECT_EQ(Servidores().size(), 1U);
    std::cout << uiConfirmadas << " writes acknowledged; " << Veredito() << std::endl;
  }

  /// A file of the companies that are disturbed.
  CString SorteiaArquivo(bool bComDados) {
    const CString sPasta = m_empresas[m_gerador() % (m_empresas.size() - 1)].Caminho("");
    std::vector<CString> nomes;
    static_cast<void>(plataforma::Arquivos().Lista(sPasta, &nomes));
    std::erase_if(nomes, [&](const CString &sNome) { return bComDados && !sNome.ends_with(".DAT"); });
    return sPasta + (nomes.empty() ? "" : nomes[m_gerador() % nomes.size()]);
  }

  /// What scanners, backups and people do to a file: it is taken for a while and then is again what it was. One that
  /// the server has open is waited for, for moments. False when the file could not be had.
  bool EstorvaArquivo(const CString &sCaminho, bool bTudo) {
    const CString sLonge = sCaminho + ".longe";
    const unsigned uiAto = bTudo ? m_gerador() % 4 : 0;
    if (uiAto == 0) {
      std::unique_ptr<plataforma::IArquivoAberto> sozinho;
      if (!Insiste(kTentaMs, [&] { return !plataforma::Arquivos().Abre(sCaminho, {}, &sozinho); })) {
        return false;
      }
      Sleep(m_gerador() % (bTudo ? kSeguraMs : kSeguraPoucoMs));
      return true;
    }
    if (uiAto == 1) {
      const bool bFez = SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_READONLY);
      Sleep(m_gerador() % kSumidoMs);
      SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_NORMAL);
      return bFez;
    }
    const auto move = [](const CString &sDe, const CString &sPara) {
      return !plataforma::Arquivos().MoveSubstituindo(sDe, sPara);
    };
    if (!Insiste(kTentaMs, [&] { return move(sCaminho, sLonge); })) {
      return false;
    }
    Sleep(m_gerador() % kSumidoMs);
    if (uiAto == 3) {
      apoio::EscreveArquivo(sLonge, apoio::LeArquivo(sLonge));
    }
    // The server may have made a new file meanwhile, and have it open.
    EXPECT_TRUE(Insiste(kTentaDeVoltaMs, [&] { return move(sLonge, sCaminho); })) << sCaminho << " cannot be put back";
    return true;
  }

  /// What failed did so because of the files, and the company's log says it.
  static void ConfereRecusas(const Empresa &empresa, const CLivro &livro) {
    for (const HRESULT hr : livro.Recusas()) {
      EXPECT_EQ(std::ranges::count(kDeArquivoAlheio, Bits(hr)), 1) << Hexa(hr);
      EXPECT_NE(apoio::LeArquivo(empresa.Caminho("QZProfilerErros.dat")).find(Hexa(hr)), std::string::npos)
          << Hexa(hr) << " is not in the log";
    }
  }
};

TEST_F(EstorvoDeFora, QuemSeguraPoucoNaoEstorvaNinguem) {
  Estorva(false);
}

TEST_F(EstorvoDeFora, OQueFaltouFoiDitoENadaSePerdeu) {
  Estorva(true);
}

}  // namespace
}  // namespace campanha
