#ifndef KALVO_CORE_QZDATABASE_DISCO_INTENCAOGRAVACAO_H
#define KALVO_CORE_QZDATABASE_DISCO_INTENCAOGRAVACAO_H

#include <memory>

#include "core/platform/Arquivos.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"

/// What a write to a file with header is about to do, noted beside the file before the file is touched: a process that
/// dies between the records and the header leaves a file that its own header calls damaged, and a note that tells why.
///
/// The note stands in a companion, `DFVEIC.INT` for `DFVEIC.DAT`, whose bytes are memory of this process and of the
/// operating system at once: noting costs no system call, and the note survives the death of the process. It need not
/// survive a power cut, for it is believed only where it explains the file exactly (Repara).
///
/// The companion appears with the first note and goes when the file is closed in good order, before the file itself
/// is: until then nobody else can have the file open, and so nobody else a companion. One that cannot be created is
/// done without. Not synchronised.
class CQZIntencaoGravacao {
public:
  /// A write. Places and lengths are counted from the file's first byte.
  struct Escrita {
    RegCabecalhoArquivo cabecalho;  ///< of the file; its two CRCs do not count
    std::uint64_t uiCrcAntes;       ///< of the data, before the write and after it
    std::uint64_t uiCrcDepois;
    std::uint64_t uiOnde;
    const char *pBytes;
    std::size_t cb;
    std::uint64_t uiTamanhoAntes;
    std::uint64_t uiTamanhoDepois;
  };

  CQZIntencaoGravacao() = default;
  ~CQZIntencaoGravacao() { Encerra(); }
  CQZIntencaoGravacao(const CQZIntencaoGravacao &) = delete;
  CQZIntencaoGravacao &operator=(const CQZIntencaoGravacao &) = delete;

  /// The file that the next notes are about, which is about to be opened for writing.
  void Define(const CString &sCaminho);

  /// Creates the companion, unless it is there or could not be had since Define. To be called while nothing is at
  /// stake: it takes memory.
  void Prepara();

  /// Notes a write in place of what is noted. Neither throws nor takes memory; without a companion it does nothing.
  void Anuncia(const Escrita &escrita) noexcept;

  /// The file is whole, with the write or without it.
  void Retira() noexcept;

  /// Lets go of the companion, and deletes it unless it notes something.
  void Encerra() noexcept;

  /// Where the file's companion stands.
  static CString Caminho(const CString &sCaminhoArquivo);

  /// Notes, for a process that ends meanwhile, that a file is about to be entered in the list of created files and then
  /// to be created and to get its first content. Whether that could be noted is no matter.
  static void AnotaCriacao(const CString &sCaminhoArquivo, const CString &sNomeArquivo);

  /// What is noted of a file's creation in a companion that nobody has open.
  enum class Criacao { Nada, Criacao, PrimeiraGravacao };
  static Criacao CriacaoAnotada(const CString &sCaminhoArquivo, const CString &sNomeArquivo);

  /// Zeros behind nothing or behind zeros have the CRC of nothing, so that the old header holds over a write of which
  /// only the new length has arrived. Whether the note says that a file of `uiTamanho` bytes may be one of those.
  static bool AnotaCrescimentoDeZeros(const CString &sCaminhoArquivo, const CString &sNomeArquivo,
                                      std::uint64_t uiTamanho);

  /// Deletes the companion: the file has got its content, or is not listed any more.
  static void Esquece(const CString &sCaminhoArquivo) noexcept;

  /// Puts a file right that is open for reading and writing and of which header and data do not agree, if the note in
  /// its companion explains that exactly: all of the write is there, or can be completed from the note, or what was
  /// there before it is there and can be cut free. The file is on the storage device then. Otherwise nothing is
  /// touched. A failure is one of the file's, half way or before.
  static plataforma::FalhaArquivo Repara(plataforma::IArquivoAberto &arquivo, const CString &sCaminhoArquivo,
                                         const CString &sNomeArquivo, bool *pbReparado);

private:
  CString m_sCaminho;  ///< of the companion; empty when none is to be had
  std::unique_ptr<plataforma::IArquivoAberto> m_companheiro;
  std::byte *m_pMapa = nullptr;  ///< the companion's bytes
  bool m_bAnunciada = false;
};

#endif
