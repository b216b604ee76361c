#include "vehicles/FiltroVeiculos.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/platform/Textos.h"
#include "vehicles/AssinaturaTexto.h"

namespace {

std::size_t TamanhoTexto(const char *lpCampo, std::size_t uiLargura) {
  const void *fim = std::memchr(lpCampo, '\0', uiLargura);
  return fim == nullptr ? uiLargura : static_cast<std::size_t>(static_cast<const char *>(fim) - lpCampo);
}

/// A kind of 0 needs bit 0, any other kind bit 1.
bool AtendeMascaraTipo(std::uint8_t iTipo, std::uint8_t iMascara) {
  return iMascara == 0 || (iMascara & (iTipo == 0 ? 0x01 : 0x02)) != 0;
}

/// Types from `iPrimeiro` to `iUltimo` need the bit of their distance from `iPrimeiro`; any other type passes.
bool AtendeMascaraFaixa(std::uint8_t iTipo, std::uint8_t iMascara, unsigned iPrimeiro, unsigned iUltimo) {
  if (iMascara == 0 || iTipo < iPrimeiro || iTipo > iUltimo) {
    return true;
  }
  return ((iMascara >> (iTipo - iPrimeiro)) & 1U) != 0;
}

}  // namespace

/// A bound of zero or below is none.
CFiltroVeiculos::FaixaMoeda CFiltroVeiculos::Faixa(std::int64_t vInicial, std::int64_t vFinal) {
  return {vInicial > 0 ? vInicial : std::numeric_limits<std::int64_t>::min(),
          vFinal > 0 ? vFinal : std::numeric_limits<std::int64_t>::max()};
}

CFiltroVeiculos::CFiltroVeiculos(const tagREG_FILTRO_VEICULOSPS &Filtro)
    : m_Filtro(Filtro),
      m_tara(Faixa(Filtro.vTaraInicial, Filtro.vTaraFinal)),
      m_kg(Faixa(Filtro.vCapacidadeKgInicial, Filtro.vCapacidadeKgFinal)),
      m_m3(Faixa(Filtro.vCapacidadeM3Inicial, Filtro.vCapacidadeM3Final)),
      m_iAnoInicial(Filtro.iAnoInicial),
      m_iAnoFinal(Filtro.iAnoFinal != 0 ? Filtro.iAnoFinal : std::numeric_limits<std::uint32_t>::max()) {
  m_bMoedas = Filtro.vTaraInicial > 0 || Filtro.vTaraFinal > 0 || Filtro.vCapacidadeKgInicial > 0 ||
              Filtro.vCapacidadeKgFinal > 0 || Filtro.vCapacidadeM3Inicial > 0 || Filtro.vCapacidadeM3Final > 0;
  m_bFaixas = m_bMoedas || Filtro.iAnoInicial != 0 || Filtro.iAnoFinal != 0 || Filtro.iPonteiroCliente != 0;
  CompilaTextos();
  CompilaResumo();
  m_bTextosOuMascaras = m_uiTextos > 0 || Filtro.iTipoCarroceria != 0 || Filtro.iTipoRodado != 0 ||
                        Filtro.iTipoVeiculo != 0 || Filtro.iTipoTransporte != 0;
}

/// Keeps the text criteria up to the first pattern, which decides alone.
void CFiltroVeiculos::CompilaTextos() {
  struct Campo {
    const char *lpTexto;
    std::size_t uiDeslocamento;
    std::size_t uiLargura;
  };
  const Campo campos[] = {
      {m_Filtro.szDescricao, offsetof(RegVeiculo, szDescricao), sizeof(m_Filtro.szDescricao)},
      {m_Filtro.szCodigoANTT, offsetof(RegVeiculo, szCodigoANTT), sizeof(m_Filtro.szCodigoANTT)},
      {m_Filtro.szCodigo, offsetof(RegVeiculo, szCodigo), sizeof(m_Filtro.szCodigo)},
      {m_Filtro.szRENAVAM, offsetof(RegVeiculo, szRENAVAM), sizeof(m_Filtro.szRENAVAM)},
      {m_Filtro.szPlaca, offsetof(RegVeiculo, szPlaca), sizeof(m_Filtro.szPlaca)},
  };
  for (const Campo &campo : campos) {
    if (AcrescentaTexto(campo.lpTexto, campo.uiDeslocamento, campo.uiLargura)) {
      const CriterioTexto &criterio = m_textos[m_uiTextos - 1];
      const char *const fim = criterio.texto.data() + criterio.uiTamanho;
      m_bCuringa = std::find_if(criterio.texto.data(), fim, [](char c) { return c == '*' || c == '?'; }) != fim;
      if (m_bCuringa) {
        m_bPadrao = m_padrao.Define({criterio.texto.data(), criterio.uiTamanho});
        return;
      }
    }
  }
  AcrescentaTexto(m_Filtro.szUF, offsetof(RegVeiculo, szUF), sizeof(m_Filtro.szUF));
}

/// What a text criterion does not name, and a pattern that the system matches, the digest says nothing of.
void CFiltroVeiculos::CompilaResumo() {
  m_resumo.iAnoInicial = m_iAnoInicial;
  m_resumo.iAnoFinal = m_iAnoFinal;
  for (std::size_t i = 0; i < m_uiTextos; ++i) {
    const CriterioTexto &criterio = m_textos[i];
    const std::string_view sTexto(criterio.texto.data(), criterio.uiTamanho);
    if (criterio.uiDeslocamento == offsetof(RegVeiculo, szUF)) {
      m_resumo.bUF = true;
      m_resumo.uiUF = CResumosVeiculos::ResumoDaUF(sTexto);
    } else if (criterio.uiDeslocamento == offsetof(RegVeiculo, szDescricao)) {
      CAssinaturaTexto::Prepara();
      if (!m_bCuringa || i + 1 < m_uiTextos) {
        m_resumo.uiMascaraAssinatura = ~std::uint64_t{0};
        m_resumo.uiAssinatura = CAssinaturaTexto::DoCampo(sTexto.data(), sTexto.size());
      } else if (m_bPadrao) {
        m_resumo.uiMascaraAssinatura = m_resumo.uiAssinatura = CAssinaturaTexto::DoPadrao(sTexto);
      }
    }
  }
}

/// Adds a text criterion; an empty text is none and gives false.
bool CFiltroVeiculos::AcrescentaTexto(const char *lpTexto, std::size_t uiDeslocamento, std::size_t uiLargura) {
  const std::size_t uiTamanho = TamanhoTexto(lpTexto, uiLargura);
  if (uiTamanho == 0) {
    return false;
  }
  CriterioTexto &criterio = m_textos[m_uiTextos++];
  criterio.uiDeslocamento = uiDeslocamento;
  criterio.uiLargura = uiLargura;
  criterio.uiTamanho = uiTamanho;
  std::copy(lpTexto, lpTexto + uiTamanho, criterio.texto.begin());
  criterio.texto[uiTamanho] = '\0';
  return true;
}

/// The fields of a record that criteria look at most; the others are fetched with these.
void CFiltroVeiculos::Antecipa(const RegVeiculo &reg) {
  __builtin_prefetch(&reg);
  __builtin_prefetch(&reg.iAno);
  __builtin_prefetch(&reg.vCapacidadeM3);
}

std::optional<CFiltroVeiculos::Chave> CFiltroVeiculos::ChaveExata() const {
  const std::size_t uiExatos = m_bCuringa ? m_uiTextos - 1 : m_uiTextos;
  for (std::size_t i = 0; i < uiExatos; ++i) {
    for (std::size_t uiCampo = 0; uiCampo < CamposIndexados<RegVeiculo>::kCampos.size(); ++uiCampo) {
      if (CamposIndexados<RegVeiculo>::kCampos[uiCampo].uiDeslocamento == m_textos[i].uiDeslocamento) {
        return Chave{uiCampo, {m_textos[i].texto.data(), m_textos[i].uiTamanho}};
      }
    }
  }
  return std::nullopt;
}

bool CFiltroVeiculos::AtendeTextosEMascaras(const RegVeiculo &reg) const {
  const char *lpRegistro = reinterpret_cast<const char *>(&reg);
  for (std::size_t i = 0; i < m_uiTextos; ++i) {
    const char *lpCampo = lpRegistro + m_textos[i].uiDeslocamento;
    if (m_bCuringa && i + 1 == m_uiTextos) {
      return Casa(m_textos[i], lpCampo);
    }
    if (!Igual(m_textos[i], lpCampo)) {
      return false;
    }
  }
  return AtendeMascaras(reg);
}

/// Body types count from 0 and wheel-set types from 1, and so do their bits.
bool CFiltroVeiculos::AtendeMascaras(const RegVeiculo &reg) const {
  return AtendeMascaraFaixa(reg.iTipoCarroceria, m_Filtro.iTipoCarroceria, 0, 5) &&
         AtendeMascaraFaixa(reg.iTipoRodado, m_Filtro.iTipoRodado, 1, 6) &&
         AtendeMascaraTipo(reg.iTipoVeiculo, m_Filtro.iTipoVeiculo) &&
         AtendeMascaraTipo(reg.iTipoTransporte, m_Filtro.iTipoTransporte);
}

bool CFiltroVeiculos::Igual(const CriterioTexto &criterio, const char *lpCampo) {
  return std::memcmp(lpCampo, criterio.texto.data(), criterio.uiTamanho) == 0 &&
         (criterio.uiTamanho == criterio.uiLargura || lpCampo[criterio.uiTamanho] == '\0');
}

bool CFiltroVeiculos::Casa(const CriterioTexto &criterio, const char *lpCampo) const {
  if (m_bPadrao) {
    return m_padrao.Casa(lpCampo, criterio.uiLargura);
  }
  const std::size_t uiCampo = TamanhoTexto(lpCampo, criterio.uiLargura);
  std::array<char, kMaiorTexto + 1> campo{};
  std::copy_n(lpCampo, uiCampo, campo.begin());
  return plataforma::CasaCuringa(campo.data(), criterio.texto.data());
}
