#include "vehicles/BaseVeiculos.h"

#include <algorithm>
#include <cstring>

#include "core/platform/MemoriaTarefa.h"
#include "core/platform/Travas.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

constexpr char kFonteBaseVeiculos[] = "BaseVeiculos.cpp";

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
  const CQZRastro rastro(this, {"CBaseVeiculos::OnInicializa"}, kFonteBaseVeiculos);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZBaseParaRotinas::OnInicializa());
  QZ_VERIFICA(rastro, "ExecutaConversao()", ExecutaConversao());
  QZ_VERIFICA(rastro, "QZDataBaseInicializa()", QZDataBaseInicializa());
  return codigos::kOk;
}

HRESULT CBaseVeiculos::Grava(LONG *pPos, const tagREG_VEICULOPS &Veiculo) {
  const CQZRastro rastro(this, {"CBaseVeiculos::Grava"}, kFonteBaseVeiculos);
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

template <typename F>
HRESULT CBaseVeiculos::Procura(const tagREG_FILTRO_VEICULOSPS &Filtro, std::uint64_t *puiTodas, F &&acha) {
  const CQZRastro rastro(this, {"CBaseVeiculos::InternalGetRegs"}, kFonteBaseVeiculos);
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  const CFiltroVeiculos filtro(Filtro);
  std::uint64_t uiQtd = 0;
  const HRESULT hr = QuantidadeSobTrava(rastro, &uiQtd);
  if (Falhou(hr)) {
    return hr;
  }
  // Where every record passes, positions are a count, and counting has met the failures that reading would meet.
  if (puiTodas != nullptr && filtro.PassaTudo()) {
    *puiTodas = uiQtd;
    return codigos::kOk;
  }
  const auto percorre = [&] {
    // One exact text of an indexed field leaves few records; the filter judges those by the other criteria.
    if (const auto chave = filtro.ChaveExata()) {
      return m_pDataBase->m_Veiculos.PercorreTexto(
          chave->uiCampo, chave->sTexto, uiQtd,
          [&](std::uint64_t uiPosicao, const RegVeiculo &reg) { return !filtro.Atende(reg) || acha(uiPosicao, reg); });
    }
    return m_pDataBase->m_Veiculos.PercorreTrechos(
        1, uiQtd, [&](std::uint64_t uiPosicao, const CFiltroVeiculos::Trecho &trecho) {
          return filtro.Procura(trecho, [&](std::size_t i) { return acha(uiPosicao + i, trecho.pRegistros[i]); });
        });
  };
  QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.Le(idx, &RegVei)", percorre());
  return codigos::kOk;
}

HRESULT CBaseVeiculos::ProcuraPosicoes(const tagREG_FILTRO_VEICULOSPS &Filtro, CPosicoesAchadas *pAchadas) {
  std::uint64_t uiTodas = 0;
  const HRESULT hr = Procura(Filtro, &uiTodas, [pAchadas](std::uint64_t uiPosicao, const RegVeiculo &) {
    pAchadas->Acrescenta(static_cast<LONG>(uiPosicao));
    return true;
  });
  if (uiTodas != 0) {
    pAchadas->DefineTodas(static_cast<std::size_t>(uiTodas));
  }
  return hr;
}

HRESULT CBaseVeiculos::ProcuraPrimeiro(const tagREG_FILTRO_VEICULOSPS &Filtro, std::uint32_t *pPos,
                                       tagREG_VEICULOPS *pVeiculo) {
  return Procura(Filtro, nullptr, [&](std::uint64_t uiPosicao, const RegVeiculo &reg) {
    *pPos = static_cast<std::uint32_t>(uiPosicao);
    CopiaParaInterface(reg, pVeiculo);
    return false;
  });
}

HRESULT CBaseVeiculos::InternalGetRegs(const tagREG_FILTRO_VEICULOSPS &Filtro, CArray<LONG> *aPonteiros,
                                       CArray<RegVeiculo> *aRegistros) {
  CPosicoesAchadas achadas;
  CArray<RegVeiculo> aAchados;
  const HRESULT hr = Procura(Filtro, nullptr, [&](std::uint64_t uiPosicao, const RegVeiculo &reg) {
    achadas.Acrescenta(static_cast<LONG>(uiPosicao));
    if (aRegistros != nullptr) {
      aAchados.Add(reg);
    }
    return true;
  });
  if (Falhou(hr)) {
    return hr;
  }
  if (aPonteiros != nullptr) {
    aPonteiros->SetSize(achadas.GetSize());
    achadas.Copia(aPonteiros->GetData());
  }
  if (aRegistros != nullptr) {
    *aRegistros = std::move(aAchados);
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
  const CQZRastro rastro(this, {"CBaseVeiculos::BuscaPonteiros"}, kFonteBaseVeiculos);
  *pResultado = tagRESULTADO_BUSCA_VEICULOS{};
  CPosicoesAchadas achadas;
  QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, nullptr)", ProcuraPosicoes(Filtro, &achadas));
  const std::size_t uiQtd = achadas.GetSize();
  if (uiQtd == 0) {
    return codigos::kOk;
  }
  void *pMemoria = plataforma::AlocaTarefa(uiQtd * sizeof(LONG));
  if (pMemoria == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kSemMemoria);
  }
  achadas.Copia(static_cast<LONG *>(pMemoria));
  pResultado->Ponteiros = static_cast<LONG *>(pMemoria);
  pResultado->iQtd = static_cast<std::uint32_t>(uiQtd);
  return codigos::kOk;
}

HRESULT CBaseVeiculos::Existe(const char *lpCodigo, std::uint32_t *pPos, tagREG_VEICULOPS *pVeiculo) {
  const CQZRastro rastro(this, {"CBaseVeiculos::Existe"}, kFonteBaseVeiculos);
  *pPos = 0;
  *pVeiculo = tagREG_VEICULOPS{};
  tagREG_FILTRO_VEICULOSPS Filtro{};
  PreencheCriterio(Filtro.szCodigo, lpCodigo);
  QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, &aRegistros)", ProcuraPrimeiro(Filtro, pPos, pVeiculo));
  if (*pPos == 0) {
    Filtro = tagREG_FILTRO_VEICULOSPS{};
    PreencheCriterio(Filtro.szPlaca, lpCodigo);
    QZ_VERIFICA(rastro, "InternalGetRegs(Filtro, &aPonteiros, &aRegistros)", ProcuraPrimeiro(Filtro, pPos, pVeiculo));
  }
  return codigos::kOk;
}

HRESULT CBaseVeiculos::LePonteiros(std::uint32_t iQtd, const LONG *Ponteiros, tagREG_VEICULOPS *pVeiculos) {
  const CQZRastro rastro(this, {"CBaseVeiculos::LePonteiros"}, kFonteBaseVeiculos);
  std::fill_n(pVeiculos, iQtd, tagREG_VEICULOPS{});
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  const auto posicao = [=](std::size_t idx) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(Ponteiros[idx]));
  };
  const auto entrega = [=](std::size_t idx, const RegVeiculo &reg) { CopiaParaInterface(reg, &pVeiculos[idx]); };
  QZ_VERIFICA(rastro, "m_pDataBase->m_Veiculos.Le(Ponteiros[idx], &RegVei)",
              m_pDataBase->m_Veiculos.LeVarios(iQtd, posicao, entrega));
  return codigos::kOk;
}

HRESULT CBaseVeiculos::GetQuantidadeRegistros(std::uint32_t *pQtd) {
  const CQZRastro rastro(this, {"CBaseVeiculos::GetQuantidadeRegistros"}, kFonteBaseVeiculos);
  *pQtd = 0;
  if (m_pDataBase == nullptr) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  std::uint64_t uiQtd = 0;
  const HRESULT hr = QuantidadeSobTrava(rastro, &uiQtd);
  *pQtd = static_cast<std::uint32_t>(uiQtd);
  return hr;
}
