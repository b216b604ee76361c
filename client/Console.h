#ifndef KALVO_CLIENT_CONSOLE_H
#define KALVO_CLIENT_CONSOLE_H

// The program's ends towards its user: command line, standard output and standard error. Inside the program every text
// is Windows-1252; a file or a pipe receives these bytes, a console shows the characters.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// A console, not merely a character device: the null device is none.
bool EhConsole(std::FILE *pArquivo);

/// Makes the consoles of standard output and standard error show Windows-1252 for as long as it lives. Where a
/// console's code page outlives the program the earlier one is put back.
class CPaginaConsole {
public:
  CPaginaConsole();
  ~CPaginaConsole();
  CPaginaConsole(const CPaginaConsole &) = delete;
  CPaginaConsole &operator=(const CPaginaConsole &) = delete;

  /// Puts the code page back at once, for a process that is about to be ended. Any thread may call.
  static void Restaura();
};

void Escreve(std::string_view sTexto);      // standard output
void EscreveErro(std::string_view sTexto);  // standard error

/// From here on standard output, or standard input, carries every byte as it is; the platform's text mode does not.
void SaidaEmBytes();
void EntradaEmBytes();

/// The words of the command line behind the program's name; main's parameters are given for platforms where they are
/// what the user typed. Raises CErroUso for a character without a Windows-1252 form.
std::vector<std::string> PalavrasDoUsuario(int iPalavras, char **pPalavras);

#endif
