#include "tests/apoio/ArquivosDecorado.h"

#include <algorithm>
#include <utility>

namespace apoio {

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

FalhaArquivo ArquivoDecorado::Le(std::uint64_t posicao, void *destino, std::size_t qtd) {
  return m_base->Le(posicao, destino, qtd);
}

FalhaArquivo ArquivoDecorado::Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) {
  return m_base->Grava(posicao, origem, qtd);
}

FalhaArquivo ArquivoDecorado::Tamanho(std::uint64_t *tamanho) {
  return m_base->Tamanho(tamanho);
}

FalhaArquivo ArquivoDecorado::AjustaTamanho(std::uint64_t tamanho) {
  return m_base->AjustaTamanho(tamanho);
}

FalhaArquivo ArquivoDecorado::UltimaEscrita(std::uint64_t *ticks) {
  return m_base->UltimaEscrita(ticks);
}

FalhaArquivo ArquivoDecorado::Descarrega() {
  return m_base->Descarrega();
}

FalhaArquivo ArquivosDecorado::Abre(const CString &caminho, const ModoAbertura &modo,
                                    std::unique_ptr<IArquivoAberto> *arquivo) {
  return m_base.Abre(caminho, modo, arquivo);
}

bool ArquivosDecorado::Existe(const CString &caminho) {
  return m_base.Existe(caminho);
}

bool ArquivosDecorado::SomenteLeitura(const CString &caminho) {
  return m_base.SomenteLeitura(caminho);
}

FalhaArquivo ArquivosDecorado::TamanhoDe(const CString &caminho, std::uint64_t *tamanho) {
  return m_base.TamanhoDe(caminho, tamanho);
}

FalhaArquivo ArquivosDecorado::Apaga(const CString &caminho) {
  return m_base.Apaga(caminho);
}

FalhaArquivo ArquivosDecorado::MoveSubstituindo(const CString &origem, const CString &destino) {
  return m_base.MoveSubstituindo(origem, destino);
}

FalhaArquivo ArquivosDecorado::Lista(const CString &diretorio, const CString &mascara, std::vector<CString> *nomes) {
  return m_base.Lista(diretorio, mascara, nomes);
}

/// An open file whose operations count too.
class ArquivosComFalha::Arquivo final : public ArquivoDecorado {
public:
  Arquivo(ArquivosComFalha &dono, const CString &caminho, std::unique_ptr<IArquivoAberto> base)
      : ArquivoDecorado(std::move(base)), m_dono(dono), m_caminho(caminho) {
    ++m_dono.m_iAbertos;
  }
  ~Arquivo() override { --m_dono.m_iAbertos; }

  FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override {
    const FalhaArquivo falha = m_dono.Passa(kOpLe, m_caminho);
    return falha ? m_dono.Injeta(falha) : ArquivoDecorado::Le(posicao, destino, qtd);
  }

  FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override {
    const FalhaArquivo falha = m_dono.Passa(kOpGrava, m_caminho);
    if (!falha) {
      return ArquivoDecorado::Grava(posicao, origem, qtd);
    }
    const FalhaArquivo real = ArquivoDecorado::Grava(posicao, origem, m_dono.Prefixo(qtd));
    return real ? real : m_dono.Injeta(falha);
  }

  FalhaArquivo Tamanho(std::uint64_t *tamanho) override {
    const FalhaArquivo falha = m_dono.Passa(kOpTamanho, m_caminho);
    return falha ? m_dono.Injeta(falha) : ArquivoDecorado::Tamanho(tamanho);
  }

  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    const FalhaArquivo falha = m_dono.Passa(kOpAjustaTamanho, m_caminho);
    return falha ? m_dono.Injeta(falha) : ArquivoDecorado::AjustaTamanho(tamanho);
  }

  FalhaArquivo UltimaEscrita(std::uint64_t *ticks) override {
    const FalhaArquivo falha = m_dono.Passa(kOpTamanho, m_caminho);
    return falha ? m_dono.Injeta(falha) : ArquivoDecorado::UltimaEscrita(ticks);
  }

  FalhaArquivo Descarrega() override {
    const FalhaArquivo falha = m_dono.Passa(kOpDescarrega, m_caminho);
    return falha ? m_dono.Injeta(falha) : ArquivoDecorado::Descarrega();
  }

private:
  ArquivosComFalha &m_dono;
  CString m_caminho;
};

void ArquivosComFalha::Arma(const PlanoFalha &plano) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_plano = plano;
  m_vistas = 0;
  m_bDisparou = false;
}

void ArquivosComFalha::Desarma() {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_plano.reset();
}

std::size_t ArquivosComFalha::Vistas() const {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return m_vistas;
}

bool ArquivosComFalha::Disparou() const {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return m_bDisparou;
}

FalhaArquivo ArquivosComFalha::Passa(Operacao operacao, const CString &caminho) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  if (!m_plano || (m_plano->operacoes & operacao) == 0 || caminho.find(m_plano->trecho) == CString::npos) {
    return plataforma::kSemFalha;
  }
  ++m_vistas;
  const bool bFalha = m_plano->bPersistente ? m_vistas >= m_plano->enesima : m_vistas == m_plano->enesima;
  m_bDisparou = m_bDisparou || bFalha;
  return bFalha ? m_plano->falha : plataforma::kSemFalha;
}

FalhaArquivo ArquivosComFalha::Injeta(const FalhaArquivo &falha) const {
  void (*aoFalhar)() = nullptr;
  {
    const std::lock_guard<std::mutex> guarda(m_mutex);
    aoFalhar = m_plano ? m_plano->aoFalhar : nullptr;
  }
  if (aoFalhar != nullptr) {
    aoFalhar();
  }
  return falha;
}

std::size_t ArquivosComFalha::Prefixo(std::size_t qtd) const {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return std::min(qtd, m_plano ? m_plano->gravaAntes.value_or(0) : 0);
}

FalhaArquivo ArquivosComFalha::Abre(const CString &caminho, const ModoAbertura &modo,
                                    std::unique_ptr<IArquivoAberto> *arquivo) {
  arquivo->reset();
  std::unique_ptr<IArquivoAberto> base;
  const FalhaArquivo injetada = Passa(kOpAbre, caminho);
  const FalhaArquivo falha = injetada ? Injeta(injetada) : ArquivosDecorado::Abre(caminho, modo, &base);
  if (!falha) {
    *arquivo = std::make_unique<Arquivo>(*this, caminho, std::move(base));
  }
  return falha;
}

FalhaArquivo ArquivosComFalha::TamanhoDe(const CString &caminho, std::uint64_t *tamanho) {
  const FalhaArquivo falha = Passa(kOpTamanho, caminho);
  return falha ? Injeta(falha) : ArquivosDecorado::TamanhoDe(caminho, tamanho);
}

FalhaArquivo ArquivosComFalha::Apaga(const CString &caminho) {
  const FalhaArquivo falha = Passa(kOpApaga, caminho);
  return falha ? Injeta(falha) : ArquivosDecorado::Apaga(caminho);
}

FalhaArquivo ArquivosComFalha::MoveSubstituindo(const CString &origem, const CString &destino) {
  // Either path may be the one that counts; a zero byte cannot be part of a path.
  const FalhaArquivo falha = Passa(kOpMove, origem + CString(1, '\0') + destino);
  return falha ? Injeta(falha) : ArquivosDecorado::MoveSubstituindo(origem, destino);
}

FalhaArquivo ArquivosComFalha::Lista(const CString &diretorio, const CString &mascara, std::vector<CString> *nomes) {
  nomes->clear();
  const FalhaArquivo falha = Passa(kOpLista, diretorio + mascara);
  return falha ? Injeta(falha) : ArquivosDecorado::Lista(diretorio, mascara, nomes);
}

}  // namespace apoio
