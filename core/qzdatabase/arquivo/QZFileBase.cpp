#include "core/qzdatabase/arquivo/QZFileBase.h"

#include "core/platform/CodigoEstrangeiro.h"
#include "core/platform/LivroDaThread.h"
#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/platform/Travas.h"
#include "core/qzdatabase/disco/NomeTrava.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"

using plataforma::CausaArquivo;
using plataforma::CQZTrava;
using plataforma::FalhaArquivo;

namespace {

constexpr char kFonteFileBase[] = "QZFileBase.cpp";

/// Switches the headers of all data files on when it is not 0; a number in the maker's key.
constexpr char kValorCabecalho[] = "QZDataBase_HabilitarCabecalho";

/// How long one process waits for another that gives the same file its header.
constexpr std::uint32_t kEsperaCabecalhoMs = 60000;

}  // namespace

CQZFileBase::CQZFileBase(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase)
    : m_sNomeArquivo(sNomeArquivo),
      m_eModulo(pDataBase->GetModulo()),
      m_pDataBase(pDataBase),
      m_secao(pDataBase->NivelDosArquivos()),
      m_bFlushAdiado(pDataBase->FlushAdiado()) {
  pDataBase->AddFile(this);
}

CQZFileBase::~CQZFileBase() {
  if (m_pDataBase != nullptr) {
    m_pDataBase->RemoveFile(this);
  }
}

// Opening.

HRESULT CQZFileBase::AbreArquivo(EModoAbertura eModoAbertura) {
  return AbreNoModo(eModoAbertura, false);
}

/// While a file is being created its entry in the list of created files stands already. An entry without a file would
/// lock the company out, so it goes again unless the file is known to be there: when the creation has failed, was
/// thrown out of, or abandoned after a machine fault. A file that is there without an entry harms nobody.
class CQZFileBase::EntradaPendente {
public:
  explicit EntradaPendente(CQZFileBase &file)
      : m_file(file), m_noLivro(&file, [](void *pFile) { Desfaz(*static_cast<CQZFileBase *>(pFile)); }) {}
  ~EntradaPendente() { Desfaz(m_file); }
  EntradaPendente(const EntradaPendente &) = delete;
  EntradaPendente &operator=(const EntradaPendente &) = delete;

private:
  static void Desfaz(CQZFileBase &file) noexcept {
    try {
      if (file.m_bEntradaNova) {
        if (!Falhou(RemoveControleCriacaoArquivos(file, file.m_eModulo, file.m_sNomeArquivo))) {
          CQZIntencaoGravacao::Esquece(file.CaminhoCompleto());
        }
      }
      file.m_bEntradaNova = false;
    } catch (...) {
      // Nothing more can be done: the next open reports the entry.
      return;
    }
  }

  CQZFileBase &m_file;
  plataforma::CQZNoLivro m_noLivro;
};

/// `bCriando` is set for the two opens of CriaEAbre: the creation leaves alone what is there by then, and a file that
/// is missing again is not created again. `bOutraVez` is set for the second look at a file that went meanwhile.
HRESULT CQZFileBase::AbreNoModo(EModoAbertura eModoAbertura, bool bCriando, bool bOutraVez) {
  const CQZOperacao rastro(this, {"CQZFileBase::AbreArquivo"}, kFonteFileBase);
  if (m_abertura.Modo() == eModoAbertura && MemoriaServe()) {
    return codigos::kOk;
  }
  // In a reading mode what is pending could not be undone any more; opening for writing undoes it in AposAbrir.
  if (eModoAbertura != eModoLeituraGravacao) {
    QZ_VERIFICA(rastro, "RestauraPendencia()", RestauraPendencia());
  }
  std::optional<EntradaPendente> entradaPendente;
  if (eModoAbertura == eModoCriacao) {
    entradaPendente.emplace(*this);
  }
  // Consulted while the file is still open: a failure leaves the object as it was. A list that has got an entry is held
  // until the file is there, or another program would find the one without the other.
  std::unique_ptr<IListaCriados> pLista;
  bool bListadoEPresente = false;
  QZ_VERIFICA(rastro, "GerenciaControleCriacaoArquivos(eModoAbertura)",
              GerenciaControleCriacaoArquivos(eModoAbertura, &pLista, &bListadoEPresente));

  // From here on the object must be put back into what it was wherever the file cannot be had.
  const EModoAbertura eModoAnterior = m_abertura.Modo();
  const EMemoria eMemoriaAnterior = m_eMemoria;
  LargaArquivo();
  const bool bCria = bCriando && eModoAbertura == eModoCriacao;
  const HRESULT hr = bCria ? m_abertura.Cria(CaminhoCompleto()) : m_abertura.Abre(CaminhoCompleto(), eModoAbertura);
  pLista.reset();
  // With the file there the entry stays, whatever fails from here on.
  m_bEntradaNova = m_bEntradaNova && Falhou(hr);
  if (ExisteArquivo()) {
    m_bACriar = m_bACriar || bCria || eMemoriaAnterior == EMemoria::NuncaExistiu;
    return AposAbrir(m_abertura.Modo());
  }
  // A file whose content is in memory, and which is gone, is told and never taken for one that has yet to be created.
  if (!m_bExistiu) {
    m_eMemoria = eMemoriaAnterior;
  }
  if (hr == codigos::kArqNaoEncontrado && bListadoEPresente && !m_bExistiu) {
    // It went since the list was consulted: taken for one that never was, it would be created anew. By now the list
    // says whether it went on purpose.
    return bOutraVez ? rastro.Codigo(codigos::kArquivoDesapareceu, __LINE__)
                     : AbreNoModo(eModoAbertura, bCriando, true);
  }
  if (!Falhou(hr) || (hr == codigos::kArqNaoEncontrado && !m_bExistiu && eModoAbertura == eModoLeitura)) {
    return codigos::kOk;
  }
  if (hr == codigos::kArqNaoEncontrado && !m_bExistiu && eModoAbertura != eModoCriacao && !bCriando) {
    return CriaEAbre(rastro, eModoAbertura);
  }
  VoltaAoModo(eModoAnterior);
  return rastro.Codigo(hr, __LINE__);
}

HRESULT CQZFileBase::CriaEAbre(const CQZRastro &rastro, EModoAbertura eModoAbertura) {
  QZ_VERIFICA(rastro, "AbreArquivo(eModoCriacao)", AbreNoModo(eModoCriacao, true));
  QZ_VERIFICA(rastro, "AbreArquivo(eModoAbertura)", AbreNoModo(eModoAbertura, true));
  return codigos::kOk;
}

/// Closes the file to open it again. Only memory that equals the file may be kept when the file turns out the same.
void CQZFileBase::LargaArquivo() {
  if (m_eMemoria == EMemoria::IgualAoArquivo) {
    m_eMemoria = EMemoria::Recarregar;
    m_abertura.FechaParaReabrir();
    return;
  }
  m_abertura.Fecha();
  if (m_eMemoria == EMemoria::NuncaExistiu) {
    m_eMemoria = EMemoria::Recarregar;
  }
}

/// A file that cannot be had in another mode stays usable in the one it had. One attempt: the operation has waited long
/// enough, and the next one tries again.
void CQZFileBase::VoltaAoModo(EModoAbertura eModoAnterior) {
  const EModoAbertura eModo = eModoAnterior == eModoCriacao ? eModoLeitura : eModoAnterior;
  if (eModo != eModoFechado && !Falhou(m_abertura.Abre(CaminhoCompleto(), eModo, 1))) {
    static_cast<void>(AposAbrir(eModo));
  }
}

/// Everything that an opened file needs before it is used: a write that was pending when its handle was lost, its
/// header, its content in memory. On failure the file is closed, and memory loaded before is not served.
HRESULT CQZFileBase::AposAbrir(EModoAbertura eModoAbertura) {
  const CQZRastro rastro(this, {"CQZFileBase::AbreArquivo"}, kFonteFileBase);
  m_bExistiu = true;
  m_bDadosConferidos = false;
  // Checking means reading all of the file: only one that others may have written to is checked again.
  if (!m_abertura.MesmoArquivo()) {
    m_cabecalho.Esquece();
  }
  HRESULT hr = codigos::kOk;
  // Before the header is looked at: half a write of ours is what it would find damaged.
  if (m_transacao.Pendente() && eModoAbertura == eModoLeituraGravacao) {
    static_cast<void>(
        QZ_FALHOU(rastro, hr, "RestauraPendencia()", CatchGravacao(m_transacao.DesfazSeNossa(Arquivo()))));
  }
  if (!Falhou(hr) && eModoAbertura != eModoLeituraCompartilhada) {
    static_cast<void>(QZ_FALHOU(rastro, hr, "GerenciaCabecalho()", GerenciaCabecalho()));
  }
  // The same file has the content that memory was loaded with; only its state was given up.
  if (!Falhou(hr) && !MemoriaServe() && !m_abertura.MesmoArquivo()) {
    ++m_uiCargas;
    static_cast<void>(QZ_FALHOU(rastro, hr, "CarregaMemoria()", CarregaMemoria()));
  }
  // Closed, so that no operation works on a file that was not examined to the end.
  if (Falhou(hr)) {
    m_abertura.Fecha();
    m_cabecalho.Esquece();
  } else if (!MemoriaServe()) {
    m_eMemoria = EMemoria::IgualAoArquivo;
  }
  if (!Falhou(hr) && m_bACriar) {
    ReconheceCriacao();
  }
  return hr;
}

HRESULT CQZFileBase::AsseguraMemoria() {
  return MemoriaServe() ? codigos::kOk : ReabreUmaVez();
}

HRESULT CQZFileBase::ReabreUmaVez() {
  const CQZRastro rastro(this, {"CQZFileBase::AbreArquivo"}, kFonteFileBase);
  const EModoAbertura eModo = m_transacao.Pendente() ? eModoLeituraGravacao : eModoLeitura;
  if (ExisteArquivo()) {
    m_abertura.Fecha();
  }
  const HRESULT hr = m_abertura.Abre(CaminhoCompleto(), eModo, 1);
  if (hr == codigos::kArqNaoEncontrado && !m_bExistiu) {
    // An exception ended its creation half way.
    m_eMemoria = EMemoria::NuncaExistiu;
    return codigos::kOk;
  }
  return Falhou(hr) ? rastro.Codigo(hr, __LINE__) : AposAbrir(eModo);
}

/// True when the handle had died and the file is at hand again, looked at anew.
bool CQZFileBase::TrocaArquivoMorto() {
  if (!m_abertura.TrocaSeMorto(CaminhoCompleto())) {
    return false;
  }
  if (m_eMemoria == EMemoria::IgualAoArquivo) {
    m_eMemoria = EMemoria::Recarregar;
  }
  return !Falhou(AposAbrir(m_abertura.Modo()));
}

// Lifecycle.

HRESULT CQZFileBase::OnInicializa() {
  const CQZOperacao rastro(this, {"CQZFileBase::OnInicializa"}, kFonteFileBase);
  m_abertura.Fecha();  // a failed initialisation leaves its handle open
  m_transacao.Confirma();
  m_bACriar = false;
  m_bExistiu = false;
  m_bDadosConferidos = false;
  m_eMemoria = EMemoria::NadaCarregado;
  const bool bLigado = plataforma::Registro().LeNumero(kChaveSuite, kValorCabecalho).value_or(0) != 0;
  const bool bTemCabecalho = bLigado && !CQZPath::TemExtensao(m_sNomeArquivo, "TRA");
  m_cabecalho.Define(bTemCabecalho, m_sNomeArquivo, 0);
  if (!bLigado) {
    return codigos::kOk;
  }
  CQZBaseParaRotinas baseParaRotinas;
  QZ_VERIFICA(rastro, "baseParaRotinas.Inicializa(this)", baseParaRotinas.Inicializa(*this));
  CQZDadosInstalacao dados;
  QZ_VERIFICA(rastro, "LeDadosInstalacao(baseParaRotinas, m_pDadosInstalacao)",
              LeDadosInstalacao(baseParaRotinas, &dados));
  m_cabecalho.Define(bTemCabecalho, m_sNomeArquivo, dados.uiCodigo);
  return codigos::kOk;
}

HRESULT CQZFileBase::CarregaAoInicializar() {
  EsvaziaMemoria();
  if (ExisteArquivo()) {
    ++m_uiCargas;
    const HRESULT hr = CarregaMemoria();
    if (Falhou(hr)) {
      EsvaziaMemoria();
      return hr;
    }
  }
  m_eMemoria = ExisteArquivo() ? EMemoria::IgualAoArquivo : EMemoria::NuncaExistiu;
  return codigos::kOk;
}

/// The header is not brought up to date over a write that could not be undone: it would vouch for half of it.
HRESULT CQZFileBase::OnFinaliza() {
  const CQZOperacao rastro(this, {"CQZFileBase::OnFinaliza"}, kFonteFileBase);
  const CQZTrava trava(m_secao);
  HRESULT hr = codigos::kOk;
  if (!QZ_FALHOU(rastro, hr, "RestauraPendencia()", RestauraPendencia()) && ExisteArquivo() && MemoriaServe()) {
    static_cast<void>(QZ_FALHOU(rastro, hr, "Flush(true)", Flush(true)));
  }
  m_abertura.Fecha();
  m_transacao.Confirma();
  m_bACriar = false;
  m_bExistiu = false;
  m_eMemoria = EMemoria::NadaCarregado;
  return hr;
}

// Writing.

HRESULT CQZFileBase::Flush(bool bForcar) {
  const CQZEscopoProfiler escopo(this, {"CQZFileBase::Flush"});
  if ((!bForcar && m_bFlushAdiado) || m_abertura.Modo() != eModoLeituraGravacao) {
    return codigos::kOk;
  }
  return AtualizaCabecalho();
}

HRESULT CQZFileBase::DescarregaNoDisco() {
  const CQZRastro rastro(this, {"CQZFileBase::DescarregaNoDisco"}, kFonteFileBase);
  const CQZTrava trava(m_secao);
  if (!ExisteArquivo()) {
    return codigos::kOk;
  }
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(Arquivo().Descarrega()));
  return codigos::kOk;
}

HRESULT CQZFileBase::RestauraPendencia() {
  if (!m_transacao.Pendente()) {
    return codigos::kOk;
  }
  if (!ExisteArquivo() || !MemoriaServe()) {
    return ReabreUmaVez();
  }
  const CQZRastro rastro(this, {"CQZFileBase::RestauraPendencia"}, kFonteFileBase);
  HRESULT hr = codigos::kOk;
  if (QZ_FALHOU(rastro, hr, "CatchGravacao(pEx)", CatchGravacao(m_transacao.Desfaz(Arquivo()))) ||
      QZ_FALHOU(rastro, hr, "Flush()", Flush())) {
    return TrocaArquivoMorto() ? codigos::kOk : hr;
  }
  m_transacao.Confirma();
  return codigos::kOk;
}

/// A failure that was that of a dead handle is none of the file.
EVeredito CQZFileBase::AposTentativaFalha(HRESULT hr) {
  return TrocaArquivoMorto() || !EhUmaExcecaoFatal(hr) ? EVeredito::OutraVez : EVeredito::Acabou;
}

void CQZFileBase::ConfirmaGravacao() {
  m_transacao.Confirma();
  if (m_bACriar) {
    ConcluiCriacao();
  }
}

/// What an interrupted creation has come to was found whole: from here on the file's absence means that it has gone.
void CQZFileBase::ReconheceCriacao() {
  const bool bExaminado = m_abertura.Modo() != eModoLeituraCompartilhada && !m_transacao.Pendente();
  std::uint64_t uiTamanho = 0;
  if (bExaminado && !TamanhoDados(&uiTamanho) && uiTamanho != 0) {
    ConcluiCriacao();
  }
}

void CQZFileBase::ConcluiCriacao() {
  m_bACriar = false;
  // With a header the companion may be in use by now, and goes when the file is closed.
  plataforma::ChamaCodigoEstrangeiro([this] { CQZIntencaoGravacao::Esquece(CaminhoCompleto()); });
}

void CQZFileBase::DesfazCriacao() {
  if (!m_bACriar) {
    return;
  }
  // Nobody deletes an open file, not even who has it open.
  LargaArquivo();
  const CString sCaminho = CaminhoCompleto();
  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = plataforma::Arquivos().TamanhoDe(sCaminho, &uiTamanho);
  if (!falha) {
    // With content it is a write that could not be undone, or somebody else's by now.
    if (uiTamanho > TamanhoCabecalho() || Falhou(RemoveControleCriacaoArquivos(*this, m_eModulo, m_sNomeArquivo))) {
      return;
    }
    falha = plataforma::Arquivos().Apaga(sCaminho);
  }
  if (!falha || falha.NaoEsta()) {
    CQZIntencaoGravacao::Esquece(sCaminho);
    m_bACriar = false;
    m_bExistiu = false;
    m_transacao.Confirma();
    EsvaziaMemoria();
    m_eMemoria = EMemoria::NuncaExistiu;
  }
}

FalhaArquivo CQZFileBase::TamanhoDados(std::uint64_t *puiTamanho) {
  std::uint64_t uiTamanho = 0;
  if (const FalhaArquivo falha = Arquivo().Tamanho(&uiTamanho)) {
    return falha;
  }
  if (uiTamanho < TamanhoCabecalho()) {
    return {CausaArquivo::FimDeArquivo, 0};
  }
  *puiTamanho = uiTamanho - TamanhoCabecalho();
  return plataforma::kSemFalha;
}

// Companions and copies.

HRESULT CQZFileBase::DeletaArquivoOffline() {
  const CQZOperacao rastro(this, {"CQZFileBase::DeletaArquivoOffline"}, kFonteFileBase);
  if (ApagaInsistindo(CQZPath::ChangeExtension(CaminhoCompleto(), "OFL"))) {
    QZ_RETORNA_CODIGO(rastro, codigos::kOfflineNaoApagado);
  }
  return codigos::kOk;
}

HRESULT CQZFileBase::CopiaArquivoPara(const CString &sEmpresa, ModuloQZ qzModulo) {
  const CQZOperacao rastro(this, {"CQZFileBase::CopiaArquivoPara"}, kFonteFileBase);
  // Initialising the destination would delete the source.
  const CString sDestino = CQZPath::CaminhoArquivo(qzModulo, sEmpresa, m_sNomeArquivo);
  if (plataforma::Maiusculas(sDestino) == plataforma::Maiusculas(CaminhoCompleto())) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoApagado);
  }
  const CQZTrava trava(m_secao);
  // A source that has only lost its handle is not an empty one, and one with half a write is not to be copied.
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  QZ_VERIFICA(rastro, "RestauraPendencia()", RestauraPendencia());
  const auto pDestino = ServicosDeArquivo().DestinoCopia(qzModulo, m_sNomeArquivo, true);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(sEmpresa, ( 0xffff ), 0)",
              pDestino->Inicializa(CQZProfilerEmpresa(sEmpresa, kUsuarioInterno, 0)));

  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = ExisteArquivo() ? Arquivo().Tamanho(&uiTamanho) : plataforma::kSemFalha;
  if (!falha && uiTamanho == 0) {
    return codigos::kOk;
  }
  if (!falha) {
    // Of this file's own module, whatever the destination's is: what the suite's programs rely on.
    QZ_VERIFICA(rastro, "CQZDataBaseUtil::DeletaArquivo(sEmpresa, m_eModulo, m_sNomeArquivo)",
                ServicosDeArquivo().DeletaArquivo(sEmpresa, m_eModulo, m_sNomeArquivo));
    QZ_VERIFICA(rastro, "qzFileDestino.AbreArquivo(eModoLeituraGravacao)", pDestino->AbreArquivo(eModoLeituraGravacao));
    falha = PercorreArquivo(Arquivo(), 0, [&](std::uint64_t uiPosicao, const char *pBytes, std::size_t qtd) {
      return pDestino->Arquivo().Grava(uiPosicao, pBytes, qtd);
    });
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  return codigos::kOk;
}

// The list of created files.

bool CQZFileBase::Controlado(const CString &sNomeArquivo) {
  return !CQZPath::TemExtensao(sNomeArquivo, "TRA") && !CQZPath::TemExtensao(sNomeArquivo, "OFL") &&
         sNomeArquivo != kArquivoControle;
}

/// With a new entry `*pLista` receives the list, still open. `*pbListadoEPresente` is set for a file that is listed and
/// was there when the list was consulted.
HRESULT CQZFileBase::GerenciaControleCriacaoArquivos(EModoAbertura eModoAbertura,
                                                     std::unique_ptr<IListaCriados> *pLista, bool *pbListadoEPresente) {
  const CQZRastro rastro(this, {"CQZFileBase::GerenciaControleCriacaoArquivos"}, kFonteFileBase);
  if (m_bSemControle) {
    QZ_VERIFICA(rastro, "RemoveControleCriacaoArquivos()",
                RemoveControleCriacaoArquivos(*this, m_eModulo, m_sNomeArquivo));
    return codigos::kOk;
  }
  if (!Controlado(m_sNomeArquivo)) {
    return codigos::kOk;
  }
  bool bPossui = false;
  auto pConsultada = ServicosDeArquivo().ListaCriados(m_eModulo);
  QZ_VERIFICA(rastro, "PossuiControleCriacaoArquivos(&bPossui)", PossuiControleCriacaoArquivos(*pConsultada, &bPossui));
  if (bPossui) {
    // While the list is held nobody takes the entry out and then the file away.
    bool bExiste = false;
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
                CatchInicializacao(plataforma::Arquivos().Existe(CaminhoCompleto(), &bExiste)));
    const bool bInterrompida = CriacaoInterrompida(bExiste);
    if (!bExiste && !bInterrompida) {
      QZ_RETORNA_CODIGO(rastro, codigos::kArquivoDesapareceu);
    }
    m_bACriar = m_bACriar || (bExiste && bInterrompida);
    *pbListadoEPresente = bExiste;
  } else if (eModoAbertura == eModoCriacao) {
    // Flag and note come before the entry: an end between them leaves a note without an entry, which harms nobody.
    m_bEntradaNova = true;
    CQZIntencaoGravacao::AnotaCriacao(CaminhoCompleto(), m_sNomeArquivo);
    QZ_VERIFICA(rastro, "CriaControleCriacaoArquivos()",
                CriaControleCriacaoArquivos(*this, *pConsultada, m_sNomeArquivo));
    *pLista = std::move(pConsultada);
  }
  return codigos::kOk;
}

/// True when a process has ended between the file's entry and its first content: the file is still to be created, or
/// to be filled. Content is taken for what it is: from then on the file's absence means that it has gone.
bool CQZFileBase::CriacaoInterrompida(bool bExiste) const {
  using Criacao = CQZIntencaoGravacao::Criacao;
  const CString sCaminho = CaminhoCompleto();
  const Criacao eCriacao = CQZIntencaoGravacao::CriacaoAnotada(sCaminho, m_sNomeArquivo);
  if (!bExiste || eCriacao != Criacao::Criacao) {
    return eCriacao != Criacao::Nada;
  }
  std::uint64_t uiTamanho = 0;
  const bool bTemConteudo = plataforma::Arquivos().TamanhoDe(sCaminho, &uiTamanho) || uiTamanho > TamanhoCabecalho();
  if (bTemConteudo) {
    CQZIntencaoGravacao::Esquece(sCaminho);
  }
  return !bTemConteudo;
}

HRESULT CQZFileBase::PossuiControleCriacaoArquivos(IListaCriados &lista, bool *pbPossui) {
  const CQZRastro rastro(this, {"CQZFileBase::PossuiControleCriacaoArquivos"}, kFonteFileBase);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", lista.Inicializa(*this));
  *pbPossui = lista.Procura(m_sNomeArquivo) != 0;
  return codigos::kOk;
}

HRESULT CQZFileBase::CriaControleCriacaoArquivos(const IQZDF_Profiler &dono, IListaCriados &lista,
                                                 const CString &sNomeArquivo) {
  const CQZRastro rastro(&dono, {"CQZFileBase::CriaControleCriacaoArquivos"}, kFonteFileBase);
  QZ_VERIFICA(rastro, "qzTextFile.Grava(uiPosicao, m_sNomeArquivo)", lista.Acrescenta(sNomeArquivo));
  return codigos::kOk;
}

HRESULT CQZFileBase::CriaControleCriacaoArquivos(const IQZDF_Profiler &dono, ModuloQZ eModulo,
                                                 const CString &sNomeArquivo) {
  const CQZRastro rastro(&dono, {"CQZFileBase::CriaControleCriacaoArquivos"}, kFonteFileBase);
  const auto pLista = ServicosDeArquivo().ListaCriados(eModulo);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", pLista->Inicializa(dono));
  return CriaControleCriacaoArquivos(dono, *pLista, sNomeArquivo);
}

HRESULT CQZFileBase::RemoveControleCriacaoArquivos(const IQZDF_Profiler &dono, ModuloQZ eModulo,
                                                   const CString &sNomeArquivo, bool *pbEstava) {
  const CQZRastro rastro(&dono, {"CQZFileBase::RemoveControleCriacaoArquivos"}, kFonteFileBase);
  bool bExiste = false;
  const CString sCaminhoLista = CQZPath::CaminhoArquivo(eModulo, dono.GetEmpresa(), kArquivoControle);
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CatchInicializacao(plataforma::Arquivos().Existe(sCaminhoLista, &bExiste)));
  if (!bExiste) {
    return codigos::kOk;
  }
  const auto pLista = ServicosDeArquivo().ListaCriados(eModulo);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", pLista->Inicializa(dono));
  const std::uint64_t uiPosicao = pLista->Procura(sNomeArquivo);
  if (uiPosicao == 0) {
    return codigos::kOk;
  }
  QZ_VERIFICA(rastro, "qzTextFile.Grava(uiPosicao, \"\")", pLista->Esvazia(uiPosicao));
  if (pbEstava != nullptr) {
    *pbEstava = true;
  }
  QZ_VERIFICA(rastro, "qzTextFile.DescarregaNoDisco()", pLista->Descarrega());
  return codigos::kOk;
}

// The header.

HRESULT CQZFileBase::GerenciaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::GerenciaCabecalho"}, kFonteFileBase);
  if (m_cabecalho.Conferido()) {
    return codigos::kOk;
  }
  bool bPossui = false;
  QZ_VERIFICA(rastro, "PossuiCabecalho()", PossuiCabecalho(&bPossui));
  if (!bPossui) {
    return CriaCabecalhoSobTrava(rastro);
  }
  QZ_VERIFICA(rastro, "ValidaCabecalho()", ValidaCabecalho());
  return codigos::kOk;
}

/// Two programs that give one file its header at the same time would take each other's companion away, so one lets the
/// other finish and looks again. It lets go of the file meanwhile: the other one needs it.
HRESULT CQZFileBase::CriaCabecalhoSobTrava(const CQZRastro &rastro) {
  const CString sCaminho = CaminhoCompleto();
  const auto pTrava = plataforma::CriaTravaEntreProcessos(NomeTravaDoCaminho("Cabecalho", sCaminho));
  std::optional<plataforma::CQZTravaDeProcesso> trava(std::in_place, *pTrava, 0);
  bool bPossui = false;
  if (!trava->Tomada()) {
    const EModoAbertura eModo = m_abertura.Modo() == eModoCriacao ? eModoLeituraGravacao : m_abertura.Modo();
    m_abertura.Fecha();
    trava.emplace(*pTrava, kEsperaCabecalhoMs);
    if (!trava->Tomada()) {
      QZ_RETORNA_CODIGO(rastro, codigos::kArqCompartilhamento);
    }
    QZ_VERIFICA(rastro, "AbreArquivo()", m_abertura.Abre(sCaminho, eModo));
    QZ_VERIFICA(rastro, "PossuiCabecalho()", PossuiCabecalho(&bPossui));
  }
  if (bPossui) {
    QZ_VERIFICA(rastro, "ValidaCabecalho()", ValidaCabecalho());
  } else {
    QZ_VERIFICA(rastro, "CriaCabecalho()", CriaCabecalho());
  }
  return codigos::kOk;
}

HRESULT CQZFileBase::PossuiCabecalho(bool *pbPossui) {
  const CQZRastro rastro(this, {"CQZFileBase::PossuiCabecalho"}, kFonteFileBase);
  std::uint16_t iVersao = 0;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CatchInicializacao(CQZCabecalhoVigente::LeVersao(Arquivo(), pbPossui, &iVersao)));
  return codigos::kOk;
}

HRESULT CQZFileBase::ValidaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::ValidaCabecalho"}, kFonteFileBase);
  bool bPossui = false;
  std::uint16_t iVersao = 0;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CatchInicializacao(CQZCabecalhoVigente::LeVersao(Arquivo(), &bPossui, &iVersao)));
  if (iVersao != kVersaoCabecalho) {
    QZ_RETORNA_CODIGO(rastro, codigos::kCabecalhoVersaoDesconhecida);
  }
  QZ_VERIFICA(rastro, "ValidaCabecalhoV01(regVersao)", ValidaCabecalhoV01());
  return codigos::kOk;
}

HRESULT CQZFileBase::ValidaCabecalhoV01() {
  const CQZRastro rastro(this, {"CQZFileBase::ValidaCabecalhoV01"}, kFonteFileBase);
  HRESULT hr = codigos::kOk;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(ExaminaCabecalho(&hr)));
  const bool bDuvidoso = !Falhou(hr) && PodemSerZerosDeGravacaoInterrompida();
  if (!Falhou(hr) && !bDuvidoso) {
    return hr;
  }
  // Traced before the repair, so that the log tells of the damage even where it is put right.
  const HRESULT hrDano = rastro.Codigo(bDuvidoso ? codigos::kDadosNaoConferem : hr, __LINE__);
  if (!ReparaGravacaoInterrompida() && !(bDuvidoso && m_abertura.Aberto())) {
    return hrDano;
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(ExaminaCabecalho(&hr)));
  return Falhou(hr) ? rastro.Codigo(hr, __LINE__) : hr;
}

/// Over zeros the header may hold although a write was interrupted. Where no note says so they are records.
bool CQZFileBase::PodemSerZerosDeGravacaoInterrompida() {
  std::uint64_t uiTamanho = 0;
  return m_cabecalho.CrcDados() == 0 && !Arquivo().Tamanho(&uiTamanho) && uiTamanho > kTamanhoCabecalho &&
         CQZIntencaoGravacao::AnotaCrescimentoDeZeros(CaminhoCompleto(), m_sNomeArquivo, uiTamanho);
}

FalhaArquivo CQZFileBase::ExaminaCabecalho(HRESULT *phr) {
  const auto leCrc = [this](std::uint64_t *puiCrc) { return CrcDosDados(puiCrc); };
  const FalhaArquivo falha = m_cabecalho.Examina(Arquivo(), leCrc, phr);
  m_bDadosConferidos = !falha && !Falhou(*phr);
  return falha;
}

FalhaArquivo CQZFileBase::CrcDosDados(std::uint64_t *puiCrc) {
  return CQZCabecalhoVigente::CrcDosDados(Arquivo(), puiCrc);
}

/// Header and data do not agree: a process may have ended between the two, and have noted what it was about. True when
/// the file was put right by that; it is open for reading and writing then. Whatever keeps it from being put right, the
/// answer is what is wrong with the file.
bool CQZFileBase::ReparaGravacaoInterrompida() {
  const CString sCaminho = CaminhoCompleto();
  bool bTemNota = false;
  if (plataforma::Arquivos().Existe(CQZIntencaoGravacao::Caminho(sCaminho), &bTemNota) || !bTemNota) {
    return false;
  }
  if (m_abertura.Modo() != eModoLeituraGravacao) {
    m_abertura.Fecha();
    if (Falhou(m_abertura.Abre(sCaminho, eModoLeituraGravacao, 1))) {
      return false;
    }
  }
  bool bReparado = false;
  const FalhaArquivo falha = CQZIntencaoGravacao::Repara(Arquivo(), sCaminho, m_sNomeArquivo, &bReparado);
  return !falha && bReparado;
}

/// The file gets its header by way of a complete copy, which replaces it in one step: at no moment is there less than
/// one whole file. It is closed for the move, and then looked at like any file that was out of our hands. It is left
/// open for reading and writing.
HRESULT CQZFileBase::CriaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::CriaCabecalho"}, kFonteFileBase);
  const CString sCaminho = CaminhoCompleto();
  // The companion holds every byte of the file; until the move the file itself is not touched.
  HRESULT hr = EscreveCompanheiroComCabecalho(rastro);
  if (!Falhou(hr)) {
    m_abertura.FechaParaReabrir();
    // Whoever kept us from moving may have written: a copy that is out of date must not replace the file.
    const auto confereOriginal = [&] {
      if (Falhou(m_abertura.Abre(sCaminho, eModoLeitura, 1))) {
        return EMovimento::Espera;
      }
      const bool bMesmo = m_abertura.MesmoArquivo();
      m_abertura.FechaParaReabrir();
      return bMesmo ? EMovimento::Tenta : EMovimento::Desiste;
    };
    static_cast<void>(QZ_FALHOU(rastro, hr,
                                "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), m_eModulo, m_sNomeArquivo)",
                                ServicosDeArquivo().MoveTRA(GetEmpresa(), m_eModulo, m_sNomeArquivo, confereOriginal)));
    m_abertura.Fecha();
  }
  if (Falhou(hr)) {
    static_cast<void>(ApagaInsistindo(CQZPath::ChangeExtension(sCaminho, "TRA")));
    return hr;
  }
  QZ_VERIFICA(rastro, "AbreArquivo()", m_abertura.Abre(sCaminho, eModoLeituraGravacao));
  QZ_VERIFICA(rastro, "ValidaCabecalho()", ValidaCabecalho());
  return codigos::kOk;
}

/// The copy is on the storage device, and closed, when this returns.
HRESULT CQZFileBase::EscreveCompanheiroComCabecalho(const CQZRastro &rastro) {
  const auto pDestino =
      ServicosDeArquivo().DestinoCopia(m_eModulo, CQZPath::ChangeExtension(m_sNomeArquivo, "TRA"), false);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", pDestino->Inicializa(*this));
  QZ_VERIFICA(rastro, "qzFileDestino.AbreArquivo()", pDestino->AbreArquivo(eModoLeituraGravacao));
  RegVersaoArquivo regVersao{};
  RegCabecalhoArquivo regCabecalho{};
  QZ_VERIFICA(rastro, "GeraDadosCabecalho(&regVersao, &regCabecalho, &aBuffer)",
              GeraDadosCabecalho(&regVersao, &regCabecalho));
  QZ_VERIFICA(
      rastro, "CatchInicializacao(pEx)",
      CatchInicializacao(CQZCabecalhoVigente::GravaCopia(Arquivo(), regVersao, regCabecalho, pDestino->Arquivo())));
  return codigos::kOk;
}

HRESULT CQZFileBase::GeraDadosCabecalho(RegVersaoArquivo *pRegVersao, RegCabecalhoArquivo *pRegCabecalho) {
  const CQZRastro rastro(this, {"CQZFileBase::GeraDadosCabecalho"}, kFonteFileBase);
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CatchInicializacao(m_cabecalho.GeraDados(Arquivo(), pRegVersao, pRegCabecalho)));
  return codigos::kOk;
}

HRESULT CQZFileBase::AtualizaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::AtualizaCabecalho"}, kFonteFileBase);
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(m_cabecalho.Atualiza(Arquivo())));
  return codigos::kOk;
}
