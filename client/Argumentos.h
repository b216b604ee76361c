#ifndef KALVO_CLIENT_ARGUMENTOS_H
#define KALVO_CLIENT_ARGUMENTOS_H

// The command line of a program: "COMANDO [options and values]", in any order; the first word that is no option is the
// command.

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Wrong usage; the text (Windows-1252) names the option.
class CErroUso : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct COpcaoConhecida {
  std::string_view sNome;  // without "--"
  bool bComValor;
  bool bObrigatoria = false;  // must be given, with a value that is not empty
};

struct CComandoConhecido {
  std::string_view sNome;
  std::vector<COpcaoConhecida> aOpcoes;
  std::size_t uiMinimoValores;
  std::size_t uiMaximoValores;
};

class CArgumentos {
public:
  // aComandos must outlive the object. Raises CErroUso for anything that the command does not know. "--nome valor" and
  // "--nome=valor" are the same; behind a lone "--" everything is a value.
  CArgumentos(std::span<const std::string> aTextos, std::span<const CComandoConhecido> aComandos);

  const CComandoConhecido &Comando() const { return *m_pComando; }
  const std::vector<std::string> &Valores() const { return m_aValores; }

  bool Tem(std::string_view sNome) const { return m_mapOpcoes.find(sNome) != m_mapOpcoes.end(); }
  // Null when the option was not given.
  const std::string *Opcao(std::string_view sNome) const;
  // The option as a number from uiMinimo to uiMaximo, uiPadrao when it was not given.
  std::uint64_t Numero(std::string_view sNome, std::uint64_t uiMinimo, std::uint64_t uiMaximo,
                       std::uint64_t uiPadrao) const;

private:
  const CComandoConhecido *m_pComando = nullptr;
  std::map<std::string, std::string, std::less<>> m_mapOpcoes;
  std::vector<std::string> m_aValores;
};

// The text of a position, 0 to the highest; raises CErroUso.
std::int32_t PosicaoDeTexto(const std::string &sTexto);

// The words of the command line in Windows-1252; a character without such a form raises CErroUso naming its option.
std::vector<std::string> TextosDaLinhaDeComando(std::span<const std::wstring> aPalavras);

#endif
