#ifndef KALVO_FUZZ_PASTADAENTRADA_H
#define KALVO_FUZZ_PASTADAENTRADA_H

#include <array>
#include <map>
#include <string>

#include "fuzz/Entrada.h"

namespace fuzz {

inline constexpr char kVeiculos[] = "DFVEIC.DAT";
inline constexpr char kVersao[] = "DFVEIVS.DAT";
inline constexpr char kControle[] = "QZDATABASE_FILE_CTRL.DAT";
inline constexpr std::array kArquivos = {kVeiculos, kVersao, kControle};
inline constexpr std::size_t kTamanhoVersao = 16;

/// The files of the directory that are there, by name.
using Pasta = std::map<std::string, std::string>;

/// The bytes of a version file of the present version.
std::string VersaoUm();

/// A company's directory in which one of the three data files holds any bytes, often filled up to whole records, in a
/// fitting header, or with one byte changed afterwards. The bits of `uiEscolha` say which, and which others are there;
/// the lowest is not looked at.
Pasta PastaDaEntrada(unsigned uiEscolha, CEntrada *pEntrada);

}  // namespace fuzz

#endif
