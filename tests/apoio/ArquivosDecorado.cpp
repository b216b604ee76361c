#include "tests/apoio/ArquivosDecorado.h"

#include <algorithm>
#include <utility>

namespace apoio {

using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

/// An open file whose operations count too.
class ArquivosComFalha::Arquivo final : public IArquivoAberto {
public:
  Arquivo(ArquivosComFalha &dono, const CString &caminho, std::unique_ptr<IArquivoAberto> base)
      : m_dono(dono), m_caminho(caminho), m_base(std::move(base)) {
    ++m_dono.m_iAbertos;
  }
  ~Arquivo() override { --m_dono.m_iAbertos; }

  FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override {
    const FalhaArquivo falha = m_dono.Passa(kOpLe, m_caminho);
    return falha ? falha : m_base->Le(posicao, destino, qtd);
  }
  FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override {
    const FalhaArquivo falha = m_dono.Passa(kOpGrava, m_caminho, [&](std::size_t antes) {
      static_cast<void>(m_base->Grava(posicao, origem, std::min(qtd, antes)));
    });
    return falha ? falha : m_base->Grava(posicao, origem, qtd);
  }
  FalhaArquivo Tamanho(std::uint64_t *tamanho) override {
    const FalhaArquivo falha = m_dono.Passa(kOpTamanho, m_caminho);
    return falha ? falha : m_base->Tamanho(tamanho);
  }
  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    const FalhaArquivo falha = m_dono.Passa(kOpAjustaTamanho, m_caminho);
    return falha ? falha : m_base->AjustaTamanho(tamanho);
  }
  FalhaArquivo UltimaEscrita(std::uint64_t *ticks) override {
    const FalhaArquivo falha = m_dono.Passa(kOpTamanho, m_caminho);
    return falha ? falha : m_base->UltimaEscrita(ticks);
  }
  FalhaArquivo Descarrega() override {
    const FalhaArquivo falha = m_dono.Passa(kOpDescarrega, m_caminho);
    return falha ? falha : m_base->Descarrega();
  }

private:
  ArquivosComFalha &m_dono;
  CString m_caminho;
  std::unique_ptr<IArquivoAberto> m_base;
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

FalhaArquivo ArquivosComFalha::Passa(Operacao operacao, const CString &caminho,
                                     const std::function<void(std::size_t)> &gravaAntes) {
  std::unique_lock<std::mutex> guarda(m_mutex);
  if (!m_plano || (m_plano->operacoes & operacao) == 0 || caminho.find(m_plano->trecho) == CString::npos) {
    return plataforma::kSemFalha;
  }
  ++m_vistas;
  if (m_plano->bPersistente ? m_vistas < m_plano->enesima : m_vistas != m_plano->enesima) {
    return plataforma::kSemFalha;
  }
  m_bDisparou = true;
  const FalhaArquivo falha = m_plano->falha;
  const std::size_t antes = m_plano->gravaAntes.value_or(0);
  void (*const aoFalhar)() = m_plano->aoFalhar;
  guarda.unlock();
  if (gravaAntes) {
    gravaAntes(antes);
  }
  if (aoFalhar != nullptr) {
    aoFalhar();
  }
  return falha;
}

FalhaArquivo ArquivosComFalha::Abre(const CString &caminho, const ModoAbertura &modo,
                                    std::unique_ptr<IArquivoAberto> *arquivo) {
  arquivo->reset();
  std::unique_ptr<IArquivoAberto> base;
  const FalhaArquivo injetada = Passa(kOpAbre, caminho);
  const FalhaArquivo falha = injetada ? injetada : ArquivosDecorado::Abre(caminho, modo, &base);
  if (!falha) {
    *arquivo = std::make_unique<Arquivo>(*this, caminho, std::move(base));
  }
  return falha;
}

FalhaArquivo ArquivosComFalha::Existe(const CString &caminho, bool *existe) {
  *existe = false;
  const FalhaArquivo falha = Passa(kOpExiste, caminho);
  return falha ? falha : ArquivosDecorado::Existe(caminho, existe);
}

FalhaArquivo ArquivosComFalha::TamanhoDe(const CString &caminho, std::uint64_t *tamanho) {
  const FalhaArquivo falha = Passa(kOpTamanho, caminho);
  return falha ? falha : ArquivosDecorado::TamanhoDe(caminho, tamanho);
}

FalhaArquivo ArquivosComFalha::Apaga(const CString &caminho) {
  const FalhaArquivo falha = Passa(kOpApaga, caminho);
  return falha ? falha : ArquivosDecorado::Apaga(caminho);
}

FalhaArquivo ArquivosComFalha::MoveSubstituindo(const CString &origem, const CString &destino) {
  // Either path may be the one that counts; a zero byte cannot be part of a path.
  const FalhaArquivo falha = Passa(kOpMove, origem + CString(1, '\0') + destino);
  return falha ? falha : ArquivosDecorado::MoveSubstituindo(origem, destino);
}

FalhaArquivo ArquivosComFalha::Lista(const CString &diretorio, const CString &mascara, std::vector<CString> *nomes) {
  nomes->clear();
  const FalhaArquivo falha = Passa(kOpLista, diretorio + mascara);
  return falha ? falha : ArquivosDecorado::Lista(diretorio, mascara, nomes);
}

}  // namespace apoio
