#include "core/qzdatabase/arquivo/QZIndiceHash.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint64_t kFator = 0x9E3779B97F4A7C15ULL;

/// Up to eight bytes of a field from `i` on, zeros behind its end.
std::uint64_t Palavra(const char *lpCampo, std::size_t uiLargura, std::size_t i) {
  std::uint64_t uiPalavra = 0;
  const std::size_t uiRestam = uiLargura - i;
  if (uiRestam >= sizeof(uiPalavra)) {
    std::memcpy(&uiPalavra, lpCampo + i, sizeof(uiPalavra));
    return uiPalavra;
  }
  if (uiLargura < sizeof(uiPalavra)) {
    std::memcpy(&uiPalavra, lpCampo, uiLargura);
    return uiPalavra;
  }
  // Copies of a fixed length only: the last eight, without those that were taken before.
  std::memcpy(&uiPalavra, lpCampo + uiLargura - sizeof(uiPalavra), sizeof(uiPalavra));
  return uiPalavra >> (8 * (sizeof(uiPalavra) - uiRestam));
}

/// The bytes of a word in front of its first zero byte; the others are zero. `*pbAcabou` tells whether there is one.
std::uint64_t AteOZero(std::uint64_t uiPalavra, bool *pbAcabou) {
  constexpr std::uint64_t kUns = 0x0101010101010101ULL;
  const std::uint64_t uiZeros = (uiPalavra - kUns) & ~uiPalavra & (kUns << 7);
  *pbAcabou = uiZeros != 0;
  return uiZeros == 0 ? uiPalavra : uiPalavra & (((uiZeros & (0 - uiZeros)) >> 7) - 1);
}

}  // namespace

std::uint64_t CQZIndiceHash::Hash(const char *lpCampo, std::size_t uiLargura) {
  std::uint64_t uiHash = kFator;
  bool bAcabou = false;
  for (std::size_t i = 0; i < uiLargura && !bAcabou; i += sizeof(std::uint64_t)) {
    uiHash = (uiHash ^ AteOZero(Palavra(lpCampo, uiLargura, i), &bAcabou)) * kFator;
    uiHash ^= uiHash >> 32;
  }
  return (uiHash * kFator) >> 24;
}

/// Where the search for a hash begins.
std::uint32_t CQZIndiceHash::Parte::Lar(std::uint32_t uiHash) const {
  return static_cast<std::uint32_t>((std::uint64_t{uiHash} * uiCapacidade) >> 32);
}

/// The entry of a hash, or the free one where it belongs.
CQZIndiceHash::Entrada *CQZIndiceHash::Parte::Lugar(std::uint32_t uiHash) const {
  std::uint32_t i = Lar(uiHash);
  while (entradas[i].uiPosicao != 0 && entradas[i].uiHash != uiHash) {
    i = Depois(i);
  }
  return &entradas[i];
}

/// A larger table is filled beside the old one and takes its place.
void CQZIndiceHash::Parte::Cresce(std::size_t uiMinimo) {
  Parte maior;
  maior.uiCapacidade = static_cast<std::uint32_t>(std::max<std::size_t>(uiMinimo, uiCapacidade + uiCapacidade / 2 + 4));
  maior.entradas = std::make_unique<Entrada[]>(maior.uiCapacidade);
  maior.uiUsadas = uiUsadas;
  for (std::uint32_t i = 0; i < uiCapacidade; ++i) {
    if (entradas[i].uiPosicao != 0) {
      *maior.Lugar(entradas[i].uiHash) = entradas[i];
    }
  }
  *this = std::move(maior);
}

/// Entries behind that a search would not reach any more move up, so that no trace of the removed one is needed.
void CQZIndiceHash::Parte::Apaga(Entrada *pEntrada) {
  auto livre = static_cast<std::uint32_t>(pEntrada - entradas.get());
  for (std::uint32_t i = Depois(livre); entradas[i].uiPosicao != 0; i = Depois(i)) {
    if (Distancia(Lar(entradas[i].uiHash), i) >= Distancia(livre, i)) {
      entradas[livre] = entradas[i];
      livre = i;
    }
  }
  entradas[livre] = Entrada{};
  --uiUsadas;
}

CQZIndiceHash::Entrada *CQZIndiceHash::Procura(std::uint64_t uiHash) const {
  if (m_partes.empty() || m_partes[ParteDe(uiHash)].uiUsadas == 0) {
    return nullptr;
  }
  Entrada *const pEntrada = m_partes[ParteDe(uiHash)].Lugar(static_cast<std::uint32_t>(uiHash));
  return pEntrada->uiPosicao != 0 ? pEntrada : nullptr;
}

CQZIndiceHash::Achado CQZIndiceHash::Acha(std::uint64_t uiHash) const {
  const Entrada *const pEntrada = Procura(uiHash);
  return pEntrada == nullptr ? Achado{0, false} : Achado{pEntrada->uiPosicao, pEntrada->bOutros != 0};
}

void CQZIndiceHash::Reserva(std::uint64_t uiHash, std::size_t uiQuantos) {
  if (m_partes.empty()) {
    m_partes.resize(kPartes);
  }
  Parte &parte = m_partes[ParteDe(uiHash)];
  // One stays free in any case: a search ends there.
  const std::size_t uiMinimo = (parte.uiUsadas + uiQuantos) * 5 / 4 + 1;
  if (uiMinimo > parte.uiCapacidade) {
    parte.Cresce(uiMinimo);
  }
}

void CQZIndiceHash::Acrescenta(std::uint64_t uiHash, std::uint64_t uiPosicao) {
  Parte &parte = m_partes[ParteDe(uiHash)];
  Entrada &entrada = *parte.Lugar(static_cast<std::uint32_t>(uiHash));
  const auto uiNova = static_cast<std::uint32_t>(uiPosicao);
  if (entrada.uiPosicao == 0) {
    entrada = {static_cast<std::uint32_t>(uiHash), uiNova & kMaiorPosicao, 0};
    ++parte.uiUsadas;
  } else if (entrada.uiPosicao != uiNova) {
    entrada.uiPosicao = std::min<std::uint32_t>(entrada.uiPosicao, uiNova) & kMaiorPosicao;
    entrada.bOutros = 1;
  }
}

void CQZIndiceHash::Retira(std::uint64_t uiHash, std::uint64_t uiPosicao) {
  Entrada *const pEntrada = Procura(uiHash);
  if (pEntrada == nullptr || pEntrada->uiPosicao != uiPosicao) {
    return;
  }
  if (pEntrada->bOutros != 0) {
    Avanca(uiHash, uiPosicao + 1);
  } else {
    m_partes[ParteDe(uiHash)].Apaga(pEntrada);
  }
}

void CQZIndiceHash::Avanca(std::uint64_t uiHash, std::uint64_t uiPosicao) {
  Procura(uiHash)->uiPosicao = static_cast<std::uint32_t>(uiPosicao) & kMaiorPosicao;
}

void CQZIndiceHash::Apaga(std::uint64_t uiHash) {
  if (Entrada *const pEntrada = Procura(uiHash)) {
    m_partes[ParteDe(uiHash)].Apaga(pEntrada);
  }
}
