#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILEBASE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILEBASE_H

#include <memory>
#include <optional>

#include "core/conx/DadosInstalacao.h"
#include "core/conx/QZInicializador.h"
#include "core/env/QZPath.h"
#include "core/errors/CodigosResultado.h"
#include "core/log/QZOperacao.h"
#include "core/platform/LivroTravas.h"
#include "core/platform/SistemaArquivos.h"
#include "core/qzdatabase/banco/ControleCriacao.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/Insistencia.h"

class CQZDataBase;

/// Open modes: sums of the flags read-write 0x0002, share-exclusive 0x0010, share-deny-none 0x0040, create 0x1000 and
/// no-truncate 0x2000.
enum EModoAbertura : std::uint32_t {
  eModoFechado = 0,
  eModoLeitura = 0x2010,               ///< read, exclusive; a missing file stays missing and closed
  eModoLeituraGravacao = 0x2012,       ///< read and write, exclusive; a missing file is created
  eModoCriacao = 0x1010,               ///< creates or empties, exclusive
  eModoLeituraCompartilhada = 0x2040,  ///< read, others may read and write
};

/// Name of a record type as it stands in the qualified names of the error records ("struct RegVeiculo"). Every record
/// type specialises it with a `kNome`.
template <typename T>
struct NomeTipoRegistro;

/// One file of a database: its name and directory, opening with retries, result codes for file failures, its header,
/// the record of its creation, copying, closing.
///
/// Where the suite has headers switched on, the file's records stand behind a header of 92 bytes (CabecalhoArquivo.h),
/// which is created when it is missing, checked at the first open and brought up to date by Flush. The switch is read
/// at initialisation and holds until the object is initialised again.
///
/// Derived files keep the file's content in memory and serve reads from it. A file is addressed by module, company and
/// name; the path is composed anew at every open. The file registers itself with its database, which initialises and
/// finishes it and must outlive it.
///
/// Threads: the derived classes' reads and writes and OnFinaliza take the file's lock. AbreArquivo is called with the
/// lock held, or before the object is shared.
class CQZFileBase : public CQZInicializador {
public:
  ~CQZFileBase() override;

  /// Opens the file, or does nothing when it is open in this very mode. A file open in another mode is closed and
  /// opened again; when that fails it is put back into its old mode and stays usable, and when the file was changed by
  /// others meanwhile its header is checked again and the content in memory is loaded anew. Sharing conflicts are
  /// retried for about one second. A file whose header does not hold stays closed. A file that gets its header on this
  /// occasion is left open for reading and writing, whatever the mode asked for.
  [[nodiscard]] HRESULT AbreArquivo(EModoAbertura eModoAbertura = eModoLeituraGravacao);

  /// True when the file is open; does not look at the disk.
  bool ExisteArquivo() const { return m_arquivo != nullptr; }

  /// From now on every open takes the file out of its directory's list of created files instead of consulting it.
  void DesabilitaControleCriacaoArquivos() { m_bSemControle = true; }

  /// Brings the header of a file open for writing up to date with the records; the records themselves are written by
  /// the writers. Where the database defers flushing nothing is done unless `bForcar`. With the lock held.
  [[nodiscard]] HRESULT Flush(bool bForcar = false);

  /// Blocks until everything written is on the storage device.
  [[nodiscard]] HRESULT DescarregaNoDisco();

  /// Copies this file, header included, to the file of the same name in the directory of a module of a company. What
  /// was there goes; where this file is missing or empty, without a copy in its place. Other processes' short holds on
  /// the destination are waited for. The copy is not listed as created there.
  [[nodiscard]] HRESULT CopiaArquivoPara(const CString &sEmpresa, ModuloQZ qzModulo);

  /// Deletes the "OFL" companion, if there is one.
  [[nodiscard]] HRESULT DeletaArquivoOffline();

  const CString &GetNomeArquivo() const { return m_sNomeArquivo; }

  /// Result code of a file failure on read and open paths.
  [[nodiscard]] static HRESULT CatchInicializacao(const plataforma::FalhaArquivo &falha) {
    return CodigoDaFalha(falha.causa);
  }
  /// Result code of a file failure on write paths: the same table.
  [[nodiscard]] static HRESULT CatchGravacao(const plataforma::FalhaArquivo &falha) {
    return CodigoDaFalha(falha.causa);
  }

  /// True for the file codes after which a writer stops trying.
  static bool EhUmaExcecaoFatal(HRESULT hr);

protected:
  CQZFileBase(const CString &sNomeArquivo, CQZDataBase *pDataBase);

  [[nodiscard]] HRESULT OnInicializa() override;

  /// Closes the file under the lock. Derived files call it last, with the lock already held.
  [[nodiscard]] HRESULT OnFinaliza() override;

  /// Loads the content of the open file into memory, replacing what is there.
  [[nodiscard]] virtual HRESULT CarregaMemoria() = 0;
  /// Empties the memory copy.
  virtual void EsvaziaMemoria() = 0;

  /// To be called once memory holds what the file holds (or nothing, for a missing file): from then on AbreArquivo
  /// watches for changes made by others while the file is closed.
  void MemoriaCarregada();

  /// Bytes in front of the first record: 92 or 0. Constant from initialisation to the next one.
  std::uint64_t TamanhoCabecalho() const { return m_bTemCabecalho ? kTamanhoCabecalho : 0; }

  /// Length of the records. Shorter than the header is FimDeArquivo.
  plataforma::FalhaArquivo TamanhoDados(std::uint64_t *puiTamanho);

  /// CRC of the records as the next Flush writes it into the header. A writer that knows how a write changes it says
  /// so; one that does not lets it go, and Flush reads the whole file. Without meaning where there is no header.
  std::optional<std::uint64_t> CrcDados() const { return m_uiCrcDados; }
  void NotaCrcDados(std::optional<std::uint64_t> uiCrc) { m_uiCrcDados = uiCrc; }

  /// Runs `tentativa` up to 50 times, 10 ms apart, until it succeeds or fails fatally; traces each failure.
  template <typename F>
  [[nodiscard]] HRESULT TentaGravar(const CQZRastro &rastro, const char *lpExpressao, F &&tentativa);

  /// Closes the file; the memory copy stays.
  void FechaArquivo();

  /// One try at opening, for reading, a file that a failed mode switch has left closed, so that the object recovers as
  /// soon as the file can be had again. An open file, or one that never existed, is left as it is. With the lock held.
  void ReabreSePerdido();

  /// Full path of the file for the present company.
  CString CaminhoCompleto() const { return CQZPath::CaminhoArquivo(m_eModulo, GetEmpresa(), m_sNomeArquivo); }

  plataforma::IArquivoAberto &Arquivo() { return *m_arquivo; }
  plataforma::SecaoCritica &Secao() const { return m_secao; }
  ModuloQZ GetModulo() const { return m_eModulo; }

  /// The file's part in the list of created files of its directory.
  CQZControleCriacao Controle() const { return {*this, m_eModulo, m_sNomeArquivo}; }

private:
  class EntradaPendente;

  /// What the file looked like when this object last had it: a difference means that others have written.
  struct EstadoArquivo {
    std::uint64_t uiTamanho = 0;
    std::uint64_t uiUltimaEscrita = 0;  ///< 0 when the file did not exist
  };

  static constexpr int kTentativasAbertura = 100;

  [[nodiscard]] static HRESULT CodigoDaFalha(plataforma::CausaArquivo causa);
  [[nodiscard]] static HRESULT CodigoDaAbertura(const CString &sCaminho, plataforma::CausaArquivo causa,
                                                bool bUltimaTentativa);
  static void PausaEntreTentativas();

  [[nodiscard]] HRESULT AbreNoModo(EModoAbertura eModoAbertura, bool bCriando);
  [[nodiscard]] HRESULT CriaEAbre(const CQZRastro &rastro, EModoAbertura eModoAbertura);
  [[nodiscard]] HRESULT AposAbrir(const CQZRastro &rastro, EModoAbertura eModoAbertura);
  void VoltaAoModo(const CQZRastro &rastro, EModoAbertura eModoAnterior);
  [[nodiscard]] HRESULT TentaAbrir(const CString &sCaminho, EModoAbertura eModoAbertura, bool bPreservaConteudo = false,
                                   int iTentativas = kTentativasAbertura);
  void AnotaEstado();
  bool EstadoMudou();

  [[nodiscard]] HRESULT GerenciaControleCriacaoArquivos(EModoAbertura eModoAbertura);

  [[nodiscard]] HRESULT GerenciaCabecalho();
  [[nodiscard]] HRESULT PossuiCabecalho(bool *pbPossui);
  [[nodiscard]] HRESULT CriaCabecalho();
  [[nodiscard]] HRESULT GravaCopiaComCabecalho();
  [[nodiscard]] HRESULT GeraDadosCabecalho(RegVersaoArquivo *pRegVersao, RegCabecalhoArquivo *pRegCabecalho);
  [[nodiscard]] HRESULT ValidaCabecalho();
  [[nodiscard]] HRESULT ValidaCabecalhoV01();
  [[nodiscard]] HRESULT AtualizaCabecalho();
  plataforma::FalhaArquivo CalculaCrcDoArquivo(std::uint64_t uiInicio, std::uint64_t *puiCrc);

  std::unique_ptr<plataforma::IArquivoAberto> m_arquivo;
  EModoAbertura m_eModoAtual = eModoFechado;
  bool m_bPronto = false;  ///< open, with its header and memory seen to; false after an opening that was abandoned
  CString m_sNomeArquivo;
  ModuloQZ m_eModulo;
  CQZDataBase *m_pDataBase;
  mutable plataforma::SecaoCritica m_secao;
  const bool m_bFlushAdiado;
  bool m_bSemControle = false;
  bool m_bEntradaNova = false;  ///< added to the list of created files by the creation that is under way

  /// Data of the installation for the header; null until a header is first needed, and then code 0.
  std::unique_ptr<CQZDadosInstalacao> m_pDadosInstalacao;
  bool m_bTemCabecalho = false;
  bool m_bCabecalhoGerenciado = false;   ///< once for an object, unless others have changed the file
  RegCabecalhoArquivo m_regCabecalho{};  ///< as it was last read or written
  bool m_bCabecalhoNoDisco = false;      ///< false while a write of it has not succeeded
  std::optional<std::uint64_t> m_uiCrcDados;

  bool m_bMemoriaCarregada = false;
  std::optional<EstadoArquivo> m_estado;

  friend class CQZDataBase;
};

template <typename F>
HRESULT CQZFileBase::TentaGravar(const CQZRastro &rastro, const char *lpExpressao, F &&tentativa) {
  HRESULT hr = codigos::kOk;
  for (int i = 0; i < kTentativasInsistencia; ++i) {
    if (!QZ_FALHOU(rastro, hr, lpExpressao, tentativa())) {
      return hr;
    }
    if (EhUmaExcecaoFatal(hr)) {
      return hr;
    }
    PausaEntreTentativas();
  }
  return hr;
}

#endif
