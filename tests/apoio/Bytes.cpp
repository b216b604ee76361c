#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/apoio/Nativo.h"
#include "tests/apoio/PastaTemporaria.h"

namespace apoio {

void EscreveArquivo(const CString &caminho, const std::string &conteudo) {
  std::ofstream saida(CaminhoDoSistema(caminho), std::ios::binary | std::ios::trunc);
  saida.write(conteudo.data(), static_cast<std::streamsize>(conteudo.size()));
  if (!saida.flush()) {
    throw std::runtime_error("cannot write " + caminho);
  }
}

std::string LeArquivo(const CString &caminho) {
  std::ifstream entrada(CaminhoDoSistema(caminho), std::ios::binary);
  if (!entrada) {
    throw std::runtime_error("cannot read " + caminho);
  }
  return {std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
}

}  // namespace apoio
