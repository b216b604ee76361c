// Services of the operating system that say what a test wants, and how they come into force.

#ifndef KALVO_TESTS_APOIO_SERVICOSFALSOS_H
#define KALVO_TESTS_APOIO_SERVICOSFALSOS_H

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "core/platform/Plataforma.h"

namespace apoio {

/// Puts replaced services in force for a scope; a null one stays as it is. Scopes may nest.
class ServicosTrocados {
public:
  explicit ServicosTrocados(plataforma::IArquivos *pArquivos, plataforma::IRegistro *pRegistro = nullptr,
                            plataforma::IRelogio *pRelogio = nullptr, plataforma::IInformacoes *pInformacoes = nullptr,
                            plataforma::ICaixaMensagem *pCaixaMensagem = nullptr)
      : m_anteriores(plataforma::ServicosEmVigor()), m_novos(m_anteriores) {
    m_novos.arquivos = pArquivos != nullptr ? pArquivos : m_novos.arquivos;
    m_novos.registro = pRegistro != nullptr ? pRegistro : m_novos.registro;
    m_novos.relogio = pRelogio != nullptr ? pRelogio : m_novos.relogio;
    m_novos.informacoes = pInformacoes != nullptr ? pInformacoes : m_novos.informacoes;
    m_novos.caixaMensagem = pCaixaMensagem != nullptr ? pCaixaMensagem : m_novos.caixaMensagem;
    plataforma::SubstituiServicos(&m_novos);
  }
  ~ServicosTrocados() { plataforma::SubstituiServicos(&m_anteriores); }
  ServicosTrocados(const ServicosTrocados &) = delete;
  ServicosTrocados &operator=(const ServicosTrocados &) = delete;

private:
  const plataforma::Servicos &m_anteriores;
  plataforma::Servicos m_novos;
};

/// A registry that holds a few values which all test processes of the machine would share in the real one. Names are
/// compared as written. To be filled while no other thread uses it.
class RegistroFalso final : public plataforma::IRegistro {
public:
  /// What it does not hold is that of another registry, where there is one, which must outlive it.
  explicit RegistroFalso(plataforma::IRegistro *pBase = nullptr) : m_pBase(pBase) {}

  using Nome = std::pair<CString, CString>;  ///< key, without a final `\` unless it is asked for with one, and value
  std::map<Nome, CString> m_textos;
  std::map<Nome, std::uint32_t> m_numeros;

  bool ExisteChave(const CString &sChave) override {
    const auto primeiro = m_textos.lower_bound({sChave, CString()});
    return (primeiro != m_textos.end() && primeiro->first.first == sChave) ||
           (m_pBase != nullptr && m_pBase->ExisteChave(sChave));
  }
  std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) override {
    if (const auto achado = m_textos.find({sChave, sNome}); achado != m_textos.end()) {
      return achado->second;
    }
    return m_pBase != nullptr ? m_pBase->LeTexto(sChave, sNome, bExpande) : std::nullopt;
  }
  std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) override {
    if (const auto achado = m_numeros.find({sChave, sNome}); achado != m_numeros.end()) {
      return achado->second;
    }
    return m_pBase != nullptr ? m_pBase->LeNumero(sChave, sNome) : std::nullopt;
  }

private:
  plataforma::IRegistro *m_pBase;
};

/// A clock on which every wait is over at once. Any thread may call, several at once.
class RelogioFalso final : public plataforma::IRelogio {
public:
  /// `aoEsperar`, when given, is called on the waiting thread at each wait with its length.
  explicit RelogioFalso(std::function<void(std::uint32_t)> aoEsperar = {}) : m_aoEsperar(std::move(aoEsperar)) {}

  void Espera(std::uint32_t milissegundos) override {
    {
      const std::lock_guard<std::mutex> guarda(m_mutex);
      m_esperas.push_back(milissegundos);
    }
    if (m_aoEsperar) {
      m_aoEsperar(milissegundos);
    }
  }

  std::uint32_t Ticks() override { return m_ticks += m_passo; }
  plataforma::CamposData HoraLocal() override { return m_horaLocal; }
  bool LocalParaUtc(std::uint64_t local, std::uint64_t *puiUtc, std::uint32_t *puiErroSO) override {
    *puiErroSO = 87;
    *puiUtc = local + std::uint64_t{3} * 3600 * 10000000;
    return m_bLocalParaUtc;
  }

  /// What the clock shows; to be set while no other thread uses it.
  std::atomic<std::uint32_t> m_ticks = 1000;
  std::uint32_t m_passo = 0;  ///< between two looks at the clock
  plataforma::CamposData m_horaLocal{2025, 11, 5, 21, 9, 5, 7, 42};
  bool m_bLocalParaUtc = true;

  /// The waits asked for so far, oldest first.
  std::vector<std::uint32_t> Esperas() const {
    const std::lock_guard<std::mutex> guarda(m_mutex);
    return m_esperas;
  }

private:
  std::function<void(std::uint32_t)> m_aoEsperar;
  mutable std::mutex m_mutex;
  std::vector<std::uint32_t> m_esperas;
};

/// A machine with fixed figures. The figures are to be set while no other thread uses it.
class InformacoesFalsas final : public plataforma::IInformacoes {
public:
  std::uint64_t m_uiMemoriaProcesso = 3276800;
  plataforma::VersaoArquivo m_versaoPrograma{0x00010000, 0};
  CString m_diretorioAtual = "C:\\atual\\";
  CString m_textoErro = "Arquivo ausente.\r\n";  ///< of error 2, the one that has a text

  CString NomeProcesso() override { return "kalvo.exe"; }
  CString UsuarioLocal() override { return "operador"; }
  std::uint32_t IdThread() override { return 4660; }
  CString NovoGuid() override { return "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"; }
  bool MemoriaProcesso(std::uint64_t *puiBytes) override {
    *puiBytes = m_uiMemoriaProcesso;
    return true;
  }
  bool MemoriaMaquina(std::uint64_t *puiDisponivel, std::uint64_t *puiTotal) override {
    *puiDisponivel = 8589934592;
    *puiTotal = 17179869184;
    return true;
  }
  bool VersaoPrograma(plataforma::VersaoArquivo *pVersao) override {
    *pVersao = m_versaoPrograma;
    return true;
  }
  plataforma::VersaoSistema VersaoSO() override { return {10, 0, 19045}; }
  CString TextoErro(std::uint32_t erro) override { return erro == 2 ? m_textoErro : CString(); }
  CString CaminhoAbsoluto(const CString &sCaminho) override { return m_diretorioAtual + sCaminho; }
};

/// Notes the boxes instead of showing them; each is answered with 7.
class CaixaFalsa final : public plataforma::ICaixaMensagem {
public:
  static constexpr int kResposta = 7;

  struct Caixa {
    CString texto;
    CString titulo;
    std::uint32_t tipo;
    plataforma::DonoCaixa dono;

    bool operator==(const Caixa &) const = default;
  };

  int Mostra(const CString &texto, const CString &titulo, std::uint32_t tipo, plataforma::DonoCaixa dono) override {
    m_caixas.push_back({texto, titulo, tipo, dono});
    return kResposta;
  }

  /// The boxes so far, oldest first; taking them empties the list.
  std::vector<Caixa> Toma() { return std::exchange(m_caixas, {}); }

private:
  std::vector<Caixa> m_caixas;
};

}  // namespace apoio

#endif
