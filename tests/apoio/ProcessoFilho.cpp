#include "tests/apoio/ProcessoFilho.h"

#include <unistd.h>

#include <cstdlib>
#include <map>
#include <utility>

namespace apoio {
namespace {

std::map<std::string, FuncaoFilha> &Filhas() {
  static std::map<std::string, FuncaoFilha> filhas;
  return filhas;
}

}  // namespace

RegistraFilha::RegistraFilha(const char *lpNome, FuncaoFilha funcao) {
  Filhas()[lpNome] = funcao;
}

void ExecutaFilha(int argc, char **argv) {
  if (argc >= 3 && std::string(argv[1]) == "--filho") {
    std::exit(Filhas().at(argv[2])({argv + 3, argv + argc}));
  }
}

ProcessoFilho::~ProcessoFilho() {
  Mata();
  FechaEntrada();
  ::close(m_saida);
}

std::string ProcessoFilho::LeLinha() {
  std::string sLinha;
  char letra = 0;
  while (::read(m_saida, &letra, 1) == 1 && letra != '\n') {
    sLinha.append(letra == '\r' ? 0 : 1, letra);
  }
  return sLinha;
}

void ProcessoFilho::EnviaLinha(const std::string &sLinha) {
  const std::string sInteira = sLinha + "\n";
  static_cast<void>(::write(m_entrada, sInteira.data(), static_cast<unsigned>(sInteira.size())));
}

void ProcessoFilho::FechaEntrada() {
  if (m_entrada >= 0) {
    ::close(std::exchange(m_entrada, -1));
  }
}

}  // namespace apoio
