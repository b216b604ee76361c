#include "tests/campanha/Estorvo.h"

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"

namespace campanha {
namespace {

constexpr unsigned kSeguraPoucoMs = 250;  ///< a server insists for half a second at least
constexpr unsigned kSeguraMs = 2000;
constexpr unsigned kSumidoMs = 1000;
constexpr unsigned kPausaMs = 250;  ///< one trouble at a time
constexpr unsigned kTentativas = 200;
constexpr unsigned kTentativasDeVolta = 30000;

}  // namespace

CEstorvo::CEstorvo(std::vector<CString> pastas, Modo eModo, unsigned uiSemente)
    : m_pastas(std::move(pastas)), m_eModo(eModo), m_gerador(uiSemente), m_thread([this] { Trabalha(); }) {}

CEstorvo::~CEstorvo() {
  Para();
}

void CEstorvo::Para() {
  m_bPara = true;
  if (m_thread.joinable()) {
    m_thread.join();
  }
}

void CEstorvo::Trabalha() {
  static constexpr struct {
    const char *lpNome;
    Ato ato;
  } kAtos[] = {{"held", &CEstorvo::Segura},
               {"renamed", &CEstorvo::Renomeia},
               {"read-only", &CEstorvo::FazSomenteLeitura},
               {"deleted", &CEstorvo::Apaga}};
  while (!m_bPara) {
    const CString sCaminho = SorteiaArquivo();
    const auto &ato = kAtos[m_eModo == Modo::Tudo ? m_gerador() % std::size(kAtos) : 0];
    if (!sCaminho.empty() && (this->*ato.ato)(sCaminho)) {
      ++m_feitos[ato.lpNome];
    }
    Sleep(kPausaMs);
  }
}

CString CEstorvo::SorteiaArquivo() {
  const CString &sPasta = m_pastas[m_gerador() % m_pastas.size()];
  std::vector<CString> nomes;
  static_cast<void>(plataforma::Arquivos().Lista(sPasta, &nomes));
  std::erase_if(nomes, [this](const CString &sNome) { return m_eModo == Modo::Tudo && !sNome.ends_with(".DAT"); });
  return nomes.empty() ? "" : sPasta + nomes[m_gerador() % nomes.size()];
}

HANDLE CEstorvo::AbreSozinho(const CString &sCaminho, DWORD dwAcesso, DWORD dwAtributos) {
  HANDLE hArquivo = INVALID_HANDLE_VALUE;
  for (unsigned i = 0; i < kTentativas && hArquivo == INVALID_HANDLE_VALUE && !m_bPara; ++i) {
    Sleep(i == 0 ? 0 : 1);
    hArquivo = CreateFileA(sCaminho.c_str(), dwAcesso, 0, nullptr, OPEN_EXISTING, dwAtributos, nullptr);
  }
  return hArquivo;
}

bool CEstorvo::Segura(const CString &sCaminho) {
  const HANDLE hArquivo = AbreSozinho(sCaminho, GENERIC_READ, 0);
  if (hArquivo == INVALID_HANDLE_VALUE) {
    return false;
  }
  Demora(m_eModo == Modo::Tudo ? kSeguraMs : kSeguraPoucoMs);
  CloseHandle(hArquivo);
  return true;
}

bool CEstorvo::Renomeia(const CString &sCaminho) {
  const CString sLonge = sCaminho + ".longe";
  bool bFoi = false;
  for (unsigned i = 0; i < kTentativas && !bFoi && !m_bPara; ++i) {
    Sleep(i == 0 ? 0 : 1);
    bFoi = MoveFileA(sCaminho.c_str(), sLonge.c_str());
  }
  if (bFoi) {
    Demora(kSumidoMs);
    PoeDeVolta(sLonge, sCaminho);
  }
  return bFoi;
}

bool CEstorvo::FazSomenteLeitura(const CString &sCaminho) {
  const bool bFez = SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_READONLY);
  Demora(kSumidoMs);
  SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_NORMAL);
  return bFez;
}

/// What is read and what is deleted are the same: nobody can write between the two.
bool CEstorvo::Apaga(const CString &sCaminho) {
  const HANDLE hArquivo = AbreSozinho(sCaminho, GENERIC_READ | DELETE, FILE_FLAG_DELETE_ON_CLOSE);
  if (hArquivo == INVALID_HANDLE_VALUE) {
    return false;
  }
  std::string sConteudo(GetFileSize(hArquivo, nullptr), '\0');
  DWORD dwLidos = 0;
  ReadFile(hArquivo, sConteudo.data(), static_cast<DWORD>(sConteudo.size()), &dwLidos, nullptr);
  CloseHandle(hArquivo);
  Demora(kSumidoMs);
  apoio::EscreveArquivo(sCaminho + ".volta", sConteudo);
  PoeDeVolta(sCaminho + ".volta", sCaminho);
  return true;
}

/// A server may have made a new file meanwhile, and have it open.
void CEstorvo::PoeDeVolta(const CString &sDeOnde, const CString &sCaminho) {
  for (unsigned i = 0; i < kTentativasDeVolta; ++i) {
    if (MoveFileExA(sDeOnde.c_str(), sCaminho.c_str(), MOVEFILE_REPLACE_EXISTING)) {
      return;
    }
    Sleep(1);
  }
  m_perdidos.push_back(sCaminho);
}

void CEstorvo::Demora(unsigned uiMilissegundos) {
  constexpr unsigned kPasso = 10;
  for (unsigned i = m_gerador() % (uiMilissegundos / kPasso); i != 0 && !m_bPara; --i) {
    Sleep(kPasso);
  }
}

}  // namespace campanha
