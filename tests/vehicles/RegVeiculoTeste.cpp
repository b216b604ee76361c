#include "vehicles/RegVeiculo.h"

#include <gtest/gtest.h>

#include "tests/vehicles/AmostraVeiculos.h"

namespace {

std::string DeHexa(const std::string &hexa) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hexa.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hexa.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

TEST(RegVeiculo, BytesGravadosEDevolvidos) {
  tagREG_VEICULOPS origem = VeiculoCompleto();
  origem.iFiller = 9;
  origem.lPosicao = 123;
  std::memset(origem.cFiller, 0x55, sizeof(origem.cFiller));
  std::strcpy(origem.szPlaca, "ABC1D23");
  origem.szPlaca[8] = 'x';  // behind the terminator: not part of the text

  RegVeiculo reg;
  std::memset(&reg, 0xAA, sizeof(reg));
  CopiaParaRegistro(origem, &reg);
  const std::string esperado = DeHexa(
                                   "56303031000000000000000000"
                                   "414243314432330000"
                                   "535000"
                                   "43414D494E48414F20544F434F") +
                               std::string(38, '\0') +
                               DeHexa(
                                   "E4070000"
                                   "3132333435363738") +
                               std::string(13, '\0') +
                               DeHexa(
                                   "020100"
                                   "C068780400000000"
                                   "000E270700000000"
                                   "58F1060000000000"
                                   "303031323334353637383900"
                                   "1100"
                                   "01") +
                               std::string(113, '\0');
  EXPECT_EQ(Bytes(reg), esperado);

  tagREG_VEICULOPS devolvido;
  std::memset(&devolvido, 0xAA, sizeof(devolvido));
  CopiaParaInterface(reg, &devolvido);
  EXPECT_EQ(Bytes(devolvido), Bytes(VeiculoCompleto())) << "fillers and lPosicao are zero";
}

TEST(RegVeiculo, TextosQueEnchemOCampo) {
  const tagREG_VEICULOPS cheio = Veiculo("1234567890123", "123456789");
  RegVeiculo reg;
  CopiaParaRegistro(cheio, &reg);
  EXPECT_EQ(std::string(reg.szCodigo, 13), "1234567890123");
  tagREG_VEICULOPS devolvido;
  CopiaParaInterface(reg, &devolvido);
  EXPECT_EQ(Bytes(devolvido), Bytes(cheio));
}

}  // namespace
