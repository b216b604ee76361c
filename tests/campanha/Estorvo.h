#ifndef KALVO_TESTS_CAMPANHA_ESTORVO_H
#define KALVO_TESTS_CAMPANHA_ESTORVO_H

#include <windows.h>

#include <atomic>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"

namespace campanha {

/// What scanners, backups and people do to the files of companies: one file at a time, of any of the given folders, is
/// taken for a while and then is again what it was. A file that a server has open is waited for, for moments.
class CEstorvo {
public:
  enum class Modo {
    SeguraPouco,  ///< holds any file, logs too, for less than a server insists
    Tudo          ///< holds files with data for any time, renames them, makes them read-only, deletes them
  };

  /// Begins. The folders end with `\`.
  CEstorvo(std::vector<CString> pastas, Modo eModo, unsigned uiSemente)
      : m_pastas(std::move(pastas)), m_eModo(eModo), m_gerador(uiSemente), m_thread([this] { Trabalha(); }) {}
  ~CEstorvo() { Para(); }
  CEstorvo(const CEstorvo &) = delete;
  CEstorvo &operator=(const CEstorvo &) = delete;

  /// Ends, once it has done something; every file is what it was.
  void Para() {
    m_bPara = true;
    if (m_thread.joinable()) {
      m_thread.join();
    }
  }

  /// How often it did what, and what it could not put back. After Para.
  const std::map<std::string, unsigned> &Feitos() const { return m_feitos; }
  const std::vector<CString> &Perdidos() const { return m_perdidos; }

private:
  static constexpr unsigned kSeguraPoucoMs = 250;  ///< a server insists for half a second at least
  static constexpr unsigned kSeguraMs = 2000;
  static constexpr unsigned kSumidoMs = 1000;
  static constexpr unsigned kPausaMs = 250;  ///< one trouble at a time
  static constexpr unsigned kTentativas = 200;
  static constexpr unsigned kTentativasDeVolta = 30000;

  void Trabalha() {
    static constexpr struct {
      const char *lpNome;
      bool (CEstorvo::*ato)(const CString &sCaminho);
    } kAtos[] = {{"held", &CEstorvo::Segura},
                 {"renamed", &CEstorvo::Renomeia},
                 {"read-only", &CEstorvo::FazSomenteLeitura},
                 {"deleted", &CEstorvo::Apaga}};
    while (!m_bPara || m_feitos.empty()) {
      const CString sCaminho = SorteiaArquivo();
      const auto &ato = kAtos[m_eModo == Modo::Tudo ? m_gerador() % std::size(kAtos) : 0];
      if (!sCaminho.empty() && (this->*ato.ato)(sCaminho)) {
        ++m_feitos[ato.lpNome];
      }
      Sleep(kPausaMs);
    }
  }

  CString SorteiaArquivo() {
    const CString &sPasta = m_pastas[m_gerador() % m_pastas.size()];
    std::vector<CString> nomes;
    static_cast<void>(plataforma::Arquivos().Lista(sPasta, &nomes));
    std::erase_if(nomes, [this](const CString &sNome) { return m_eModo == Modo::Tudo && !sNome.ends_with(".DAT"); });
    return nomes.empty() ? "" : sPasta + nomes[m_gerador() % nomes.size()];
  }

  /// Tries until it works.
  template <class Tentativa>
  static bool Insiste(unsigned uiVezes, Tentativa tenta) {
    for (unsigned i = 0; i < uiVezes; ++i) {
      if (tenta()) {
        return true;
      }
      Sleep(1);
    }
    return false;
  }

  /// Opens a file alone, as soon as nobody has it open; INVALID_HANDLE_VALUE after a while.
  static HANDLE AbreSozinho(const CString &sCaminho, DWORD dwAcesso, DWORD dwAtributos) {
    HANDLE hArquivo = INVALID_HANDLE_VALUE;
    Insiste(kTentativas, [&] {
      hArquivo = CreateFileA(sCaminho.c_str(), dwAcesso, 0, nullptr, OPEN_EXISTING, dwAtributos, nullptr);
      return hArquivo != INVALID_HANDLE_VALUE;
    });
    return hArquivo;
  }

  bool Segura(const CString &sCaminho) {
    const HANDLE hArquivo = AbreSozinho(sCaminho, GENERIC_READ, 0);
    if (hArquivo == INVALID_HANDLE_VALUE) {
      return false;
    }
    Demora(m_eModo == Modo::Tudo ? kSeguraMs : kSeguraPoucoMs);
    CloseHandle(hArquivo);
    return true;
  }

  bool Renomeia(const CString &sCaminho) {
    const CString sLonge = sCaminho + ".longe";
    if (!Insiste(kTentativas, [&] { return MoveFileA(sCaminho.c_str(), sLonge.c_str()); })) {
      return false;
    }
    Demora(kSumidoMs);
    PoeDeVolta(sLonge, sCaminho);
    return true;
  }

  bool FazSomenteLeitura(const CString &sCaminho) {
    const bool bFez = SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_READONLY);
    Demora(kSumidoMs);
    SetFileAttributesA(sCaminho.c_str(), FILE_ATTRIBUTE_NORMAL);
    return bFez;
  }

  /// What is read and what is deleted are the same: nobody can write between the two.
  bool Apaga(const CString &sCaminho) {
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
  void PoeDeVolta(const CString &sDeOnde, const CString &sCaminho) {
    if (!Insiste(kTentativasDeVolta,
                 [&] { return MoveFileExA(sDeOnde.c_str(), sCaminho.c_str(), MOVEFILE_REPLACE_EXISTING); })) {
      m_perdidos.push_back(sCaminho);
    }
  }

  /// Up to so long, while it has not been told to end.
  void Demora(unsigned uiMilissegundos) {
    constexpr unsigned kPasso = 10;
    for (unsigned i = m_gerador() % (uiMilissegundos / kPasso); i != 0 && !m_bPara; --i) {
      Sleep(kPasso);
    }
  }

  std::vector<CString> m_pastas;
  Modo m_eModo;
  std::mt19937 m_gerador;
  std::map<std::string, unsigned> m_feitos;
  std::vector<CString> m_perdidos;
  std::atomic<bool> m_bPara{false};
  std::thread m_thread;
};

}  // namespace campanha

#endif
