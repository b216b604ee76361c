#ifndef KALVO_CLIENT_ARGUMENTOS_H
#define KALVO_CLIENT_ARGUMENTOS_H

// The command line of a program: "COMANDO [options and values]", in any order; the first word that is no option is the
// command. One table says what a program knows; the parser and the help (Ajuda.h) are made of it.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Wrong usage; the text (Windows-1252) names the option.
class CErroUso : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// As many values as there may be, or as large a number.
constexpr std::size_t kSemLimite = std::numeric_limits<std::size_t>::max();

// Texts of the tables are UTF-8.

struct COpcaoConhecida {
  std::string_view sNome;     ///< without "--"
  std::string_view sValor;    ///< what the help calls its value; empty: the option takes none
  std::string_view sTexto;    ///< what it is good for
  bool bObrigatoria = false;  ///< must be given, with a value that is not empty
};

struct CComandoConhecido {
  std::string_view sNome;
  std::string_view sValores;  ///< what the help calls its values
  std::size_t uiMinimoValores = 0;
  std::size_t uiMaximoValores = 0;
  std::string_view sResumo;  ///< one line
  std::string_view sNotas;   ///< what else there is to know, in lines
  std::vector<COpcaoConhecida> aOpcoes;
  std::vector<std::string_view> aExemplos;  ///< command lines without the program's name
};

struct CProgramaConhecido {
  std::string_view sNome;
  std::string_view sVersao;
  std::string_view sUso;    ///< behind the program's name
  std::string_view sNotas;  ///< in lines
  std::vector<CComandoConhecido> aComandos;
};

/// A word of the command line, or an option with its value.
struct CParteLinha {
  bool bOpcao = false;
  std::string sTexto;  ///< the word; the option's name without "--"
  std::optional<std::string> sValor;
};

/// The command line taken apart, wrong usage and all. "--nome valor" and "--nome=valor" are the same; behind a lone
/// "--" everything is a word. "-h" and "/?" are the option "ajuda".
std::vector<CParteLinha> SeparaLinha(std::span<const std::string> aTextos, const CProgramaConhecido &programa);

/// Null for a name that the program does not have.
const CComandoConhecido *ProcuraComando(const CProgramaConhecido &programa, std::string_view sNome);

class CArgumentos {
public:
  /// programa must outlive the object. Raises CErroUso for anything that the command does not know.
  CArgumentos(std::span<const std::string> aTextos, const CProgramaConhecido &programa);

  const CComandoConhecido &Comando() const { return *m_pComando; }
  const std::vector<std::string> &Valores() const { return m_aValores; }

  bool Tem(std::string_view sNome) const { return m_mapOpcoes.find(sNome) != m_mapOpcoes.end(); }
  /// Null when the option was not given.
  const std::string *Opcao(std::string_view sNome) const;
  /// The option as a number from uiMinimo to uiMaximo, uiPadrao when it was not given.
  std::uint64_t Numero(std::string_view sNome, std::uint64_t uiMinimo, std::uint64_t uiMaximo,
                       std::uint64_t uiPadrao) const;
  /// Raises CErroUso when both options are given.
  void SoUma(std::string_view sUma, std::string_view sOutra) const;

private:
  void GuardaOpcao(CParteLinha parte, const CProgramaConhecido &programa);
  void Confere() const;

  const CComandoConhecido *m_pComando = nullptr;
  std::map<std::string, std::string, std::less<>> m_mapOpcoes;
  std::vector<std::string> m_aValores;
};

/// The text of a position, 0 to the highest; raises CErroUso.
std::int32_t PosicaoDeTexto(const std::string &sTexto);

/// The words of the command line in Windows-1252; a character without such a form raises CErroUso naming its option.
std::vector<std::string> TextosDaLinhaDeComando(std::span<const std::wstring> aPalavras);

#endif
