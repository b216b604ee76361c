#ifndef KALVO_FUZZ_REFERENCIA_H
#define KALVO_FUZZ_REFERENCIA_H

// The data files as their description has them: the order in which they are examined, and the lines of texts. Single
// records are checked by the functions that the unit tests hold against bytes.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/errors/CodigosResultado.h"

namespace fuzz {

std::uint64_t Crc(std::string_view sBytes);

/// A header for a file of this name and these data, 92 bytes. Any version but the present one is a foreign one.
std::string Cabecalho(const std::string &sNome, std::string_view sDados, std::uint16_t iVersao = 1);

/// A data file as it should be taken when it is opened.
struct ArquivoExaminado {
  HRESULT hr = codigos::kOk;   ///< of the header
  bool bTemCabecalho = false;  ///< begins with a version record that holds
  std::string sDados;          ///< behind the header when headers are on and there is one
};

ArquivoExaminado Examina(const std::string &sNome, const std::string &sBytes, bool bCabecalhos);

/// The bytes of each line of a text file; one whose length reaches past the end ends there.
std::vector<std::string> LinhasInteiras(std::string_view sDados);

/// The same lines as they are loaded: each ends at its first zero byte.
std::vector<std::string> LinhasDoTexto(std::string_view sDados);

/// The bytes of lines on disk.
std::string BytesDasLinhas(const std::vector<std::string> &textos);

}  // namespace fuzz

#endif
