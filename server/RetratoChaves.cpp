#include "server/RetratoChaves.h"

#include "core/platform/win32/Posses.h"

namespace {

constexpr DWORD kMaiorNomeValor = 16384;  // characters, the system's limits, the final zero included
constexpr DWORD kMaiorNomeChave = 256;

/// True when the key is not there any more.
bool Apaga(HKEY hPai, const std::wstring &sChave) {
  const LSTATUS erro = RegDeleteTreeW(hPai, sChave.c_str());
  return erro == ERROR_SUCCESS || erro == ERROR_FILE_NOT_FOUND;
}

}  // namespace

CRetratoChaves::CRetratoChaves(HKEY hRaiz, const std::vector<std::wstring> &chaves) : m_hRaiz(hRaiz) {
  for (const std::wstring &sChave : chaves) {
    m_chaves[sChave] = Le(hRaiz, sChave);
  }
}

bool CRetratoChaves::Restaura() const {
  bool bTudo = true;
  for (const auto &[sChave, ramo] : m_chaves) {
    bTudo = Poe(sChave, ramo, Le(m_hRaiz, sChave)) && bTudo;
  }
  return bTudo;
}

CRetratoChaves::Ramo CRetratoChaves::Le(HKEY hPai, const std::wstring &sChave) {
  Ramo ramo;
  HKEY h = nullptr;
  const LSTATUS erro = RegOpenKeyExW(hPai, sChave.c_str(), 0, KEY_READ, &h);
  if (erro == ERROR_FILE_NOT_FOUND) {
    return ramo;
  }
  ramo.eSituacao = erro == ERROR_SUCCESS ? Situacao::Presente : Situacao::Ilegivel;
  if (erro == ERROR_SUCCESS) {
    const plataforma::PosseChave posse(h);
    LeValores(h, ramo);
    LeFilhos(h, ramo);
  }
  return ramo;
}

void CRetratoChaves::LeValores(HKEY hChave, Ramo &ramo) {
  std::vector<wchar_t> nome(kMaiorNomeValor);
  std::vector<BYTE> dados(1024);
  for (DWORD dwIndice = 0;;) {
    auto dwNome = static_cast<DWORD>(nome.size());
    auto dwDados = static_cast<DWORD>(dados.size());
    DWORD dwTipo = 0;
    const LSTATUS erro =
        RegEnumValueW(hChave, dwIndice, nome.data(), &dwNome, nullptr, &dwTipo, dados.data(), &dwDados);
    if (erro == ERROR_MORE_DATA) {
      dados.resize(dados.size() * 2);
      continue;
    }
    if (erro != ERROR_SUCCESS) {
      return;
    }
    ramo.valores[std::wstring(nome.data(), dwNome)] = {dwTipo, {dados.begin(), dados.begin() + dwDados}};
    ++dwIndice;
  }
}

void CRetratoChaves::LeFilhos(HKEY hChave, Ramo &ramo) {
  std::vector<wchar_t> nome(kMaiorNomeChave);
  for (DWORD dwIndice = 0;; ++dwIndice) {
    auto dwNome = static_cast<DWORD>(nome.size());
    if (RegEnumKeyExW(hChave, dwIndice, nome.data(), &dwNome, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      return;
    }
    const std::wstring sFilho(nome.data(), dwNome);
    ramo.filhos[sFilho] = Le(hChave, sFilho);
  }
}

bool CRetratoChaves::Poe(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const {
  if (antes.eSituacao == Situacao::Ilegivel || agora == antes) {
    return true;
  }
  if (antes.eSituacao == Situacao::Ausente) {
    return Apaga(m_hRaiz, sChave);
  }
  const bool bMudou = agora.eSituacao != Situacao::Presente || agora.valores != antes.valores;
  const bool bValores = !bMudou || PoeValores(sChave, antes, agora);
  return PoeFilhos(sChave, antes, agora) && bValores;
}

bool CRetratoChaves::PoeValores(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const {
  HKEY h = nullptr;
  if (RegCreateKeyExW(m_hRaiz, sChave.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &h, nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const plataforma::PosseChave posse(h);
  bool bTudo = true;
  for (const auto &[nome, valor] : agora.valores) {
    if (antes.valores.count(nome) == 0) {
      bTudo = RegDeleteValueW(h, nome.c_str()) == ERROR_SUCCESS && bTudo;
    }
  }
  for (const auto &[nome, valor] : antes.valores) {
    bTudo = RegSetValueExW(h, nome.c_str(), 0, valor.dwTipo, valor.dados.data(),
                           static_cast<DWORD>(valor.dados.size())) == ERROR_SUCCESS &&
            bTudo;
  }
  return bTudo;
}

bool CRetratoChaves::PoeFilhos(const std::wstring &sChave, const Ramo &antes, const Ramo &agora) const {
  const std::wstring sPrefixo = sChave + L"\\";
  bool bTudo = true;
  for (const auto &[nome, ramo] : agora.filhos) {
    if (antes.filhos.count(nome) == 0) {
      bTudo = Apaga(m_hRaiz, sPrefixo + nome) && bTudo;
    }
  }
  for (const auto &[nome, ramo] : antes.filhos) {
    const auto presente = agora.filhos.find(nome);
    bTudo = Poe(sPrefixo + nome, ramo, presente != agora.filhos.end() ? presente->second : Ramo()) && bTudo;
  }
  return bTudo;
}
