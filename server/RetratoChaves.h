#ifndef KALVO_SERVER_RETRATOCHAVES_H
#define KALVO_SERVER_RETRATOCHAVES_H

#include <windows.h>

#include <map>
#include <string>
#include <vector>

/// What some registry keys held, with all below them, at one moment; puts that back after a change that failed half
/// way.
class CRetratoChaves {
public:
  /// Paths are relative to `hRaiz`, which must outlive the object. A key that is missing is remembered as such; one
  /// that cannot be read is left alone by Restaura.
  CRetratoChaves(HKEY hRaiz, const std::vector<std::wstring> &chaves);

  /// Makes the keys hold what they held: removes what has come, writes back what was changed or has gone, and touches
  /// nothing else, so that it needs no right to write where nothing was written. False when something could not be put
  /// back; the rest is then put back all the same.
  bool Restaura() const;

private:
  struct Valor {
    DWORD dwTipo;
    std::vector<BYTE> dados;

    bool operator==(const Valor &) const = default;
  };
  enum class Situacao { Ausente, Presente, Ilegivel };
  struct Ramo {
    Situacao eSituacao = Situacao::Ausente;
    std::map<std::wstring, Valor> valores;
    std::map<std::wstring, Ramo> filhos;

    bool operator==(const Ramo &) const = default;
  };

  static Ramo Le(HKEY hPai, const std::wstring &sChave);
  static void LeValores(HKEY hChave, Ramo &ramo);
  static void LeFilhos(HKEY hChave, Ramo &ramo);
  /// Makes the key at a path hold `antes`; it holds `agora`.
  bool Poe(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const;
  bool PoeValores(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const;
  bool PoeFilhos(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const;

  HKEY m_hRaiz;
  std::map<std::wstring, Ramo> m_chaves;
};

#endif
