#include "qzdados/ArquivoEmExame.h"

#include <utility>

#include "core/platform/Plataforma.h"

using plataforma::FalhaArquivo;

namespace {

/// Enough for a virus scanner's short look, too few to wait for a server.
constexpr int kTentativas = 10;

constexpr FalhaArquivo kRecusada{plataforma::CausaArquivo::AcessoNegado, 5};

}  // namespace

CArquivoEmExame::CArquivoEmExame(const CString &sCaminho, FProgresso progresso)
    : m_sCaminho(sCaminho), m_progresso(std::move(progresso)) {
  Abre();
  Exige(m_abertura.Arquivo().Tamanho(&m_uiTamanho));
  Exige(m_abertura.Arquivo().UltimaEscrita(&m_uiUltimaEscrita));
}

void CArquivoEmExame::Abre() {
  if (const HRESULT hr = m_abertura.Abre(m_sCaminho, eModoLeituraCompartilhada, kTentativas); Falhou(hr)) {
    throw CErroArquivo(TextoDoCodigo(hr));
  }
  m_uiDesde = plataforma::Relogio().Ticks();
}

void CArquivoEmExame::ConfereQueNaoMudou() {
  Cede(0);
}

void CArquivoEmExame::Cede(std::uint32_t uiPausaMs) {
  m_abertura.Fecha();
  plataforma::Relogio().Espera(uiPausaMs);
  Abre();
  // Held against the first look: others may have written while the file was open here too.
  std::uint64_t uiTamanho = 0;
  std::uint64_t uiUltimaEscrita = 0;
  Exige(m_abertura.Arquivo().Tamanho(&uiTamanho));
  Exige(m_abertura.Arquivo().UltimaEscrita(&uiUltimaEscrita));
  if (uiTamanho != m_uiTamanho || uiUltimaEscrita != m_uiUltimaEscrita) {
    throw CErroArquivo("o arquivo mudou enquanto era lido");
  }
}

FalhaArquivo CArquivoEmExame::Le(std::uint64_t posicao, void *destino, std::size_t qtd) {
  if (plataforma::Relogio().Ticks() - m_uiDesde >= kVezMs) {
    Cede(kPausaMs);
  }
  Exige(m_abertura.Arquivo().Le(posicao, destino, qtd));
  if (m_progresso) {
    m_progresso(posicao + qtd, m_uiTamanho);
  }
  return plataforma::kSemFalha;
}

FalhaArquivo CArquivoEmExame::Tamanho(std::uint64_t *tamanho) {
  *tamanho = m_uiTamanho;
  return plataforma::kSemFalha;
}

FalhaArquivo CArquivoEmExame::UltimaEscrita(std::uint64_t *ticks) {
  return m_abertura.Arquivo().UltimaEscrita(ticks);
}

FalhaArquivo CArquivoEmExame::Grava(std::uint64_t /*posicao*/, const void * /*origem*/, std::size_t /*qtd*/) {
  return kRecusada;
}

FalhaArquivo CArquivoEmExame::AjustaTamanho(std::uint64_t /*tamanho*/) {
  return kRecusada;
}

FalhaArquivo CArquivoEmExame::Descarrega() {
  return kRecusada;
}

FalhaArquivo CArquivoEmExame::Mapeia(std::size_t /*qtd*/, std::byte ** /*ppBytes*/) {
  return kRecusada;
}
