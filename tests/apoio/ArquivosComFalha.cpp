#include "tests/apoio/ArquivosComFalha.h"

#include <algorithm>
#include <utility>

namespace apoio {

using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

/// An open file whose operations count too.
class ArquivosComFalha::Arquivo final : public IArquivoAberto {
public:
  Arquivo(ArquivosComFalha &dono, const CString &sCaminho) : m_dono(dono), m_caminho(sCaminho) {
    const std::lock_guard<std::mutex> guarda(m_dono.m_mutex);
    m_dono.m_abertos.insert(this);
  }
  ~Arquivo() override { Morre({}); }

  FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override {
    return Faz(kOpLe, [&] { return m_base->Le(posicao, destino, qtd); });
  }
  FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override {
    const auto grava = [&](std::size_t uiQuantos) { return m_base->Grava(posicao, origem, std::min(qtd, uiQuantos)); };
    // By reference: a write that needs no memory must not need any here.
    return Faz(
        kOpGrava, [&] { return grava(qtd); }, std::ref(grava));
  }
  FalhaArquivo Tamanho(std::uint64_t *tamanho) override {
    return Faz(kOpTamanho, [&] { return m_base->Tamanho(tamanho); });
  }
  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    return Faz(kOpAjustaTamanho, [&] { return m_base->AjustaTamanho(tamanho); });
  }
  FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) override {
    const FalhaArquivo falha = Faz(kOpTamanho, [&] { return m_base->UltimaEscrita(puiTicks); });
    *puiTicks = !falha && m_dono.m_ultimaEscrita != 0 ? m_dono.m_ultimaEscrita.load() : *puiTicks;
    return falha;
  }
  FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override {
    return Faz(kOpAjustaTamanho, [&] { return m_base->Mapeia(qtd, ppBytes); });
  }
  /// The file system below is not asked: no test's files need outlive a power cut, and it would take most of the time.
  FalhaArquivo Descarrega() override {
    return Faz(kOpDescarrega, [] { return plataforma::kSemFalha; });
  }

  /// Closes the file; every operation from now on has this failure.
  void Morre(const FalhaArquivo &falha) {
    const std::lock_guard<std::mutex> guarda(m_dono.m_mutex);
    m_dono.m_abertos.erase(this);
    m_morte = falha;
    m_base.reset();
  }
  bool Chama(const CString &sCaminho) const { return m_caminho == sCaminho; }
  std::unique_ptr<IArquivoAberto> &Base() { return m_base; }

private:
  template <class Chamada>
  FalhaArquivo Faz(Operacao operacao, Chamada chama, const Escreve &gravaAntes = nullptr) {
    const FalhaArquivo injetada = m_morte ? m_morte : m_dono.Passa(operacao, m_caminho, this, gravaAntes);
    return injetada ? injetada : chama();
  }

  ArquivosComFalha &m_dono;
  CString m_caminho;
  std::unique_ptr<IArquivoAberto> m_base;
  FalhaArquivo m_morte{};
};

void ArquivosComFalha::Arma(const PlanoFalha &plano) {
  Desarma();
  m_vistas = 0;
  m_disparos = 0;
  ArmaTambem(plano);
}

void ArquivosComFalha::ArmaTambem(const PlanoFalha &plano) {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_planos.push_back({plano});
}

void ArquivosComFalha::Desarma() {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  m_planos.clear();
  m_aberturasPerdidas = 0;
}

std::ptrdiff_t ArquivosComFalha::Abertos() const {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return std::ranges::count_if(m_abertos, [](Arquivo *pAberto) { return pAberto->Base() != nullptr; });
}

std::optional<std::string> ArquivosComFalha::Conteudo(const CString &sCaminho) {
  std::unique_ptr<IArquivoAberto> proprio;
  static_cast<void>(m_base.Abre(sCaminho, {}, &proprio));
  IArquivoAberto *pArquivo = proprio.get();
  const std::lock_guard<std::mutex> guarda(m_mutex);
  for (Arquivo *pAberto : m_abertos) {
    pArquivo = pAberto->Chama(sCaminho) && pAberto->Base() ? pAberto->Base().get() : pArquivo;
  }
  if (pArquivo == nullptr) {
    return std::nullopt;
  }
  std::uint64_t uiTamanho = 0;
  static_cast<void>(pArquivo->Tamanho(&uiTamanho));
  std::string sBytes(static_cast<std::size_t>(uiTamanho), '\0');
  return pArquivo->Le(0, sBytes.data(), sBytes.size()) ? "cannot be read" : sBytes;
}

FalhaArquivo ArquivosComFalha::Passa(Operacao operacao, const CString &sCaminho, Arquivo *pAberto,
                                     const Escreve &gravaAntes) {
  std::unique_lock<std::mutex> guarda(m_mutex);
  if (operacao == kOpAbre && m_aberturasPerdidas != 0) {
    --m_aberturasPerdidas;
    return m_falhaMorte;
  }
  for (std::size_t i = 0; i < m_planos.size(); ++i) {
    auto &[armado, vistas] = m_planos[i];
    if ((armado.operacoes & operacao) == 0 || sCaminho.find(armado.trecho) == CString::npos) {
      continue;
    }
    ++vistas;
    m_vistas += i == 0 ? 1 : 0;
    if (vistas != armado.enesima && vistas != armado.outra && !(armado.bPersistente && vistas > armado.enesima)) {
      continue;
    }
    const PlanoFalha plano = armado;
    ++m_disparos;
    m_sCaminhoDoDisparo = sCaminho;
    if (plano.morte && pAberto != nullptr) {
      m_aberturasPerdidas = *plano.morte;
      m_falhaMorte = plano.falha;
    }
    guarda.unlock();
    if (gravaAntes && plano.falha) {
      gravaAntes(plano.gravaAntes);
    }
    if (plano.morte && pAberto != nullptr) {
      pAberto->Morre(plano.falha);
    }
    if (plano.aoFalhar) {
      plano.aoFalhar();
    }
    if (plano.falha) {
      return plano.falha;
    }
    guarda.lock();
  }
  return plataforma::kSemFalha;
}

FalhaArquivo ArquivosComFalha::Abre(const CString &sCaminho, const ModoAbertura &modo,
                                    std::unique_ptr<IArquivoAberto> *arquivo) {
  arquivo->reset();
  // First, as the file system does: a file that was created has an owner, whatever memory there is.
  auto aberto = std::make_unique<Arquivo>(*this, sCaminho);
  const FalhaArquivo falha = Faz(kOpAbre, sCaminho, [&] { return m_base.Abre(sCaminho, modo, &aberto->Base()); });
  if (!falha) {
    *arquivo = std::move(aberto);
  }
  return falha;
}

}  // namespace apoio
