#ifndef KALVO_VEHICLES_REGVEICULOPS_H
#define KALVO_VEHICLES_REGVEICULOPS_H

/*
 * The records that cross the interface IQZDF_Veiculos, as client programs see them.
 *
 * This header is plain C so that the proxy/stub, the server, C++ clients and the platform-neutral layers
 * share one definition; RegVeiculoPS.idl beside it describes the same records to the type library.
 *
 * Texts are 8-bit (Windows-1252), zero-terminated when shorter than their field and not terminated when they
 * fill it. Currency fields are signed 64-bit counts of ten-thousandths (the type library calls them CURRENCY).
 */

/* NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using): C */
#include <stddef.h>
#include <stdint.h>

/* One vehicle. iFiller, lPosicao and cFiller are ignored on writing and zero on reading. */
typedef struct tagREG_VEICULOPS {
  int64_t vTara;             /* tare, kg */
  int64_t vCapacidadeKg;     /* capacity, kg */
  int64_t vCapacidadeM3;     /* capacity, cubic metres */
  uint32_t iAno;             /* year */
  uint16_t iPonteiroCliente; /* position of the owner in the customer register */
  char szDescricao[51];
  char szCodigoANTT[21];
  char szCodigo[13];
  char szRENAVAM[12];
  char szPlaca[9];
  char szUF[3];
  uint8_t iTipoCarroceria;
  uint8_t iTipoRodado;
  uint8_t iTipoVeiculo;
  uint8_t iTipoTransporte;
  uint8_t iFiller;
  int32_t lPosicao;
  uint8_t cFiller[20];
} tagREG_VEICULOPS;

/* Search filter: ranges (0 or less = no bound), texts or '*' and '?' patterns, exact UF, bit masks (0 = any). */
typedef struct tagREG_FILTRO_VEICULOSPS {
  int64_t vTaraInicial;
  int64_t vTaraFinal;
  int64_t vCapacidadeKgInicial;
  int64_t vCapacidadeKgFinal;
  int64_t vCapacidadeM3Inicial;
  int64_t vCapacidadeM3Final;
  uint32_t iAnoInicial;
  uint32_t iAnoFinal;
  uint16_t iPonteiroCliente;
  char szDescricao[51];
  char szCodigoANTT[21];
  char szCodigo[13];
  char szRENAVAM[12];
  char szPlaca[9];
  char szUF[3];
  uint8_t iTipoCarroceria; /* bit v accepts body type v, 0 to 5 */
  uint8_t iTipoRodado;     /* bit v-1 accepts wheel-set type v, 1 to 6 */
  uint8_t iTipoVeiculo;    /* bit 0 accepts kind 0, bit 1 any other */
  uint8_t iTipoTransporte; /* bit 0 accepts kind 0, bit 1 any other */
  uint8_t iFiller[5];
  int32_t lPosicao;
  uint8_t cFiller[20];
} tagREG_FILTRO_VEICULOSPS;

/* Search result. Ponteiros holds iQtd record positions, ascending; the client frees it with CoTaskMemFree. The one
   record whose size depends on that of a pointer: 24 bytes in 64-bit programs, 16 in 32-bit ones. */
typedef struct tagRESULTADO_BUSCA_VEICULOS {
  uint32_t iQtd;
  uint8_t cFiller[4];
#ifdef _WIN32
  long *Ponteiros; /* 32 bits wide on Windows */
#else
  int32_t *Ponteiros;
#endif
  uint8_t *pFiller; /* always null */
} tagRESULTADO_BUSCA_VEICULOS;

/* NOLINTEND(modernize-deprecated-headers,modernize-use-using) */

#ifdef __cplusplus
static_assert(sizeof(tagREG_VEICULOPS) == 168, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, iAno) == 24, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, iPonteiroCliente) == 28, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szDescricao) == 30, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szCodigoANTT) == 81, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szCodigo) == 102, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szRENAVAM) == 115, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szPlaca) == 127, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, szUF) == 136, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, iTipoCarroceria) == 139, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, iTipoTransporte) == 142, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, lPosicao) == 144, "interface record");
static_assert(offsetof(tagREG_VEICULOPS, cFiller) == 148, "interface record");

static_assert(sizeof(tagREG_FILTRO_VEICULOSPS) == 200, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, iAnoInicial) == 48, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, iPonteiroCliente) == 56, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szDescricao) == 58, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szCodigoANTT) == 109, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szCodigo) == 130, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szRENAVAM) == 143, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szPlaca) == 155, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, szUF) == 164, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, iTipoCarroceria) == 167, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, iFiller) == 171, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, lPosicao) == 176, "filter record");
static_assert(offsetof(tagREG_FILTRO_VEICULOSPS, cFiller) == 180, "filter record");

static_assert(sizeof(tagRESULTADO_BUSCA_VEICULOS) == 8 + 2 * sizeof(void *), "search result");
static_assert(offsetof(tagRESULTADO_BUSCA_VEICULOS, Ponteiros) == 8, "search result");
static_assert(offsetof(tagRESULTADO_BUSCA_VEICULOS, pFiller) == 8 + sizeof(void *), "search result");
#endif

#endif
