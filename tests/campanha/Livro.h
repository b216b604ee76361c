#ifndef KALVO_TESTS_CAMPANHA_LIVRO_H
#define KALVO_TESTS_CAMPANHA_LIVRO_H

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace campanha {

/// The server process was not there, or went during the call: whether this did anything nobody was told.
inline bool ServidorSeFoi(HRESULT hr) {
  return HRESULT_FACILITY(hr) == FACILITY_WIN32 && HRESULT_CODE(hr) >= RPC_S_SERVER_UNAVAILABLE &&
         HRESULT_CODE(hr) <= RPC_S_CALL_FAILED_DNE;
}

/// One write as its client saw it.
struct Gravacao {
  LONG lPos = 0;               ///< 0 appends, until the answer says where
  std::uint32_t uiNumero = 0;  ///< of the vehicle; no two writes have the same
  HRESULT hr = S_OK;
};

/// What the vehicles of a company must be after everything that its clients were told. No two clients write to one
/// position.
class CLivro {
public:
  /// Of an empty company in place of the earlier one; what it counts stays.
  void Recomeca() { m_numeros.clear(); }

  /// Takes over what a client did; to be called in the client's order.
  void Anota(const Gravacao &gravacao) {
    if (gravacao.hr == S_OK) {
      m_numeros.resize(std::max(m_numeros.size(), static_cast<std::size_t>(gravacao.lPos)));
      m_numeros[static_cast<std::size_t>(gravacao.lPos - 1)] = gravacao.uiNumero;
      ++m_uiConfirmadas;
    } else if (ServidorSeFoi(gravacao.hr)) {
      m_semResposta.push_back(gravacao);
    } else {
      m_recusas.insert(gravacao.hr);
    }
  }

  /// Compares with the company's vehicles, in their order, given by their numbers (0: one that is not whole). Each must
  /// be the last one acknowledged there, or the one whose write got no answer; nothing acknowledged may be missing and
  /// nothing refused be there. Returns what is wrong, or nothing. What is there becomes what must be there.
  std::string Confere(std::vector<std::uint32_t> lidos) {
    std::string sErrado;
    lidos.resize(std::max(m_numeros.size(), lidos.size()));
    m_numeros.resize(lidos.size());
    constexpr std::size_t kBastante = 400;  // of a text that somebody is to read
    for (std::size_t i = 0; i < lidos.size() && sErrado.size() < kBastante; ++i) {
      if (lidos[i] == 0 || (lidos[i] != m_numeros[i] && !TomaSemResposta(static_cast<LONG>(i + 1), lidos[i]))) {
        sErrado += "position " + std::to_string(i + 1) + " has " + std::to_string(lidos[i]) + " instead of " +
                   std::to_string(m_numeros[i]) + "; ";
      }
    }
    m_numeros = std::move(lidos);
    m_semResposta.clear();
    return sErrado;
  }

  std::size_t Veiculos() const { return m_numeros.size(); }
  std::size_t Confirmadas() const { return m_uiConfirmadas; }
  /// The result codes with which something was refused.
  const std::set<HRESULT> &Recusas() const { return m_recusas; }

private:
  bool TomaSemResposta(LONG lPos, std::uint32_t uiNumero) {
    const bool bNovo = m_numeros[static_cast<std::size_t>(lPos - 1)] == 0;
    return std::erase_if(m_semResposta, [&](const Gravacao &gravacao) {
             return gravacao.uiNumero == uiNumero && (gravacao.lPos == lPos || (gravacao.lPos == 0 && bNovo));
           }) != 0;
  }

  std::vector<std::uint32_t> m_numeros;  ///< by position; 0 where an append that got no answer may have gone
  std::vector<Gravacao> m_semResposta;
  std::set<HRESULT> m_recusas;
  std::size_t m_uiConfirmadas = 0;
};

}  // namespace campanha

#endif
