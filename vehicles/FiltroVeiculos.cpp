#include "vehicles/FiltroVeiculos.h"

#include <algorithm>
#include <cstring>

#include "core/platform/Textos.h"

namespace {

std::size_t TamanhoTexto(const char *lpCampo, std::size_t uiLargura) {
  const void *fim = std::memchr(lpCampo, '\0', uiLargura);
  return fim == nullptr ? uiLargura : static_cast<std::size_t>(static_cast<const char *>(fim) - lpCampo);
}

bool ForaDaFaixa(std::int64_t v, std::int64_t vInicial, std::int64_t vFinal) {
  return (vInicial > 0 && v < vInicial) || (vFinal > 0 && v > vFinal);
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

char Maiuscula7Bits(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool EhLetraOuDigito(char c) {
  const char m = Maiuscula7Bits(c);
  return (m >= 'A' && m <= 'Z') || (m >= '0' && m <= '9');
}

}  // namespace

bool EhPadraoSimples(const char *lpPadrao, std::size_t uiPadrao) {
  return uiPadrao > 0 && lpPadrao[0] != ' ' && std::all_of(lpPadrao, lpPadrao + uiPadrao, [](char c) {
           return EhLetraOuDigito(c) || c == ' ' || c == '*' || c == '?';
         });
}

bool CasaPadraoSimples(const char *lpTexto, std::size_t uiTexto, const char *lpPadrao, std::size_t uiPadrao) {
  std::size_t t = 0;
  std::size_t p = 0;
  std::size_t pEstrela = uiPadrao;  // behind the last '*' met, uiPadrao while none
  std::size_t tEstrela = 0;         // where the text that this '*' stands for ends
  bool bEstrela = false;
  while (t < uiTexto) {
    if (p < uiPadrao && lpPadrao[p] == '*') {
      bEstrela = true;
      pEstrela = ++p;
      tEstrela = t;
    } else if (p < uiPadrao && (lpPadrao[p] == '?' || Maiuscula7Bits(lpPadrao[p]) == Maiuscula7Bits(lpTexto[t]))) {
      ++p;
      ++t;
    } else if (bEstrela) {
      p = pEstrela;
      t = ++tEstrela;
    } else {
      return false;
    }
  }
  while (p < uiPadrao && lpPadrao[p] == '*') {
    ++p;
  }
  return p == uiPadrao;
}

CFiltroVeiculos::CFiltroVeiculos(const tagREG_FILTRO_VEICULOSPS &Filtro) : m_Filtro(Filtro) {
  struct Campo {
    const char *lpTexto;
    std::size_t uiDeslocamento;
    std::size_t uiLargura;
  };
  const Campo campos[] = {
      {Filtro.szDescricao, offsetof(RegVeiculo, szDescricao), sizeof(Filtro.szDescricao)},
      {Filtro.szCodigoANTT, offsetof(RegVeiculo, szCodigoANTT), sizeof(Filtro.szCodigoANTT)},
      {Filtro.szCodigo, offsetof(RegVeiculo, szCodigo), sizeof(Filtro.szCodigo)},
      {Filtro.szRENAVAM, offsetof(RegVeiculo, szRENAVAM), sizeof(Filtro.szRENAVAM)},
      {Filtro.szPlaca, offsetof(RegVeiculo, szPlaca), sizeof(Filtro.szPlaca)},
  };
  for (const Campo &campo : campos) {
    if (AcrescentaTexto(campo.lpTexto, campo.uiDeslocamento, campo.uiLargura)) {
      const CriterioTexto &criterio = m_textos[m_uiTextos - 1];
      m_bCuringa = std::find_if(criterio.texto.begin(), criterio.texto.end(),
                                [](char c) { return c == '*' || c == '?'; }) != criterio.texto.end();
      if (m_bCuringa) {
        return;
      }
    }
  }
  AcrescentaTexto(Filtro.szUF, offsetof(RegVeiculo, szUF), sizeof(Filtro.szUF));
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
  criterio.bPadraoSimples = EhPadraoSimples(lpTexto, uiTamanho);
  return true;
}

bool CFiltroVeiculos::Atende(const RegVeiculo &reg) const {
  if (!AtendeFaixas(reg)) {
    return false;
  }
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

bool CFiltroVeiculos::AtendeFaixas(const RegVeiculo &reg) const {
  const tagREG_FILTRO_VEICULOSPS &f = m_Filtro;
  if (ForaDaFaixa(reg.vTara, f.vTaraInicial, f.vTaraFinal) ||
      ForaDaFaixa(reg.vCapacidadeKg, f.vCapacidadeKgInicial, f.vCapacidadeKgFinal) ||
      ForaDaFaixa(reg.vCapacidadeM3, f.vCapacidadeM3Inicial, f.vCapacidadeM3Final)) {
    return false;
  }
  if ((f.iAnoInicial != 0 && reg.iAno < f.iAnoInicial) || (f.iAnoFinal != 0 && reg.iAno > f.iAnoFinal)) {
    return false;
  }
  return f.iPonteiroCliente == 0 || reg.iPonteiroCliente == f.iPonteiroCliente;
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

bool CFiltroVeiculos::Casa(const CriterioTexto &criterio, const char *lpCampo) {
  const std::size_t uiCampo = TamanhoTexto(lpCampo, criterio.uiLargura);
  const bool bCampo7Bits = std::all_of(lpCampo, lpCampo + uiCampo, [](char c) { return (c & '\x80') == 0; });
  if (criterio.bPadraoSimples && bCampo7Bits) {
    return CasaPadraoSimples(lpCampo, uiCampo, criterio.texto.data(), criterio.uiTamanho);
  }
  std::array<char, kMaiorTexto + 1> campo{};
  std::copy(lpCampo, lpCampo + uiCampo, campo.begin());
  return plataforma::CasaCuringa(campo.data(), criterio.texto.data());
}
