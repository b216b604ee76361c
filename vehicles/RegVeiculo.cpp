#include "vehicles/RegVeiculo.h"

#include <algorithm>

namespace {

/// Copies up to the terminator or the field's width; the destination is zero already.
template <std::size_t N>
void CopiaTexto(const char (&origem)[N], char (&destino)[N]) {
  std::copy(origem, std::find(origem, origem + N, '\0'), destino);
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
