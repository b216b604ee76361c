#ifndef KALVO_TESTS_CAMPANHA_ESTORVO_H
#define KALVO_TESTS_CAMPANHA_ESTORVO_H

#include <windows.h>

#include <atomic>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/platform/Tipos.h"

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
  CEstorvo(std::vector<CString> pastas, Modo eModo, unsigned uiSemente);
  ~CEstorvo();
  CEstorvo(const CEstorvo &) = delete;
  CEstorvo &operator=(const CEstorvo &) = delete;

  /// Ends; every file is what it was.
  void Para();

  /// How often it did what, and what it could not put back. After Para.
  const std::map<std::string, unsigned> &Feitos() const { return m_feitos; }
  const std::vector<CString> &Perdidos() const { return m_perdidos; }

private:
  using Ato = bool (CEstorvo::*)(const CString &sCaminho);

  void Trabalha();
  CString SorteiaArquivo();
  /// Opens a file alone, as soon as nobody has it open; INVALID_HANDLE_VALUE after a while.
  HANDLE AbreSozinho(const CString &sCaminho, DWORD dwAcesso, DWORD dwAtributos);
  bool Segura(const CString &sCaminho);
  bool Renomeia(const CString &sCaminho);
  bool FazSomenteLeitura(const CString &sCaminho);
  bool Apaga(const CString &sCaminho);
  void PoeDeVolta(const CString &sDeOnde, const CString &sCaminho);
  /// Up to so long, while it has not been told to end.
  void Demora(unsigned uiMilissegundos);

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
