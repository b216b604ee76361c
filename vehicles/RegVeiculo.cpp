#include "vehicles/RegVeiculo.h"

#include <cstring>

namespace {

/// Copies up to the terminator or the field's width; the rest of the field is zero.
template <std::size_t N>
void CopiaTexto(const char (&origem)[N], char (&destino)[N]) {
  std::memcpy(destino, origem, N);
  if (void *fim = std::memchr(destino, '\0', N)) {
    std::memset(fim, 0, static_cast<std::size_t>(destino + N - static_cast<char *>(fim)));
  }
}

template <typename TOrigem, typename TDestino>
void CopiaCampos(const TOrigem &origem, TDestino *pDestino) {
  *pDestino = TDestino{};
  CopiaTexto(origem.szCodigo, pDestino->szCodigo);
  CopiaTexto(origem.szPlaca, pDestino->szPlaca);
  CopiaTexto(origem.szUF, pDestino->szUF);
  CopiaTexto(origem.szDescricao, pDestino->szDescricao);
  CopiaTexto(origem.szCodigoANTT, pDestino->szCodigoANTT);
  CopiaTexto(origem.szRENAVAM, pDestino->szRENAVAM);
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

void CopiaParaRegistro(const tagREG_VEICULOPS &origem, RegVeiculo *pDestino) {
  CopiaCampos(origem, pDestino);
}

void CopiaParaInterface(const RegVeiculo &origem, tagREG_VEICULOPS *pDestino) {
  CopiaCampos(origem, pDestino);
}
