#include "client/Console.h"

#include <unistd.h>

#include "client/Codificacao.h"

namespace {

void EscreveEm(std::FILE *pArquivo, std::string_view sTexto) {
  const std::string sConvertido = EhConsole(pArquivo) ? De1252Para8(sTexto) : std::string();
  const std::string_view sBytes = sConvertido.empty() ? sTexto : std::string_view(sConvertido);
  std::fwrite(sBytes.data(), 1, sBytes.size(), pArquivo);
}

}  // namespace

bool EhConsole(std::FILE *pArquivo) {
  return ::isatty(::fileno(pArquivo)) != 0;
}

/// Terminals show UTF-8; the conversion is made where texts are written.
CPaginaConsole::CPaginaConsole() = default;
CPaginaConsole::~CPaginaConsole() {
  std::fflush(stdout);
}
void CPaginaConsole::Restaura() {}

/// There is no text mode here.
void SaidaEmBytes() {}
void EntradaEmBytes() {}

void Escreve(std::string_view sTexto) {
  EscreveEm(stdout, sTexto);
}

void EscreveErro(std::string_view sTexto) {
  std::fflush(stdout);
  EscreveEm(stderr, sTexto);
}

/// As they are: names of files are bytes here.
std::vector<std::string> PalavrasDoUsuario(int iPalavras, char **pPalavras) {
  return {pPalavras + 1, pPalavras + iPalavras};
}
