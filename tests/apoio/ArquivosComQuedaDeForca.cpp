#include "tests/apoio/ArquivosComQuedaDeForca.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/apoio/PastaTemporaria.h"

namespace apoio {

using plataforma::Criacao;

/// Notes what is written, and what of it was flushed.
class ArquivosComQuedaDeForca::Arquivo final : public plataforma::IArquivoAberto {
public:
  Arquivo(ArquivosComQuedaDeForca &dono, std::shared_ptr<Conteudo> conteudo, std::unique_ptr<IArquivoAberto> base)
      : m_dono(dono), m_conteudo(std::move(conteudo)), m_base(std::move(base)) {}
  ~Arquivo() override {
    m_dono.FixaMapas();
    m_dono.m_mapas.erase(m_conteudo.get());
  }

  FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override {
    return m_base->Le(posicao, destino, qtd);
  }
  FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override {
    const bool bPelaMetade = m_dono.m_eQueda == Queda::DoProcesso && !m_dono.Caiu();
    const FalhaArquivo queda = m_dono.Muda();
    const std::size_t feitos = !queda ? qtd : bPelaMetade ? qtd / 2 : 0;
    const FalhaArquivo falha = m_base->Grava(posicao, origem, feitos);
    if (!falha && feitos != 0) {
      const auto onde = static_cast<std::size_t>(posicao);
      std::string &sAtual = m_conteudo->atual;
      sAtual.resize(std::max(sAtual.size(), onde + feitos));
      sAtual.replace(onde, feitos, static_cast<const char *>(origem), feitos);
    }
    return queda ? queda : falha;
  }
  FalhaArquivo Tamanho(std::uint64_t *tamanho) override { return m_base->Tamanho(tamanho); }
  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    const FalhaArquivo queda = m_dono.Muda();
    const FalhaArquivo falha = queda ? queda : m_base->AjustaTamanho(tamanho);
    if (!falha) {
      m_conteudo->atual.resize(static_cast<std::size_t>(tamanho));
    }
    return falha;
  }
  FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) override { return m_base->UltimaEscrita(puiTicks); }
  /// The device is this object: to flush the real one would only take time.
  FalhaArquivo Descarrega() override {
    const FalhaArquivo queda = m_dono.Muda();
    if (!queda) {
      m_conteudo->descarregado = m_conteudo->atual;
    }
    return queda;
  }

  FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override {
    const FalhaArquivo queda = m_dono.Muda();
    const FalhaArquivo falha = queda ? queda : m_base->Mapeia(qtd, ppBytes);
    if (!falha) {
      m_dono.m_mapas[m_conteudo.get()] = {reinterpret_cast<const char *>(*ppBytes), qtd};
    }
    return falha;
  }

private:
  ArquivosComQuedaDeForca &m_dono;
  std::shared_ptr<Conteudo> m_conteudo;
  std::unique_ptr<IArquivoAberto> m_base;
};

void ArquivosComQuedaDeForca::Prepara(Queda eQueda, std::size_t n) {
  m_eQueda = eQueda;
  m_uiMudancas = 0;
  m_uiLimite = n;
}

/// What is mapped changes without a call, up to the end of the process.
void ArquivosComQuedaDeForca::FixaMapas() {
  for (const auto &[pConteudo, sBytes] : m_mapas) {
    if (!Caiu()) {
      pConteudo->atual = sBytes;
    }
  }
}

FalhaArquivo ArquivosComQuedaDeForca::Muda() {
  FixaMapas();
  ++m_uiMudancas;
  return Caiu() ? plataforma::FalhaWin32(1117) : plataforma::kSemFalha;
}

FalhaArquivo ArquivosComQuedaDeForca::Abre(const CString &sCaminho, const plataforma::ModoAbertura &modo,
                                           std::unique_ptr<plataforma::IArquivoAberto> *pArquivo) {
  pArquivo->reset();
  if (modo.criacao != Criacao::SoExistente) {
    if (const FalhaArquivo queda = Muda()) {
      return queda;
    }
  }
  std::shared_ptr<Conteudo> conteudo;
  if (const auto conhecido = m_conteudos.find(sCaminho); conhecido != m_conteudos.end()) {
    conteudo = conhecido->second;
  } else {
    // Read before the open, which may empty the file.
    const std::string sBytes = ExisteNoDisco(sCaminho) ? LeArquivo(sCaminho) : "";
    conteudo = std::make_shared<Conteudo>(Conteudo{sBytes, sBytes});
  }
  std::unique_ptr<plataforma::IArquivoAberto> base;
  const FalhaArquivo falha = ArquivosDecorado::Abre(sCaminho, modo, &base);
  if (!falha) {
    if (modo.criacao == Criacao::CriaVazio) {
      conteudo->atual.clear();
    }
    m_conteudos[sCaminho] = conteudo;
    *pArquivo = std::make_unique<Arquivo>(*this, std::move(conteudo), std::move(base));
  }
  return falha;
}

FalhaArquivo ArquivosComQuedaDeForca::Apaga(const CString &sCaminho) {
  const FalhaArquivo queda = Muda();
  const FalhaArquivo falha = queda ? queda : ArquivosDecorado::Apaga(sCaminho);
  if (!falha) {
    m_conteudos.erase(sCaminho);
  }
  return falha;
}

FalhaArquivo ArquivosComQuedaDeForca::MoveSubstituindo(const CString &origem, const CString &destino) {
  const FalhaArquivo queda = Muda();
  const FalhaArquivo falha = queda ? queda : ArquivosDecorado::MoveSubstituindo(origem, destino);
  if (!falha) {
    auto movido = m_conteudos.extract(origem);
    m_conteudos.erase(destino);
    if (movido) {
      movido.key() = destino;
      m_conteudos.insert(std::move(movido));
    }
  }
  return falha;
}

void ArquivosComQuedaDeForca::CortaForca() {
  if (std::any_of(m_conteudos.begin(), m_conteudos.end(), [](const auto &par) { return par.second.use_count() > 1; })) {
    throw std::logic_error("a file is still open");
  }
  for (const auto &[sCaminho, conteudo] : m_conteudos) {
    std::string &sBytes = m_eQueda == Queda::DoProcesso ? conteudo->atual : conteudo->descarregado;
    sBytes.resize(m_eQueda == Queda::TamanhoPerdido ? sBytes.size() : conteudo->atual.size());
    EscreveArquivo(sCaminho, sBytes);
  }
  m_conteudos.clear();
}

}  // namespace apoio
