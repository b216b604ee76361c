/*
 * The vehicle service from C: appends a vehicle, finds those of its state, prints them.
 *
 *   gcc -I ..\include cliente.c ..\include\QZDF_Veiculos_i.c -lole32
 */

#define COBJMACROS
#include <windows.h>

#include <objbase.h>
#include <stdio.h>
#include <string.h>

#include "QZDF_Veiculos.h"

#define MOEDA(unidades) ((int64_t)(unidades)*10000) /* currency fields count ten-thousandths */

/*
 * A text for lpEmpresa or lpCodigo: 8-bit, behind it two zero bytes at an even offset, aligned for wide characters.
 * Gives 0 for a text that is too long.
 */
typedef struct {
  WCHAR unidades[32];
} TextoParametro;

static LPWSTR parametro(TextoParametro *destino, const char *texto) {
  const size_t tamanho = strlen(texto);
  if (tamanho + 2 >= sizeof destino->unidades) {
    return NULL;
  }
  memset(destino, 0, sizeof *destino);
  memcpy(destino->unidades, texto, tamanho);
  return destino->unidades;
}

/* Fills a fixed field: no terminator when the text is as long as the field. Gives 0 for a text that does not fit. */
static int preenche(char *campo, size_t largura, const char *texto) {
  const size_t tamanho = strlen(texto);
  if (tamanho > largura) {
    return 0;
  }
  memset(campo, 0, largura);
  memcpy(campo, texto, tamanho);
  return 1;
}
#define PREENCHE(campo, texto) preenche(campo, sizeof(campo), texto)

static HRESULT trabalha(IQZDF_Veiculos *veiculos, const char *empresa) {
  TextoParametro texto;
  LPWSTR lpEmpresa = parametro(&texto, empresa);
  tagREG_VEICULOPS veiculo = {0};
  tagREG_FILTRO_VEICULOSPS filtro = {0}; /* all zero: every vehicle */
  tagRESULTADO_BUSCA_VEICULOS resultado = {0};
  LONG posicao = 0; /* 0 appends */
  unsigned i;
  HRESULT hr = lpEmpresa != NULL ? IQZDF_Veiculos_Inicializa(veiculos, lpEmpresa, 1, 1) : E_INVALIDARG;
  if (FAILED(hr)) {
    return hr;
  }

  if (!PREENCHE(veiculo.szCodigo, "CAV00002") || !PREENCHE(veiculo.szPlaca, "DEF2G34") ||
      !PREENCHE(veiculo.szUF, "PR") || !PREENCHE(veiculo.szDescricao, "Cavalo mec\342nico")) { /* Windows-1252 */
    return E_INVALIDARG;
  }
  veiculo.iAno = 2019;
  veiculo.iTipoRodado = 3;
  veiculo.vTara = MOEDA(7900);
  hr = IQZDF_Veiculos_Grava(veiculos, &posicao, veiculo);
  if (FAILED(hr)) {
    return hr;
  }
  printf("gravado na posicao %ld\n", (long)posicao);

  PREENCHE(filtro.szUF, "PR");
  hr = IQZDF_Veiculos_BuscaPonteiros(veiculos, filtro, &resultado);
  for (i = 0; SUCCEEDED(hr) && i < resultado.iQtd; ++i) {
    hr = IQZDF_Veiculos_Le(veiculos, resultado.Ponteiros[i], &veiculo);
    if (SUCCEEDED(hr)) {
      /* The precision, for a field that is full has no terminator. */
      printf("%.*s %ld kg\n", (int)sizeof veiculo.szPlaca, veiculo.szPlaca, (long)(veiculo.vTara / MOEDA(1)));
    }
  }
  CoTaskMemFree(resultado.Ponteiros); /* the client's, whatever the result code says */
  return hr;
}

int main(int argc, char **argv) {
  IQZDF_Veiculos *veiculos = NULL;
  HRESULT hr = CoInitializeEx(NULL, COINIT_MULTITHREADED);
  if (SUCCEEDED(hr)) {
    hr = CoCreateInstance(&CLSID_CQZDF_Veiculos, NULL, CLSCTX_LOCAL_SERVER, &IID_IQZDF_Veiculos, (void **)&veiculos);
    if (SUCCEEDED(hr)) {
      hr = trabalha(veiculos, argc > 1 ? argv[1] : "0001");
      IQZDF_Veiculos_Release(veiculos);
    }
    CoUninitialize();
  }
  if (FAILED(hr)) {
    fprintf(stderr, "0x%08lX\n", (unsigned long)hr);
    return 1;
  }
  return 0;
}
