#include "tests/com/RodadaAtivacao.h"

#include <array>
#include <cstdio>

namespace apoiocom {
namespace {

std::string Codigo(const char *lpOque, HRESULT hr) {
  std::array<char, 80> texto{};
  std::snprintf(texto.data(), texto.size(), "%s: 0x%08lX", lpOque, static_cast<unsigned long>(hr));
  return texto.data();
}

/// Initialises and writes; empty when both went well.
std::string Trabalha(IQZDF_Veiculos &veiculos, const CString &sEmpresa) {
  HRESULT hr = Inicializa(veiculos, sEmpresa);
  if (hr != S_OK) {
    return Codigo("Inicializa", hr);
  }
  LONG lPos = 0;
  hr = veiculos.Grava(&lPos, Veiculo("V"));
  return hr == S_OK ? "" : Codigo("Grava", hr);
}

long Desde(ULONGLONG ullInicio) {
  return static_cast<long>(GetTickCount64() - ullInicio);
}

}  // namespace

RodadaAtivacao::RodadaAtivacao(const Empresa &empresa) : m_empresa(empresa), m_spVeiculos(Abre(empresa.Codigo())) {}

ResultadoRodada RodadaAtivacao::Roda(DWORD dwAtraso) {
  ResultadoRodada resultado;
  const std::vector<Handle> antes = Servidores();
  if (antes.size() != 1) {
    resultado.sFalha = std::to_string(antes.size()) + " servers before the round";
    return resultado;
  }
  HANDLE hAntigo = antes.front().get();
  m_spVeiculos.reset();
  const ULONGLONG ullSolto = GetTickCount64();
  WaitForSingleObject(hAntigo, dwAtraso);

  ULONGLONG ullCriacao = GetTickCount64();
  HRESULT hr = S_OK;
  m_spVeiculos = Cria(&hr);
  if (hr == E_FAIL) {
    // Wine only, where suspending a class object has no effect: for the few milliseconds in which its runtime revokes
    // the class object it answers so itself. A creation that reached the server fails with another code.
    resultado.bRespostaDoWine = true;
    ullCriacao = GetTickCount64();
    m_spVeiculos = Cria(&hr);
  }
  resultado.lAtivacao = Desde(ullCriacao);
  if (hr != S_OK) {
    resultado.sFalha = Codigo("CoCreateInstance", hr);
    return resultado;
  }
  resultado.sFalha = Trabalha(*m_spVeiculos, m_empresa.Codigo());

  // The old process ends in time, or it is the one that serves.
  const std::size_t uiAgora = Servidores().size();
  if (WaitForSingleObject(hAntigo, 0) == WAIT_OBJECT_0) {
    resultado.bServidorNovo = true;
  } else if (uiAgora > 1) {
    const long lResta = kMaximoSemObjeto - Desde(ullSolto);
    resultado.bServidorNovo = true;
    if (WaitForSingleObject(hAntigo, lResta > 0 ? static_cast<DWORD>(lResta) : 0) != WAIT_OBJECT_0) {
      resultado.sFalha += " the idle server outlived its last object";
    }
  }
  resultado.lVidaSemObjeto = resultado.bServidorNovo ? Desde(ullSolto) : 0;
  if (Servidores().size() != 1) {
    resultado.sFalha += " " + std::to_string(Servidores().size()) + " servers at rest";
  }
  return resultado;
}

DWORD AtrasoMirado(std::mt19937 &gerador) {
  // From the release of the last object: the decision after 5000 ms, the revocation after a pause of 1000 ms, the end
  // after another 250 ms; each a little late on a loaded machine.
  constexpr std::array<std::pair<DWORD, DWORD>, 5> kJanelas{
      {{4980, 5060}, {5980, 6060}, {5980, 6060}, {5980, 6060}, {6220, 6320}}};
  const auto &janela = kJanelas[gerador() % kJanelas.size()];
  return janela.first + static_cast<DWORD>(gerador() % (janela.second - janela.first));
}

}  // namespace apoiocom
