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

bool Move(const CString &sDeOnde, const CString &sParaOnde, ULONGLONG ullMs) {
  return Insiste(ullMs, [&] { return !plataforma::Arquivos().MoveSubstituindo(sDeOnde, sParaOnde); });
}

class EstorvoDeFora : public ParteDaCampanha {
protected:
  /// Lets clients work on all companies, the last of which nobody disturbs. What is disturbed is either all, or logs
  /// too but only held, for less than a server insists.
  void Estorva(bool bTudo) {
    LigaLogs();
    CCliente segura;  // an object all the time: the server does not end by itself
    ASSERT_EQ(segura.Ouve().hr, S_OK);
    const std::vector<Handle> servidores = Servidores();
    ASSERT_EQ(servidores.size(), 1U);
    const unsigned uiSegundos = apoio::DoAmbiente("KALVO_SEGUNDOS", 4);
    // Companies that are opened and closed all the time: an open file cannot be taken.
    const CEscritores::Modo modos[] = {{.uiQtd = 1, .uiGravacoesPorObjeto = 4, .uiSegundos = uiSegundos + 1},
                                       {.uiQtd = 2, .uiGravacoesPorObjeto = 4, .uiSegundos = uiSegundos + 1},
                                       {.uiQtd = 1, .uiGravacoesPorObjeto = 50, .uiSegundos = uiSegundos + 1}};
    CLivro livros[std::size(modos)];
    std::deque<CEscritores> escritores;
    for (const CEscritores::Modo &modo : modos) {
      escritores.emplace_back(m_empresas.emplace_back().Codigo(), modo, CLivro(), m_gerador).Comeca();
      escritores.back().EsperaGravacoes(kGravacoesDePreparo);
    }
    std::map<std::string, unsigned> feitos;
    for (const ULONGLONG ullFim = GetTickCount64() + uiSegundos * 1000; GetTickCount64() < ullFim || feitos.empty();) {
      if (const std::string sFeito = EstorvaArquivo(SorteiaArquivo(bTudo), bTudo); !sFeito.empty()) {
        ++feitos[sFeito];
      }
      Sleep(kPausaMs);
    }
    for (const auto &[sOque, uiVezes] : feitos) {
      std::cout << sOque << " " << uiVezes << " times, ";
    }
    std::size_t uiConfirmadas = 0;
    for (std::size_t i = 0; i < escritores.size(); ++i) {
      escritores[i].Termina(&livros[i]);
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
  /// the server has open is waited for, for moments. Returns what was done, nothing when the file could not be had.
  std::string EstorvaArquivo(const CString &sCaminho, bool bTudo) {
    const CString sLonge = sCaminho + ".longe";
    const unsigned uiAto = bTudo ? m_gerador() % 4 : 0;
    if (uiAto == 0) {
      std::unique_ptr<plataforma::IArquivoAberto> sozinho;
      if (!Insiste(kTentaMs, [&] { return !plataforma::Arquivos().Abre(sCaminho, {}, &sozinho); })) {
        return "";
      }
      Sleep(m_gerador() % (bTudo ? kSeguraMs : kSeguraPoucoMs));
      return "held";
    }
    if (uiAto == 1) {
      const bool bFez = SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_READONLY);
      Sleep(m_gerador() % kSumidoMs);
      SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_NORMAL);
      return bFez ? "read-only" : "";
    }
    if (!Move(sCaminho, sLonge, kTentaMs)) {
      return "";
    }
    Sleep(m_gerador() % kSumidoMs);
    if (uiAto == 3) {
      apoio::EscreveArquivo(sLonge, apoio::LeArquivo(sLonge));
    }
    // The server may have made a new file meanwhile, and have it open.
    EXPECT_TRUE(Move(sLonge, sCaminho, kTentaDeVoltaMs)) << sCaminho << " cannot be put back";
    return uiAto == 3 ? "replaced by a copy" : "renamed";
  }

  /// What failed did so because of the files, and the company's log says it.
  static void ConfereRecusas(const Empresa &empresa, const CLivro &livro) {
    for (const auto &[hr, uiVezes] : livro.Recusas()) {
      EXPECT_EQ(std::ranges::count(kDeArquivoAlheio, Bits(hr)), 1) << Hexa(hr);
      EXPECT_NE(apoio::LeArquivo(empresa.Caminho("QZProfilerErros.dat")).find(Hexa(hr)), std::string::npos)
          << Hexa(hr) << " is not in the log";
      std::cout << Hexa(hr) << " " << uiVezes << " times, ";
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
