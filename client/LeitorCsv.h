#ifndef KALVO_CLIENT_LEITORCSV_H
#define KALVO_CLIENT_LEITORCSV_H

// Vehicles from CSV text.
//
// The first line names the columns, in any order, by the field names of CamposVeiculo. The separator is ';'; a field
// may be quoted, with quotes inside it doubled; a field does not reach over the end of its line. Lines end with CR LF
// or LF and empty ones are skipped. The text is Windows-1252, or UTF-8 when it begins with the UTF-8 byte-order mark.
// A column "posicao", which the program's own CSV output has, is taken and not used.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "client/Campos.h"
#include "vehicles/RegVeiculoPS.h"

// A header that cannot be used; the text is Windows-1252.
class CErroCsv : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct CLinhaCsv {
  std::size_t uiLinha = 0;  // 1-based line of the file
  tagREG_VEICULOPS veiculo{};
  std::string sErro;  // empty when the vehicle is good
};

class CLeitorCsv {
public:
  // sConteudo must outlive the reader. Raises CErroCsv.
  explicit CLeitorCsv(std::string_view sConteudo);

  // Nothing at the end.
  std::optional<CLinhaCsv> Proxima();

  // Bytes of the text, and how many of them were read: the measure of progress.
  std::size_t Tamanho() const { return m_sConteudo.size(); }
  std::size_t Lidos() const { return m_uiInicio; }

private:
  std::optional<std::string_view> ProximaLinha();
  std::vector<std::string> Separa(std::string_view sLinha) const;

  std::string_view m_sConteudo;
  std::size_t m_uiInicio = 0;
  std::size_t m_uiLinha = 0;
  bool m_bUtf8 = false;
  std::vector<const CCampo *> m_aColunas;  // null: column not used
};

#endif
