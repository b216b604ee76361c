#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZTEXTFILE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZTEXTFILE_H

#include "core/platform/CArray.h"
#include "core/qzdatabase/arquivo/QZDataBaseTextPair.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"

/// A file of text lines of any length up to 4294967295 bytes, such as the list of the files that a directory should
/// hold. On disk each line is its length (32 bits, little-endian) and its text in the ANSI code page, one line after
/// another without gaps. All lines are held in memory; a write goes to disk first and to memory after.
///
/// A write over existing lines touches as little as it can: equal lines write nothing; when any line is longer than the
/// one it replaces, the whole range is appended as new lines and the old ones stay; otherwise, when any is shorter, the
/// file is rewritten as a whole; otherwise the lines are overwritten where they lie.
///
/// Positions are 1-based; 0 means "append" on a write and is invalid on a read. Any thread may read and write between
/// initialisation and finishing.
class CQZTextFile : public CQZFileBase {
public:
  CQZTextFile(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase);
  ~CQZTextFile() override { FinalizaNoDestrutor(); }

  /// Copies the line at a position.
  [[nodiscard]] HRESULT Le(std::uint64_t uiPosicao, CString &sRegistro);

  /// Writes one line as GravaColecao does. An empty text writes nothing, sets `uiPosicao` to 0 and succeeds.
  [[nodiscard]] HRESULT Grava(std::uint64_t &uiPosicao, const CString &sRegistro);

  /// Writes one line behind the last, unless a line is the same; `uiPosicao` receives its position either way. That is
  /// decided while the file is held for writing, so that two programs which add the same line at once add it once.
  [[nodiscard]] HRESULT GravaSeNova(std::uint64_t &uiPosicao, const CString &sRegistro);

  /// Position of the first line that equals the text, letter case included; 0 when there is none. Not locked, as
  /// GetPtrArrayRegistros.
  std::uint64_t Procura(const CString &sRegistro) const;

  /// Writes consecutive lines from `uiPosicao` on, which must not lie behind the last line; the range may run past it.
  /// Empty texts are written as empty lines. When the lines went to the end `uiPosicao` receives the position of the
  /// last of them; it is 0 when that failed.
  [[nodiscard]] HRESULT GravaColecao(std::uint64_t &uiPosicao, const CStringArray &aRegistros);

  /// The lines in memory. Not locked: for callers that share the file with no other thread.
  const CArray<CQZDataBaseTextPair> *GetPtrArrayRegistros() const;

  /// Writes all lines to the "OFL" companion, in place of an earlier one. A file without lines leaves no companion.
  [[nodiscard]] HRESULT GeraArquivoOffline();

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  void EsvaziaMemoria() override;

private:
  [[nodiscard]] HRESULT GravaLinhas(std::uint64_t &uiPosicao, const CStringArray &aRegistros, bool bSeNova);
  [[nodiscard]] HRESULT GravaRegistros(std::uint64_t &uiPosicao, const CStringArray &aRegistros, bool bShrink);
  [[nodiscard]] HRESULT ExecutaShrink(std::uint64_t uiPosicao, const CStringArray &aRegistros);
  [[nodiscard]] HRESULT GravaBytes(const CQZRastro &rastro, std::uint64_t uiOnde, std::uint64_t uiTamanho,
                                   const CString &sBytes, bool bCorta);
  plataforma::FalhaArquivo NotaAntigos(std::uint64_t uiOnde, std::uint64_t uiTamanho, std::uint64_t cb);

  bool PrecisaGravar(std::uint64_t uiPosicao, const CStringArray &aRegistros) const;
  bool DeveGravarNoFinal(std::uint64_t uiPosicao, const CStringArray &aRegistros) const;
  bool DeveExecutarShrink(std::uint64_t uiPosicao, const CStringArray &aRegistros) const;
  bool FaixaExistente(std::uint64_t uiPosicao, const CStringArray &aRegistros) const;

  std::size_t IndiceDe(std::uint64_t uiPosicao) const;
  std::uint64_t OndeGravar(std::size_t indice) const;
  void TomaLinhas(std::size_t indice, CStringArray aTextos);
  void DefineOffsets(std::size_t indice, std::uint64_t uiOffset);

  CArray<CQZDataBaseTextPair> m_aRegistros;

  /// The file did not end behind a whole line when it was loaded: a line appended there would be lost.
  bool m_bFimDanificado = false;
};

#endif
