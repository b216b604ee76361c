#ifndef KALVO_CORE_QZDATABASE_DISCO_CABECALHOARQUIVO_H
#define KALVO_CORE_QZDATABASE_DISCO_CABECALHOARQUIVO_H

#include <cstddef>
#include <cstdint>

#include "core/platform/Tipos.h"

// The 92 bytes in front of the records of a data file, where headers are on: a version record and a header record. All
// integers are little-endian; padding is zero.

#pragma pack(push, 1)

struct RegVersaoArquivo {
  std::uint16_t iVersao;
  std::uint8_t cReservado[6];
  std::uint64_t uiCrcVersao;     ///< of the two bytes of iVersao
  std::uint64_t uiCrcCrcVersao;  ///< of the eight bytes of uiCrcVersao
};

struct RegCabecalhoArquivo {
  std::uint32_t uiCodigoInstalacao;
  std::uint8_t cReservado1[2];
  char szNome[40];  ///< without a final zero when the name has 40 characters or more
  std::uint8_t cReservado2[6];
  std::uint64_t uiCrcDados;      ///< of everything behind the header
  std::uint64_t uiCrcCabecalho;  ///< of the 60 bytes before this field
};

#pragma pack(pop)

inline constexpr std::size_t kPosicaoRegCabecalho = sizeof(RegVersaoArquivo);
inline constexpr std::size_t kTamanhoCabecalho = sizeof(RegVersaoArquivo) + sizeof(RegCabecalhoArquivo);
static_assert(sizeof(RegVersaoArquivo) == 24 && offsetof(RegVersaoArquivo, uiCrcVersao) == 8);
static_assert(sizeof(RegCabecalhoArquivo) == 68 && kTamanhoCabecalho == 92);
static_assert(offsetof(RegCabecalhoArquivo, szNome) == 6 && offsetof(RegCabecalhoArquivo, uiCrcDados) == 52 &&
              offsetof(RegCabecalhoArquivo, uiCrcCabecalho) == 60);

/// The version that this program writes.
inline constexpr std::uint16_t kVersaoCabecalho = 1;

/// A complete version record.
RegVersaoArquivo MontaRegVersao();
/// A complete header record.
RegCabecalhoArquivo MontaRegCabecalho(std::uint32_t uiCodigoInstalacao, const CString &sNomeArquivo,
                                      std::uint64_t uiCrcDados);
/// Sets the data's CRC and, over it, the record's own.
void DefineCrcDados(std::uint64_t uiCrcDados, RegCabecalhoArquivo *pReg);

/// True for a version record of any version but 0 whose two checks hold.
bool RegVersaoConfere(const RegVersaoArquivo &reg);
/// True when the header record's own check holds.
bool RegCabecalhoConfere(const RegCabecalhoArquivo &reg);
/// True when the header record is the one of a file of this name; 40 characters are compared.
bool NomeConfere(const RegCabecalhoArquivo &reg, const CString &sNomeArquivo);

#endif
