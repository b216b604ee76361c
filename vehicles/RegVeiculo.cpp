#include "vehicles/RegVeiculo.h"

#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstring>

namespace {

constexpr std::size_t kPasso = sizeof(__m128i);

/// Ones, then as many zeros: what begins n bytes before the zeros keeps the first n bytes of a text and clears others.
constexpr std::size_t kMaior = 64;
constexpr auto kMascaras = [] {
  std::array<unsigned char, 2 * kMaior> mascaras{};
  for (std::size_t i = 0; i < kMaior; ++i) {
    mascaras[i] = 0xFF;
  }
  return mascaras;
}();

__m128i Le16(const unsigned char *p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

/// Where a text of `uiLargura` bytes lies in the two records.
struct LugarTexto {
  std::size_t uiNaInterface;
  std::size_t uiNoRegistro;
  std::size_t uiLargura;
};

constexpr LugarTexto kCodigo = {offsetof(tagREG_VEICULOPS, szCodigo), offsetof(RegVeiculo, szCodigo),
                                sizeof(RegVeiculo::szCodigo)};
constexpr LugarTexto kPlaca = {offsetof(tagREG_VEICULOPS, szPlaca), offsetof(RegVeiculo, szPlaca),
                               sizeof(RegVeiculo::szPlaca)};
constexpr LugarTexto kUF = {offsetof(tagREG_VEICULOPS, szUF), offsetof(RegVeiculo, szUF), sizeof(RegVeiculo::szUF)};
constexpr LugarTexto kDescricao = {offsetof(tagREG_VEICULOPS, szDescricao), offsetof(RegVeiculo, szDescricao),
                                   sizeof(RegVeiculo::szDescricao)};
constexpr LugarTexto kCodigoANTT = {offsetof(tagREG_VEICULOPS, szCodigoANTT), offsetof(RegVeiculo, szCodigoANTT),
                                    sizeof(RegVeiculo::szCodigoANTT)};
constexpr LugarTexto kRENAVAM = {offsetof(tagREG_VEICULOPS, szRENAVAM), offsetof(RegVeiculo, szRENAVAM),
                                 sizeof(RegVeiculo::szRENAVAM)};

/// Copies a text up to its terminator and fills the field with zeros, in steps of 16 bytes: what follows the field in
/// the destination, up to the end of the last step, is zero too.
template <std::size_t kLargura>
void CopiaTexto(const unsigned char *pOrigem, unsigned char *pDestino) {
  constexpr std::size_t kPassos = (kLargura + kPasso - 1) / kPasso;
  static_assert(kLargura < kMaior);
  __m128i bytes[kPassos];
  std::uint64_t uiZeros = std::uint64_t{1} << kLargura;
  for (std::size_t i = 0; i < kPassos; ++i) {
    bytes[i] = Le16(pOrigem + i * kPasso);
    const auto uiParte = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes[i], _mm_setzero_si128())));
    uiZeros |= std::uint64_t{uiParte} << (i * kPasso);
  }
  const unsigned char *const pMascara = kMascaras.data() + kMaior - std::countr_zero(uiZeros);
  for (std::size_t i = 0; i < kPassos; ++i) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pDestino + i * kPasso),
                     _mm_and_si128(bytes[i], Le16(pMascara + i * kPasso)));
  }
}

/// No step leaves either record.
constexpr bool Cabe(const LugarTexto &lugar) {
  const std::size_t uiPassos = (lugar.uiLargura + kPasso - 1) / kPasso;
  return lugar.uiNaInterface + uiPassos * kPasso <= sizeof(tagREG_VEICULOPS) &&
         lugar.uiNoRegistro + uiPassos * kPasso <= sizeof(RegVeiculo);
}
static_assert(Cabe(kCodigo) && Cabe(kPlaca) && Cabe(kUF) && Cabe(kDescricao) && Cabe(kCodigoANTT) && Cabe(kRENAVAM));

template <LugarTexto kLugar>
void TextoParaRegistro(const tagREG_VEICULOPS &origem, RegVeiculo *pDestino) {
  CopiaTexto<kLugar.uiLargura>(reinterpret_cast<const unsigned char *>(&origem) + kLugar.uiNaInterface,
                               reinterpret_cast<unsigned char *>(pDestino) + kLugar.uiNoRegistro);
}

template <LugarTexto kLugar>
void TextoParaInterface(const RegVeiculo &origem, tagREG_VEICULOPS *pDestino) {
  CopiaTexto<kLugar.uiLargura>(reinterpret_cast<const unsigned char *>(&origem) + kLugar.uiNoRegistro,
                               reinterpret_cast<unsigned char *>(pDestino) + kLugar.uiNaInterface);
}

template <typename TOrigem, typename TDestino>
void CopiaNumeros(const TOrigem &origem, TDestino *pDestino) {
  pDestino->iAno = origem.iAno;
  pDestino->iTipoCarroceria = origem.iTipoCarroceria;
  pDestino->iTipoRodado = origem.iTipoRodado;
  pDestino->iTipoVeiculo = origem.iTipoVeiculo;
  pDestino->iTipoTransporte = origem.iTipoTransporte;
  pDestino->vTara = origem.vTara;
  pDestino->vCapacidadeKg = origem.vCapacidadeKg;
  pDestino->vCapacidadeM3 = origem.vCapacidadeM3;
  pDestino->iPonteiroCliente = origem.iPonteiroCliente;
}

}  // namespace

// Texts first, in the order in which they lie in the destination: each may clear the beginning of what follows it.

void CopiaParaRegistro(const tagREG_VEICULOPS &origem, RegVeiculo *pDestino) {
  TextoParaRegistro<kCodigo>(origem, pDestino);
  TextoParaRegistro<kPlaca>(origem, pDestino);
  TextoParaRegistro<kUF>(origem, pDestino);
  TextoParaRegistro<kDescricao>(origem, pDestino);
  TextoParaRegistro<kCodigoANTT>(origem, pDestino);
  TextoParaRegistro<kRENAVAM>(origem, pDestino);
  CopiaNumeros(origem, pDestino);
  std::memset(pDestino->cReservado, 0, sizeof(pDestino->cReservado));
}

void CopiaParaInterface(const RegVeiculo &origem, tagREG_VEICULOPS *pDestino) {
  TextoParaInterface<kDescricao>(origem, pDestino);
  TextoParaInterface<kCodigoANTT>(origem, pDestino);
  TextoParaInterface<kCodigo>(origem, pDestino);
  TextoParaInterface<kRENAVAM>(origem, pDestino);
  TextoParaInterface<kPlaca>(origem, pDestino);
  TextoParaInterface<kUF>(origem, pDestino);
  CopiaNumeros(origem, pDestino);
  pDestino->iFiller = 0;
  pDestino->lPosicao = 0;
  std::memset(pDestino->cFiller, 0, sizeof(pDestino->cFiller));
}
