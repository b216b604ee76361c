#include "vehicles/BaseVeiculos.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/platform/MemoriaTarefa.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

constexpr char kFonte[] = "BaseVeiculos.cpp";
constexpr std::size_t kCrescimentoListas = 10;

/// Copies a text into a filter field, cut to the field's full width without a terminator: a longer text then equals no
/// stored text that is shorter than the field.
template <std::size_t N>
void PreencheCriterio(char (&campo)[N], const char *lpTexto) {
  const std::size_t uiTamanho = strnlen(lpTexto, N);
  std::copy(lpTexto, lpTexto + uiTamanho, campo);
}

}  // namespace

CBaseVeiculos::~CBaseVeiculos() {
  FinalizaNoDestrutor();
}

HRESULT CBaseVeiculos::OnInicializa() {
  const CQZRastro rastro(this, {"CBaseVeiculos::OnInicializa"}, kFonte);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZBaseParaRotinas::OnInicializa());
  QZ_VERIFICA(rastro, "ExecutaConversao()", ExecutaConversao());
  QZ_VERIFICA(rastro, "QZDataBaseInicializa()", QZDataBaseInicializa());
  return codigos::kOk;
}

HRESULT CBaseVeiculos::Grava(LONG *pPos, const tagREG_VEICULOPS &Veiculo) {
  const CQZRastro rastro(this, {"CBaseVeiculos::Grava"}, kFonte);
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  RegVeiculo RegVei;
  CopiaParaRegistro(Veiculo, &RegVei);
  auto uiPosicao = static_cast<std::uint64_t>(static_cast<std::int64_t>(*pPos));
  QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.Grava(uiPosicao, RegVei)",
              m_pDataBase->m_Veiculos.Grava(uiPosicao, RegVei));
  *pPos = static_cast<LONG>(uiPosicao);
  return codigos::kOk;
}

HRESULT CBaseVeiculos::InternalGetRegs(const tagREG_FILTRO_VEICULOSPS &Filtro, CArray<LONG> *aPonteiros,
                                       CArray<RegVeiculo> *aRegistros) {
  return Procura(Filtro, std::numeric_limits<std::size_t>::max(), aPonteiros, aRegistros);
}

HRESULT CBaseVeiculos::Procura(const tagREG_FILTRO_VEICULOSPS &Filtro, std::size_t uiMaximo, CArray<LONG> *aPonteiros,
                               CArray<RegVeiculo> *aRegistros) {
  const CQZRastro rastro(this, {"CBaseVeiculos::InternalGetRegs"}, kFonte);
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  const CFiltroVeiculos filtro(Filtro);
  CArray<LONG> aPosicoesAchadas;
  CArray<RegVeiculo> aRegistrosAchados;
  aPosicoesAchadas.SetSize(0, kCrescimentoListas);
  aRegistrosAchados.SetSize(0, kCrescimentoListas);
  std::size_t uiAchados = 0;
  const auto visita = [&](std::uint64_t uiPosicao, const RegVeiculo &reg) {
    if (filtro.Atende(reg)) {
      if (aPonteiros != nullptr) {
        aPosicoesAchadas.Add(static_cast<LONG>(uiPosicao));
      }
      if (aRegistros != nullptr) {
        aRegistrosAchados.Add(reg);
      }
      ++uiAchados;
    }
    return uiAchados < uiMaximo;
  };
  std::uint64_t uiQtd = 0;
  const HRESULT hr = QuantidadeSobTrava(rastro, &uiQtd);
  if (Falhou(hr)) {
    return hr;
  }
  QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.Le(idx, &RegVei)", m_pDataBase->m_Veiculos.Percorre(1, uiQtd, visita));
  if (aPonteiros != nullptr) {
    *aPonteiros = std::move(aPosicoesAchadas);
  }
  if (aRegistros != nullptr) {
    *aRegistros = std::move(aRegistrosAchados);
  }
  return codigos::kOk;
}

HRESULT CBaseVeiculos::QuantidadeSobTrava(const CQZRastro &rastro, std::uint64_t *puiQtd) const {
  const plataforma::CQZTrava trava(m_pDataBase->Secao());
  QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.GetQuantidade(&uiQtd)", m_pDataBase->m_Veiculos.GetQuantidade(puiQtd));
  return codigos::kOk;
}

bool CBaseVeiculos::AtendeFiltro(const RegVeiculo &reg, const tagREG_FILTRO_VEICULOSPS &Filtro) {
  return CFiltroVeiculos(Filtro).Atende(reg);
}

HRESULT CBaseVeiculos::BuscaPonteiros(const tagREG_FILTRO_VEICULOSPS &Filtro, tagRESULTADO_BUSCA_VEICULOS *pResultado) {
  const CQZRastro rastro(this, {"CBaseVeiculos::BuscaPonteiros"}, kFonte);
  *pResultado = tagRESULTADO_BUSCA_VEICULOS{};
  CArray<LONG> aPonteiros;
  QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, nullptr)", InternalGetRegs(Filtro, &aPonteiros, nullptr));
  if (aPonteiros.IsEmpty()) {
    return codigos::kOk;
  }
  const std::size_t cb = aPonteiros.GetSize() * sizeof(LONG);
  void *pMemoria = plataforma::AlocaTarefa(cb);
  if (pMemoria == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kSemMemoria);
  }
  std::memcpy(pMemoria, aPonteiros.GetData(), cb);
  pResultado->Ponteiros = static_cast<LONG *>(pMemoria);
  pResultado->iQtd = static_cast<std::uint32_t>(aPonteiros.GetSize());
  return codigos::kOk;
}

HRESULT CBaseVeiculos::Existe(const char *lpCodigo, std::uint32_t *pPos, tagREG_VEICULOPS *pVeiculo) {
  const CQZRastro rastro(this, {"CBaseVeiculos::Existe"}, kFonte);
  *pPos = 0;
  *pVeiculo = tagREG_VEICULOPS{};
  tagREG_FILTRO_VEICULOSPS Filtro{};
  PreencheCriterio(Filtro.szCodigo, lpCodigo);
  CArray<LONG> aPonteiros;
  CArray<RegVeiculo> aRegistros;
  // The answer is the first match, so the scan ends there.
  QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, &aRegistros)",
              Procura(Filtro, 1, &aPonteiros, &aRegistros));
  if (aPonteiros.IsEmpty()) {
    Filtro = tagREG_FILTRO_VEICULOSPS{};
    PreencheCriterio(Filtro.szPlaca, lpCodigo);
    QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, &aRegistros)",
                Procura(Filtro, 1, &aPonteiros, &aRegistros));
  }
  if (!aPonteiros.IsEmpty()) {
    *pPos = static_cast<std::uint32_t>(aPonteiros[0]);
    CopiaParaInterface(aRegistros[0], pVeiculo);
  }
  return codigos::kOk;
}

HRESULT CBaseVeiculos::LePonteiros(std::uint32_t iQtd, const LONG *Ponteiros, tagREG_VEICULOPS *pVeiculos) {
  const CQZRastro rastro(this, {"CBaseVeiculos::LePonteiros"}, kFonte);
  std::fill_n(pVeiculos, iQtd, tagREG_VEICULOPS{});
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  RegVeiculo RegVei{};
  for (std::uint32_t idx = 0; idx < iQtd; ++idx) {
    const auto uiPosicao = static_cast<std::uint64_t>(static_cast<std::int64_t>(Ponteiros[idx]));
    QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.Le(Ponteiros[idx], &RegVei)",
                m_pDataBase->m_Veiculos.Le(uiPosicao, &RegVei));
    CopiaParaInterface(RegVei, &pVeiculos[idx]);
  }
  return codigos::kOk;
}

HRESULT CBaseVeiculos::GetQuantidadeRegistros(std::uint32_t *pQtd) {
  const CQZRastro rastro(this, {"CBaseVeiculos::GetQuantidadeRegistros"}, kFonte);
  *pQtd = 0;
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  std::uint64_t uiQtd = 0;
  const HRESULT hr = QuantidadeSobTrava(rastro, &uiQtd);
  *pQtd = static_cast<std::uint32_t>(uiQtd);
  return hr;
}
