#ifndef KALVO_CLIENT_SAIDA_H
#define KALVO_CLIENT_SAIDA_H

// What the program writes: Windows-1252 texts, to a console or to a file.

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "vehicles/RegVeiculoPS.h"

// A console, not merely a character device: the null device is none.
bool EhConsole(std::FILE *pArquivo);

// Makes the consoles of standard output and standard error show Windows-1252 for as long as it lives. The code page
// belongs to the console, which outlives the program, so the earlier one is put back.
class CPaginaConsole {
public:
  CPaginaConsole();
  ~CPaginaConsole();
  CPaginaConsole(const CPaginaConsole &) = delete;
  CPaginaConsole &operator=(const CPaginaConsole &) = delete;

private:
  UINT m_uiAnterior = 0;  // 0: nothing to put back
};

void Escreve(std::string_view sTexto);      // standard output
void EscreveErro(std::string_view sTexto);  // standard error

// One vehicle, a line per field: "Descrição .: Caminhão baú".
std::string FichaVeiculo(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

// One vehicle per line under the titles.
std::string TituloLista();
std::string LinhaLista(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

// CSV that the program imports again.
std::string TituloCsv();
std::string LinhaCsv(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

#endif
