#include "tests/apoio/ArquivosDecorado.h"

#include <algorithm>
#include <utility>

namespace apoio {

using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

namespace {

/// A failure that was injected, else what the call says.
template <class Chamada>
FalhaArquivo Senao(const FalhaArquivo &injetada, Chamada chama) {
  return injetada ? injetada : chama();
}

}  // namespace

/// An open file whose operations count too.
class ArquivosComFalha::Arquivo final : public IArquivoAberto {
public:
  Arquivo(ArquivosComFalha &dono, const CString &sCaminho) : m_dono(dono), m_caminho(sCaminho) {
    const std::lock_guard<std::mutex> guarda(m_dono.m_mutex);
    m_dono.m_abertos.insert(this);
  }
  ~Arquivo() override { Morre({}); }

  FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override {
    return Senao(Passa(kOpLe), [&] { return m_base->Le(posicao, destino, qtd); });
  }
  FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override {
    const auto gravaAntes = [&](std::size_t antes) {
      static_cast<void>(m_base->Grava(posicao, origem, std::min(qtd, antes)));
    };
    // By reference: a write that needs no memory must not need any here.
    return Senao(Passa(kOpGrava, std::ref(gravaAntes)), [&] { return m_base->Grava(posicao, origem, qtd); });
  }
  FalhaArquivo Tamanho(std::uint64_t *tamanho) override {
    return Senao(Passa(kOpTamanho), [&] { return m_base->Tamanho(tamanho); });
  }
  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    return Senao(Passa(kOpAjustaTamanho), [&] { return m_base->AjustaTamanho(tamanho); });
  }
  FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) override {
    const FalhaArquivo falha = Senao(Passa(kOpTamanho), [&] { return m_base->UltimaEscrita(puiTicks); });
    *puiTicks = !falha && m_dono.m_ultimaEscrita != 0 ? m_dono.m_ultimaEscrita.load() : *puiTicks;
    return falha;
  }
  FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override {
    return Senao(Passa(kOpAjustaTamanho), [&] { return m_base->Mapeia(qtd, ppBytes); });
  }
  /// The file system below is not asked: no test's files need outlive a power cut, and it would take most of the time.
  FalhaArquivo Descarrega() override { return Passa(kOpDescarrega); }

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
  FalhaArquivo Passa(Operacao operacao, const std::function<void(std::size_t)> &gravaAntes = nullptr) {
    return m_morte ? m_morte : m_dono.Passa(operacao, m_caminho, this, gravaAntes);
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

int ArquivosComFalha::Abertos() const {
  const std::lock_guard<std::mutex> guarda(m_mutex);
  return static_cast<int>(
      std::count_if(m_abertos.begin(), m_abertos.end(), [](Arquivo *pAberto) { return pAberto->Base() != nullptr; }));
}

std::optional<std::string> ArquivosComFalha::Conteudo(const CString &sCaminho) {
  std::unique_ptr<IArquivoAberto> proprio;
  static_cast<void>(ArquivosDecorado::Abre(sCaminho, {}, &proprio));
  IArquivoAberto *pArquivo = proprio.get();
  {
    const std::lock_guard<std::mutex> guarda(m_mutex);
    for (Arquivo *pAberto : m_abertos) {
      pArquivo = pAberto->Chama(sCaminho) && pAberto->Base() ? pAberto->Base().get() : pArquivo;
    }
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
                                     const std::function<void(std::size_t)> &gravaAntes) {
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
      gravaAntes(plano.gravaAntes.value_or(0));
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
  const FalhaArquivo falha =
      Senao(Passa(kOpAbre, sCaminho), [&] { return ArquivosDecorado::Abre(sCaminho, modo, &aberto->Base()); });
  if (!falha) {
    *arquivo = std::move(aberto);
  }
  return falha;
}

FalhaArquivo ArquivosComFalha::Existe(const CString &sCaminho, bool *pbExiste) {
  *pbExiste = false;
  return Senao(Passa(kOpExiste, sCaminho), [&] { return ArquivosDecorado::Existe(sCaminho, pbExiste); });
}

FalhaArquivo ArquivosComFalha::TamanhoDe(const CString &sCaminho, std::uint64_t *tamanho) {
  return Senao(Passa(kOpTamanho, sCaminho), [&] { return ArquivosDecorado::TamanhoDe(sCaminho, tamanho); });
}

FalhaArquivo ArquivosComFalha::Apaga(const CString &sCaminho) {
  return Senao(Passa(kOpApaga, sCaminho), [&] { return ArquivosDecorado::Apaga(sCaminho); });
}

FalhaArquivo ArquivosComFalha::MoveSubstituindo(const CString &origem, const CString &destino) {
  // Either path may be the one that counts; a zero byte cannot be part of a path.
  return Senao(Passa(kOpMove, origem + CString(1, '\0') + destino),
               [&] { return ArquivosDecorado::MoveSubstituindo(origem, destino); });
}

FalhaArquivo ArquivosComFalha::Lista(const CString &sDiretorio, std::vector<CString> *pNomes) {
  pNomes->clear();
  return Senao(Passa(kOpLista, sDiretorio), [&] { return ArquivosDecorado::Lista(sDiretorio, pNomes); });
}

}  // namespace apoio
