#ifndef KALVO_CLIENT_RELACAO_H
#define KALVO_CLIENT_RELACAO_H

#include <cstdint>
#include <memory>
#include <string>

#include "client/Argumentos.h"
#include "client/Destino.h"
#include "vehicles/RegVeiculoPS.h"

enum class EFormatoRelacao { Tabela, Csv, Json };

/// The rows of a command's result, in the format and at the place that --csv, --json, --saida, --substitui and
/// --codificacao say. A file that it begins is there only after Acaba.
class CRelacao {
public:
  /// Raises CErroUso.
  explicit CRelacao(const CArgumentos &argumentos);
  /// CSV in the named file, or on standard output for "-"; UTF-8 unless told otherwise, so that an import gives back
  /// the very bytes of each text.
  CRelacao(const CArgumentos &argumentos, const std::string &sArquivoCsv);

  EFormatoRelacao Formato() const { return m_eFormato; }

  /// What stands above the rows, without line ends; nothing for an empty one.
  void Comeca(const std::string &sTituloTabela, const std::string &sTituloCsv);
  /// A row without its line end, already in the format.
  void Linha(const std::string &sLinha);
  /// A vehicle in the format; as a table, a row of TituloLista.
  void Veiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo);
  void Acaba();

private:
  EFormatoRelacao m_eFormato;
  std::unique_ptr<CDestino> m_spDestino;
  bool m_bAlguma = false;
};

#endif
