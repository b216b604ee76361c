#ifndef KALVO_CLIENT_DESTINO_H
#define KALVO_CLIENT_DESTINO_H

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "client/ConteudoTexto.h"

/// Where the bytes of a result go: to standard output, or to a file that takes its name only when it is complete. Texts
/// are Windows-1252. With a character set they go out in that, with its mark, byte for byte; without one they go out as
/// lines for the user to see, whose ends the platform makes. Raises std::runtime_error with the file's name when it
/// cannot be written.
class CDestino {
public:
  /// Standard output.
  explicit CDestino(std::optional<ECodificacao> eQual);
  /// A file, which may exist only when bSubstitui; raises CErroUso.
  CDestino(const std::string &sArquivo, bool bSubstitui, std::optional<ECodificacao> eQual);
  /// A file that was not completed goes.
  ~CDestino();
  CDestino(const CDestino &) = delete;
  CDestino &operator=(const CDestino &) = delete;

  /// As the next text must hold it.
  std::string_view FimDeLinha() const { return m_eQual ? "\r\n" : "\n"; }

  void Escreve(std::string_view sTexto);
  void Completa();

private:
  void EscreveBytes(std::string_view sBytes);
  void Verifica(bool bCerto) const;

  std::optional<ECodificacao> m_eQual;
  std::string m_sNome;  ///< empty: standard output
  std::filesystem::path m_arquivo;
  std::filesystem::path m_parcial;
  std::ofstream m_fluxo;
};

/// All bytes of a file, or of standard input for "-". Raises std::runtime_error with the file's name.
std::string LeBytes(const std::string &sArquivo);

#endif
