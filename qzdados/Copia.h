#ifndef KALVO_QZDADOS_COPIA_H
#define KALVO_QZDADOS_COPIA_H

#include <optional>

#include "qzdados/ArquivoEmExame.h"

/// The header that a copy is to have.
struct CabecalhoNovo {
  CString sNome;  ///< of the data file that the copy will be
  std::uint32_t uiCodigoInstalacao = 0;
};

/// A new file in the making. It did not exist before, and is gone again unless Conclui was reached.
class CArquivoNovo {
public:
  /// Raises CErroArquivo when it cannot be created, above all when there is one.
  explicit CArquivoNovo(const CString &sCaminho);
  ~CArquivoNovo();
  CArquivoNovo(const CArquivoNovo &) = delete;
  CArquivoNovo &operator=(const CArquivoNovo &) = delete;

  plataforma::IArquivoAberto &Arquivo() const { return *m_arquivo; }
  /// The file is on the storage device and stays. Raises CErroArquivo.
  void Conclui();

private:
  CString m_sCaminho;
  std::unique_ptr<plataforma::IArquivoAberto> m_arquivo;
  bool m_bConcluido = false;
};

/// Copies `qtd` bytes from `uiInicio` on into a new file, behind a header for them where one is given. Raises
/// CErroArquivo, also when somebody changes the origin meanwhile; then no new file stays. The new file's length.
std::uint64_t CopiaDados(CArquivoEmExame &origem, std::uint64_t uiInicio, std::uint64_t qtd,
                         const std::optional<CabecalhoNovo> &cabecalho, const CString &sNovo);

#endif
