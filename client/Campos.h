#ifndef KALVO_CLIENT_CAMPOS_H
#define KALVO_CLIENT_CAMPOS_H

// The fields of the vehicle and filter records as tables: one name per field serves the command line, the CSV columns
// and the output.

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

enum class ECampo {
  Texto,    ///< fixed 8-bit field
  Moeda,    ///< ten-thousandths
  Limite,   ///< ten-thousandths, zero or more: a bound of zero is none
  Numero,   ///< unsigned integer as wide as the field
  Mascara,  ///< list of type values, one bit each, bit 0 for uiPrimeiroValor
};

struct CCampo {
  std::string_view sNome;
  ECampo eTipo;
  std::size_t uiPosicao;     ///< byte offset in the record
  std::size_t uiLargura;     ///< bytes
  std::string_view sRotulo;  ///< what it is, UTF-8
  unsigned uiPrimeiroValor = 0;
  unsigned uiUltimoValor = 0;
};

/// A value that its field cannot take; the text (Windows-1252) says why without naming the field.
class CErroCampo : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

std::span<const CCampo> CamposVeiculo();  // of tagREG_VEICULOPS
std::span<const CCampo> CamposFiltro();   // of tagREG_FILTRO_VEICULOSPS

/// Null when the table has no such name.
const CCampo *ProcuraCampo(std::span<const CCampo> aCampos, std::string_view sNome);

/// Sets a field of the record at pRegistro from text; raises CErroCampo and leaves the record alone when it cannot.
void DefineCampo(const CCampo &campo, std::string_view sValor, void *pRegistro);

/// The text that DefineCampo would take to give the field its present value; not for masks.
std::string TextoCampo(const CCampo &campo, const void *pRegistro);

/// Decimal digits only, not above uiMaximo; raises CErroCampo.
std::uint64_t NumeroDeTexto(std::string_view sTexto, std::uint64_t uiMaximo);

#endif
