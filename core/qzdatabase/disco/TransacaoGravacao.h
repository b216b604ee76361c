#ifndef KALVO_CORE_QZDATABASE_DISCO_TRANSACAOGRAVACAO_H
#define KALVO_CORE_QZDATABASE_DISCO_TRANSACAOGRAVACAO_H

#include "core/qzdatabase/disco/CabecalhoVigente.h"
#include "core/qzdatabase/disco/IntencaoGravacao.h"

/// One write to an open file that, in the end, has either happened or left no trace.
///
/// The place of a write, the file's length and the bytes that stand there are noted before the disk is touched (Inicia,
/// NotaAntigo). From the first byte written on the transaction is pending, until whoever writes has taken the records
/// into memory (Confirma) or the disk has been put back (Desfaz and, where there is a header, its update; then
/// Confirma). So a write that fails, throws, or is abandoned in a machine fault half way is put right before the next
/// one, and a retry never writes behind its own fragment.
///
/// The CRC of the data in `cabecalho` follows the write and its undoing. Where the file has a header, `intencao` notes
/// what either is about to do, as long as the transaction is pending, for the case that the process ends meanwhile.
class CQZTransacaoGravacao {
public:
  CQZTransacaoGravacao(CQZCabecalhoVigente &cabecalho, CQZIntencaoGravacao &intencao)
      : m_cabecalho(cabecalho), m_intencao(intencao) {}

  /// Fixes the place of the next write and the file's present length, both counted from the file's first byte. Not
  /// while pending.
  void Inicia(std::uint64_t uiOnde, std::uint64_t uiTamanho);
  /// Adds to the bytes that stand at the place now; as many of them in all as the write replaces or, where it cuts the
  /// file, as follow the place.
  void NotaAntigo(const void *pBytes, std::size_t cb) { m_sAntes.append(static_cast<const char *>(pBytes), cb); }

  /// One attempt. With `bCorta` the file ends behind the written bytes; the place is then the start of the data.
  plataforma::FalhaArquivo Grava(plataforma::IArquivoAberto &arquivo, const void *pBytes, std::size_t cb, bool bCorta);

  /// The disk may hold something of an unfinished write.
  bool Pendente() const { return m_bPendente; }
  void Confirma() {
    m_bPendente = false;
    m_intencao.Retira();
  }

  /// Puts the bytes and the length back and the CRC with them; the transaction stays pending.
  plataforma::FalhaArquivo Desfaz(plataforma::IArquivoAberto &arquivo);

  /// For a file that was out of our hands while the transaction was pending, since its handle died: undoes the write,
  /// header included, where the file is as the write has left it. Where others have written since, undoing would
  /// destroy their work: nothing is touched, and the file is taken as it is. Either way nothing is pending any more,
  /// unless this fails.
  plataforma::FalhaArquivo DesfazSeNossa(plataforma::IArquivoAberto &arquivo);

private:
  plataforma::FalhaArquivo FoiDeixadoAssim(plataforma::IArquivoAberto &arquivo, bool *pbFoi);
  plataforma::FalhaArquivo FaixaDeixadaAssim(plataforma::IArquivoAberto &arquivo, bool *pbFoi) const;
  void AnunciaGravacao(const char *pBytes, std::size_t cb);
  void AnunciaVolta();
  std::uint64_t CrcDepois(const char *pBytes, std::size_t cb, bool bCorta) const;

  CQZCabecalhoVigente &m_cabecalho;
  CQZIntencaoGravacao &m_intencao;
  std::uint64_t m_uiOnde = 0;
  std::uint64_t m_uiTamanho = 0;
  CString m_sAntes;
  std::uint64_t m_uiCrcAntes = 0;
  std::uint64_t m_uiCrcDepois = 0;
  bool m_bPendente = false;
  std::uint64_t m_uiTamanhoNovo = 0;
  CString m_sNovo;  ///< what the last attempt was to write
  bool m_bNovoGuardado = false;
};

#endif
