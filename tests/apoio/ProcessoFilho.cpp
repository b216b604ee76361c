#include "tests/apoio/ProcessoFilho.h"

#include <unistd.h>

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

bool ExecutaFilha(int argc, char **argv, int *codigo) {
  if (argc < 3 || std::string(argv[1]) != "--filho") {
    return false;
  }
  const auto achada = Filhas().find(argv[2]);
  *codigo = achada != Filhas().end() ? achada->second({argv + 3, argv + argc}) : 127;
  return true;
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
