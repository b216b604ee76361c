#ifndef KALVO_CORE_QZDATABASE_DISCO_CABECALHOVIGENTE_H
#define KALVO_CORE_QZDATABASE_DISCO_CABECALHOVIGENTE_H

#include <functional>

#include "core/platform/Arquivos.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"

/// The header of one file as it stands and as it should stand: whether the file has one, whether it has been checked,
/// and the CRC of the data, which follows every write so that no update needs to read the file.
///
/// Invariant: once checked, CrcDados is the CRC of what lies behind the header of the open file, but for what a write
/// under way has changed. Where the file has no header all of this does nothing.
class CQZCabecalhoVigente {
public:
  /// At initialisation; nothing is checked yet.
  void Define(bool bTem, const CString &sNomeArquivo, std::uint32_t uiCodigoInstalacao);

  bool Tem() const { return m_bTem; }
  /// Bytes in front of the data: 92 or 0.
  std::uint64_t Tamanho() const { return m_bTem ? kTamanhoCabecalho : 0; }

  /// True when nothing needs checking: the file has no header, or it holds.
  bool Conferido() const { return !m_bTem || m_bConferido; }
  /// To be called when the file may have become another.
  void Esquece() { m_bConferido = false; }

  /// Whether the file begins with a version record that holds, and with which version. A file that cannot be read has
  /// not been found to have none: that is a failure, or a second header would be put in front of the first.
  static plataforma::FalhaArquivo LeVersao(plataforma::IArquivoAberto &arquivo, bool *pbPossui,
                                           std::uint16_t *piVersao);

  /// Checks a header of version 1 against the file's name and data; `*phr` receives the code of what does not hold.
  plataforma::FalhaArquivo Examina(plataforma::IArquivoAberto &arquivo, HRESULT *phr);
  /// The same, the data being read by `leCrc`, which gives their CRC: whoever needs them anyway keeps what it reads.
  plataforma::FalhaArquivo Examina(plataforma::IArquivoAberto &arquivo,
                                   const std::function<plataforma::FalhaArquivo(std::uint64_t *)> &leCrc, HRESULT *phr);

  /// CRC of everything behind the header; 0 where there is nothing.
  static plataforma::FalhaArquivo CrcDosDados(plataforma::IArquivoAberto &arquivo, std::uint64_t *puiCrc);

  /// Both records for a file without a header, all of whose bytes are data.
  plataforma::FalhaArquivo GeraDados(plataforma::IArquivoAberto &arquivo, RegVersaoArquivo *pVersao,
                                     RegCabecalhoArquivo *pCabecalho) const;

  /// Writes the records and, behind them, all bytes of `origem` to `destino`, which is on the storage device at the
  /// end.
  static plataforma::FalhaArquivo GravaCopia(plataforma::IArquivoAberto &origem, const RegVersaoArquivo &versao,
                                             const RegCabecalhoArquivo &cabecalho, plataforma::IArquivoAberto &destino);

  /// The header record as it was last read or written.
  const RegCabecalhoArquivo &Registro() const { return m_reg; }

  std::uint64_t CrcDados() const { return m_uiCrcDados; }
  void SegueDados(std::uint64_t uiCrcDados) { m_uiCrcDados = uiCrcDados; }

  /// Writes the header record for CrcDados, unless the disk has it already.
  plataforma::FalhaArquivo Atualiza(plataforma::IArquivoAberto &arquivo);

private:
  bool m_bTem = false;
  CString m_sNomeArquivo;
  std::uint32_t m_uiCodigoInstalacao = 0;
  bool m_bConferido = false;
  RegCabecalhoArquivo m_reg{};
  bool m_bNoDisco = false;  ///< false while a write of it has not succeeded
  std::uint64_t m_uiCrcDados = 0;
};

#endif
