#include "tests/campanha/Escritores.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>

using namespace apoiocom;

namespace campanha {
namespace {

/// A writer that has this position appends no more: companies stay small.
constexpr LONG kMaiorPosicao = 400;

std::atomic<std::uint32_t> g_uiNumero = 0;  ///< of the vehicle written last

}  // namespace

CEscritores::CEscritores(const std::string &sEmpresa, const Modo &modo, CLivro &livro, std::mt19937 &gerador)
    : m_sEmpresa(sEmpresa), m_modo(modo), m_livro(livro) {
  for (unsigned i = 1; i <= modo.uiQtd; ++i) {
    Escritor &escritor = m_escritores.emplace_back();
    escritor.gerador.seed(gerador());
    // The others divide what is there in the same way, and what is added belongs to who adds it.
    for (std::size_t uiPos = i; uiPos <= livro.Veiculos(); uiPos += modo.uiQtd) {
      escritor.posicoes.push_back(static_cast<LONG>(uiPos));
    }
    // One after another: several that activate at once each start a server under Wine.
    EXPECT_EQ(escritor.cliente.Pede("cria").hr, S_OK);
  }
}

void CEscritores::Comeca() {
  for (Escritor &escritor : m_escritores) {
    escritor.trabalho = std::jthread([this, &escritor] { Trabalha(escritor); });
  }
}

void CEscritores::Trabalha(Escritor &escritor) {
  auto &[cliente, gerador, posicoes, trabalho] = escritor;
  const ULONGLONG ullFim = GetTickCount64() + m_modo.uiSegundos * 1000;
  HRESULT hr = S_OK;
  const auto continua = [&] { return hr != Resposta::kCalado && !ServidorSeFoi(hr) && GetTickCount64() < ullFim; };
  for (bool bComObjeto = true; continua(); bComObjeto = false) {
    if (!bComObjeto) {
      cliente.Pede("solta");
      Sleep(gerador() % 20);  // somebody may take the files meanwhile
      hr = cliente.Pede("cria").hr;
      if (hr != S_OK) {
        continue;
      }
    }
    hr = cliente.Pede("abre " + m_sEmpresa).hr;
    if (hr != S_OK) {
      Anota({.hr = hr});  // as a write of no vehicle
      continue;
    }
    const unsigned uiMedia = m_modo.uiGravacoesPorObjeto;
    unsigned uiRestam = uiMedia != 0 ? 1 + gerador() % (2 * uiMedia) : UINT_MAX;
    while (uiRestam-- != 0 && continua()) {
      hr = Grava(escritor);
      uiRestam = FAILED(hr) && gerador() % 2 == 0 ? 0 : uiRestam;
    }
  }
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_bTerminou = true;
  m_mudou.notify_one();
}

HRESULT CEscritores::Grava(Escritor &escritor) {
  auto &[cliente, gerador, posicoes, trabalho] = escritor;
  const bool bCabe = posicoes.empty() || posicoes.back() < kMaiorPosicao;
  const bool bNovo = bCabe && (posicoes.empty() || gerador() % 2 == 0);
  Gravacao gravacao{bNovo ? 0 : posicoes[gerador() % posicoes.size()], ++g_uiNumero};
  const Resposta resposta =
      cliente.Pede("grava " + std::to_string(gravacao.lPos) + " " + std::to_string(gravacao.uiNumero));
  gravacao.hr = resposta.hr;
  if (bNovo && gravacao.hr == S_OK) {
    gravacao.lPos = posicoes.emplace_back(static_cast<LONG>(resposta.numeros.at(0)));
  }
  Anota(gravacao);
  return gravacao.hr;
}

void CEscritores::Anota(const Gravacao &gravacao) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_livro.Anota(gravacao);
  ++m_uiGravacoes;
  m_mudou.notify_one();
}

void CEscritores::EsperaGravacoes(unsigned uiQtd) {
  std::unique_lock<std::mutex> guarda(m_mutex);
  m_mudou.wait(guarda, [&] { return m_bTerminou || m_uiGravacoes >= uiQtd; });
}

void CEscritores::Termina() {
  for (Escritor &escritor : m_escritores) {
    escritor.trabalho.join();
    EXPECT_EQ(escritor.cliente.Espera(), 0);
  }
}

}  // namespace campanha
