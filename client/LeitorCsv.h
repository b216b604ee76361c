#ifndef KALVO_CLIENT_LEITORCSV_H
#define KALVO_CLIENT_LEITORCSV_H

// Vehicles from CSV text.
//
// The first line names the columns, in any order, by the field names of CamposVeiculo. The separator is ';'; a field
// may be quoted, with quotes inside it doubled, and may then hold separators and line ends. Lines end with CR LF or LF
// and empty ones are skipped. A column "posicao", which the program's own CSV output has, is taken and not used.
//
// A line that cannot be used is told and does not disturb the next one: quotes that do not close within a few hundred
// bytes of further lines spoil the line on which they open, and no other.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "client/Campos.h"
#include "client/ConteudoTexto.h"
#include "vehicles/RegVeiculoPS.h"

/// A header that cannot be used; the text is Windows-1252.
class CErroCsv : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct CLinhaCsv {
  std::size_t uiLinha = 0;  ///< 1-based line of the file, the first one of several
  tagREG_VEICULOPS veiculo{};
  std::string sErro;  ///< empty when the vehicle is good
};

class CLeitorCsv {
public:
  /// conteudo must outlive the reader. Raises CErroCsv.
  explicit CLeitorCsv(const CConteudoTexto &conteudo);

  /// Nothing at the end.
  std::optional<CLinhaCsv> Proxima();

  /// Bytes of the text, and how many of them were read: the measure of progress.
  std::size_t Tamanho() const { return m_sConteudo.size(); }
  std::size_t Lidos() const { return m_uiInicio; }

private:
  void PulaVazias();
  std::vector<std::string> ProximasPartes();
  void Avanca(std::size_t uiBytes);

  std::string_view m_sConteudo;
  bool m_bUtf8;
  std::size_t m_uiInicio = 0;
  std::size_t m_uiLinha = 1;               ///< of m_uiInicio
  std::vector<const CCampo *> m_aColunas;  ///< null: column not used
};

#endif
