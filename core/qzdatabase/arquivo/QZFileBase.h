#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILEBASE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILEBASE_H

#include <atomic>
#include <memory>
#include <optional>

#include "core/conx/DadosInstalacao.h"
#include "core/conx/QZInicializador.h"
#include "core/env/QZPath.h"
#include "core/errors/CodigosResultado.h"
#include "core/log/QZOperacao.h"
#include "core/platform/Arquivos.h"
#include "core/platform/SecaoCompartilhada.h"
#include "core/platform/SecaoCritica.h"
#include "core/qzdatabase/arquivo/DonoDeArquivos.h"
#include "core/qzdatabase/arquivo/ServicosDeArquivo.h"
#include "core/qzdatabase/disco/AberturaArquivo.h"
#include "core/qzdatabase/disco/CodigosArquivo.h"
#include "core/qzdatabase/disco/TransacaoGravacao.h"

/// Name of the list of created files (IListaCriados), which is a data file too.
inline constexpr char kArquivoControle[] = "QZDATABASE_FILE_CTRL.DAT";

/// What a file's copy in memory is worth.
enum class EMemoria : unsigned char {
  NadaCarregado,   ///< not initialised; memory is empty
  NuncaExistiu,    ///< no file when last looked at; memory is empty
  IgualAoArquivo,  ///< the file is open and memory is what it holds, but for what a pending write has changed on disk
  Recarregar,      ///< memory is not to be served: the file must be opened and loaded again
};

/// One file of a database: a name in a directory, its content in memory, and three things that each have a class of
/// their own: the handle and whether others changed the file (CQZAberturaArquivo), the header (CQZCabecalhoVigente),
/// the write that is under way (CQZTransacaoGravacao). Those answer with values; the members here are the steps that
/// the error log shows.
///
/// Where the suite has headers switched on, the file's records stand behind a header of 92 bytes (CabecalhoArquivo.h),
/// which is created when it is missing, checked when the file is opened and may have changed, and brought up to date by
/// Flush. The switch is read at initialisation and holds until the object is initialised again.
///
/// Every operation begins with AsseguraMemoria: memory that does not equal the file is loaded again, and where that
/// fails the operation answers the file's code, never "nothing there". Whatever closes the file to open it again puts
/// memory into Recarregar first, so that a failure or a fault half way leaves nothing that could be served by mistake.
///
/// Derived files hold the form that the content has in memory. A file is addressed by module, company and name; the
/// path is composed anew at every open. The file registers itself with its database, which initialises and finishes it
/// and must outlive it.
///
/// Threads: the derived classes' reads and writes and OnFinaliza take the file's lock. AbreArquivo is called with the
/// lock held, or before the object is shared. Whoever lets readers in beside the holder of that lock, as the typed file
/// does, changes memory only with Leitores held for writing as well, and reads it with either of the two.
class CQZFileBase : public CQZInicializador {
public:
  ~CQZFileBase() override;

  /// Opens the file, or does nothing when it is open in this very mode. A file open in another mode is closed and
  /// opened again; when that fails it is put back into its old mode and stays usable, and when the file was changed by
  /// others meanwhile its header is checked again and the content in memory is loaded anew. Sharing conflicts are
  /// retried for about one second. A file whose header does not hold stays closed. A file that gets its header on this
  /// occasion, or is created, is left open for reading and writing, whatever the mode asked for.
  [[nodiscard]] HRESULT AbreArquivo(EModoAbertura eModoAbertura = eModoLeituraGravacao);

  /// True when the file is open; does not look at the disk.
  bool ExisteArquivo() const { return m_abertura.Aberto(); }

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
    return CodigoDaFalha(falha);
  }
  /// Result code of a file failure on write paths: the same table.
  [[nodiscard]] static HRESULT CatchGravacao(const plataforma::FalhaArquivo &falha) { return CodigoDaFalha(falha); }

  /// True for the file codes after which a writer stops trying.
  static bool EhUmaExcecaoFatal(HRESULT hr) { return EhCodigoFatal(hr); }

  /// False for files that are never in the list of created files: "TRA" and "OFL" companions and the list itself.
  static bool Controlado(const CString &sNomeArquivo);
  /// Empties the first line of a file in its directory's list, on the storage device too: what depends on it, a
  /// deletion for one, may follow. A file that is not listed, or a missing list, is no matter; `*pbEstava`, where it is
  /// asked for, tells whether an entry was emptied, which it may have been on failure too.
  [[nodiscard]] static HRESULT RemoveControleCriacaoArquivos(const IQZDF_Profiler &dono, ModuloQZ eModulo,
                                                             const CString &sNomeArquivo, bool *pbEstava = nullptr);
  /// Puts a file into its directory's list.
  [[nodiscard]] static HRESULT CriaControleCriacaoArquivos(const IQZDF_Profiler &dono, ModuloQZ eModulo,
                                                           const CString &sNomeArquivo);

  /// For the database: it is gone, the file outlives it.
  void Desliga() { m_pDataBase = nullptr; }

protected:
  CQZFileBase(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase);

  [[nodiscard]] HRESULT OnInicializa() override;

  /// Undoes what is pending, brings the header up to date and closes the file, all under the lock; the failure of
  /// either is told. Derived files call it with the lock held and empty their memory afterwards.
  [[nodiscard]] HRESULT OnFinaliza() override;

  /// Loads the content of the open file into memory, replacing what is there. On failure memory may be anything.
  [[nodiscard]] virtual HRESULT CarregaMemoria() = 0;
  /// Reads all data behind the header and gives their CRC, for the check of the header. Where CarregaMemoria is to
  /// follow (VaiCarregar) a derived file may keep what it reads, and load that where the check has passed
  /// (DadosConferidos).
  virtual plataforma::FalhaArquivo CrcDosDados(std::uint64_t *puiCrc);
  /// Empties the memory copy.
  virtual void EsvaziaMemoria() = 0;

  /// The last step of a derived file's OnInicializa, after AbreArquivo(eModoLeitura): memory of the open or missing
  /// file.
  [[nodiscard]] HRESULT CarregaAoInicializar();

  /// The first step of every operation. With the lock held.
  [[nodiscard]] HRESULT AsseguraMemoria();
  /// What memory is worth at this moment. Any thread, without the lock; by the next moment somebody may have begun to
  /// open the file again, so whoever has not got the lock asks once. The content itself changes only while nobody has
  /// Leitores.
  EMemoria Memoria() const {
    return m_leitores.Suspeita() ? EMemoria::Recarregar : m_eMemoria.load(std::memory_order_acquire);
  }
  /// True when AsseguraMemoria has nothing to do.
  bool MemoriaServe() const { return Memoria() != EMemoria::Recarregar; }

  /// Memory is not what the open file holds, and will be.
  bool VaiCarregar() const {
    return m_eMemoria == EMemoria::NadaCarregado || (!MemoriaServe() && !m_abertura.MesmoArquivo());
  }
  /// CrcDosDados has read the data of this opening, and the header vouches for them.
  bool DadosConferidos() const { return m_bDadosConferidos; }

  /// Bytes in front of the first record: 92 or 0. Constant from initialisation to the next one.
  std::uint64_t TamanhoCabecalho() const { return m_cabecalho.Tamanho(); }

  /// Length of the records. Shorter than the header is FimDeArquivo.
  plataforma::FalhaArquivo TamanhoDados(std::uint64_t *puiTamanho);

  /// Runs `tentativa` up to 50 times, 10 ms apart, until it succeeds or fails fatally. What is pending is undone before
  /// each attempt and after the last. `fixaLugar`, which opens the file for writing, runs before the first attempt,
  /// and again when the file was loaded anew or lost in between, for the place of the write must never depend on what a
  /// failed attempt left; its failure ends the write. Both trace their failures.
  template <typename P, typename F>
  [[nodiscard]] HRESULT TentaGravar(P &&fixaLugar, F &&tentativa);

  /// Undoes a write that is pending; nothing pending is no work. With the lock held.
  [[nodiscard]] HRESULT RestauraPendencia();

  /// The write under way: Inicia, NotaAntigo, Grava by the derived file, Confirma once memory has the records.
  CQZTransacaoGravacao &Transacao() { return m_transacao; }

  /// The file was missing when this object looked for it, and no write of this object has succeeded yet: a file of that
  /// name without content is to be filled, not refused.
  bool ACriar() const { return m_bACriar; }
  void ConfirmaGravacao();

  /// Deletes a file that was ACriar when a write failed and that has no content. Where that fails it stays so.
  void DesfazCriacao();

  /// Closes the file; for a derived file's OnInicializa, which opens it again.
  void FechaArquivo() { m_abertura.Fecha(); }

  /// Full path of the file for the present company.
  CString CaminhoCompleto() const { return CQZPath::CaminhoArquivo(m_eModulo, GetEmpresa(), m_sNomeArquivo); }

  plataforma::IArquivoAberto &Arquivo() { return m_abertura.Arquivo(); }
  plataforma::SecaoCritica &Secao() const { return m_secao; }
  /// Under which readers look at memory while somebody else has the file's lock. Suspeita after a machine fault in the
  /// middle of a change; loading memory anew has to end that.
  plataforma::SecaoCompartilhada &Leitores() const { return m_leitores; }
  ModuloQZ GetModulo() const { return m_eModulo; }

private:
  class EntradaPendente;

  [[nodiscard]] HRESULT AbreNoModo(EModoAbertura eModoAbertura, bool bCriando, bool bOutraVez = false);
  [[nodiscard]] HRESULT CriaEAbre(const CQZRastro &rastro, EModoAbertura eModoAbertura);
  [[nodiscard]] HRESULT AposAbrir(EModoAbertura eModoAbertura);
  [[nodiscard]] HRESULT ReabreUmaVez();
  void VoltaAoModo(EModoAbertura eModoAnterior);
  void LargaArquivo();
  bool TrocaArquivoMorto();
  EVeredito AposTentativaFalha(HRESULT hr);

  [[nodiscard]] HRESULT GerenciaControleCriacaoArquivos(EModoAbertura eModoAbertura,
                                                        std::unique_ptr<IListaCriados> *pLista,
                                                        bool *pbListadoEPresente);
  [[nodiscard]] HRESULT PossuiControleCriacaoArquivos(IListaCriados &lista, bool *pbPossui);
  [[nodiscard]] static HRESULT CriaControleCriacaoArquivos(const IQZDF_Profiler &dono, IListaCriados &lista,
                                                           const CString &sNomeArquivo);

  [[nodiscard]] HRESULT GerenciaCabecalho();
  [[nodiscard]] HRESULT CriaCabecalhoSobTrava(const CQZRastro &rastro);
  [[nodiscard]] HRESULT PossuiCabecalho(bool *pbPossui);
  [[nodiscard]] HRESULT CriaCabecalho();
  [[nodiscard]] HRESULT EscreveCompanheiroComCabecalho(const CQZRastro &rastro);
  [[nodiscard]] HRESULT GeraDadosCabecalho(RegVersaoArquivo *pRegVersao, RegCabecalhoArquivo *pRegCabecalho);
  [[nodiscard]] HRESULT ValidaCabecalho();
  [[nodiscard]] HRESULT ValidaCabecalhoV01();
  plataforma::FalhaArquivo ExaminaCabecalho(HRESULT *phr);
  bool PodemSerZerosDeGravacaoInterrompida();
  bool ReparaGravacaoInterrompida();
  bool CriacaoInterrompida(bool bExiste) const;
  void ReconheceCriacao();
  void ConcluiCriacao();
  [[nodiscard]] HRESULT AtualizaCabecalho();

  CString m_sNomeArquivo;
  ModuloQZ m_eModulo;
  IDonoDeArquivos *m_pDataBase;
  mutable plataforma::SecaoCritica m_secao;
  mutable plataforma::SecaoCompartilhada m_leitores;
  const bool m_bFlushAdiado;
  bool m_bSemControle = false;
  bool m_bEntradaNova = false;  ///< added to the list of created files by the creation that is under way
  bool m_bACriar = false;
  bool m_bDadosConferidos = false;
  bool m_bExistiu = false;  ///< the file was open at some time since initialisation, so it is to be found

  std::atomic<EMemoria> m_eMemoria{EMemoria::NadaCarregado};
  std::uint64_t m_uiCargas = 0;  ///< how often memory was loaded: a place in the file holds for one of them

  CQZAberturaArquivo m_abertura;
  CQZCabecalhoVigente m_cabecalho;
  CQZTransacaoGravacao m_transacao{m_cabecalho, m_abertura.Intencao()};
};

template <typename P, typename F>
HRESULT CQZFileBase::TentaGravar(P &&fixaLugar, F &&tentativa) {
  HRESULT hr = codigos::kOk;
  std::optional<std::uint64_t> uiCargas;
  Insiste(kTentativasInsistencia, [&](bool) {
    hr = RestauraPendencia();
    if (!Falhou(hr) && (uiCargas != m_uiCargas || !ExisteArquivo())) {
      hr = fixaLugar();
      uiCargas = m_uiCargas;
      if (Falhou(hr)) {
        return EVeredito::Acabou;
      }
    }
    hr = Falhou(hr) ? hr : tentativa();
    return Falhou(hr) ? AposTentativaFalha(hr) : EVeredito::Acabou;
  });
  if (Falhou(hr)) {
    static_cast<void>(RestauraPendencia());
  }
  return hr;
}

#endif
