#include "core/qzdatabase/arquivo/QZFileBase.h"

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/banco/QZDataBase.h"
#include "core/qzdatabase/disco/Insistencia.h"

using plataforma::CausaArquivo;
using plataforma::CQZTrava;
using plataforma::FalhaArquivo;

namespace {

constexpr char kFonte[] = "QZFileBase.cpp";

/// Switches the headers of all data files on when it is not 0; a number in the maker's key.
constexpr char kValorCabecalho[] = "QZDataBase_HabilitarCabecalho";

plataforma::ModoAbertura ModoDoSistema(EModoAbertura eModo, bool bPreservaConteudo) {
  using namespace plataforma;
  switch (eModo) {
    case eModoLeituraGravacao:
      return {Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::SoExistente};
    case eModoCriacao:
      return {Acesso::Leitura, Compartilhamento::Exclusivo,
              bPreservaConteudo ? Criacao::AbreOuCria : Criacao::CriaVazio};
    case eModoLeituraCompartilhada:
      return {Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente};
    case eModoLeitura:
    case eModoFechado:
      break;
  }
  return {Acesso::Leitura, Compartilhamento::Exclusivo, Criacao::SoExistente};
}

}  // namespace

CQZFileBase::CQZFileBase(const CString &sNomeArquivo, CQZDataBase *pDataBase)
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

HRESULT CQZFileBase::AbreArquivo(EModoAbertura eModoAbertura) {
  return AbreNoModo(eModoAbertura, false);
}

/// While a file is being created its entry in the list of created files stands already. An entry without a file would
/// lock the company out, so it goes again when the creation comes to nothing: failed, thrown out of, or abandoned after
/// a machine fault.
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
      if (file.m_bEntradaNova && !ExisteNoCaminho(file.CaminhoCompleto())) {
        static_cast<void>(file.Controle().Remove());
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

/// `bCriando` is set for the two opens of CriaEAbre: the creation keeps what is there, and a file that is missing again
/// is not created again.
HRESULT CQZFileBase::AbreNoModo(EModoAbertura eModoAbertura, bool bCriando) {
  const CQZOperacao rastro(this, {"CQZFileBase::AbreArquivo"}, kFonte);
  if (m_bPronto && eModoAbertura == m_eModoAtual) {
    return codigos::kOk;
  }
  std::optional<EntradaPendente> entradaPendente;
  if (eModoAbertura == eModoCriacao) {
    entradaPendente.emplace(*this);
  }
  // The list is consulted while the file is still open: a failure leaves the object as it was.
  QZ_VERIFICA(rastro, "GerenciaControleCriacaoArquivos(eModoAbertura)", GerenciaControleCriacaoArquivos(eModoAbertura));
  const EModoAbertura eModoAnterior = m_eModoAtual;
  if (m_bPronto) {
    AnotaEstado();
  }
  FechaArquivo();

  const HRESULT hr = TentaAbrir(CaminhoCompleto(), eModoAbertura, bCriando);
  if (hr == codigos::kArqNaoEncontrado && eModoAbertura == eModoLeitura) {
    return codigos::kOk;
  }
  if (hr == codigos::kArqNaoEncontrado && eModoAbertura != eModoCriacao && !bCriando) {
    return CriaEAbre(rastro, eModoAbertura);
  }
  if (Falhou(hr)) {
    VoltaAoModo(rastro, eModoAnterior);
    return rastro.Codigo(hr, __LINE__);
  }
  if (eModoAbertura == eModoCriacao) {
    m_bCabecalhoGerenciado = false;
  }
  return AposAbrir(rastro, eModoAbertura);
}

/// Another process may create the file and write to it between our look and our creation, so this creation never
/// truncates.
HRESULT CQZFileBase::CriaEAbre(const CQZRastro &rastro, EModoAbertura eModoAbertura) {
  QZ_VERIFICA(rastro, "AbreArquivo(eModoCriacao)", AbreNoModo(eModoCriacao, true));
  QZ_VERIFICA(rastro, "AbreArquivo(eModoAbertura)", AbreNoModo(eModoAbertura, true));
  return codigos::kOk;
}

/// A file that cannot be had in another mode stays usable in the one it had.
void CQZFileBase::VoltaAoModo(const CQZRastro &rastro, EModoAbertura eModoAnterior) {
  if (eModoAnterior != eModoFechado && !Falhou(TentaAbrir(CaminhoCompleto(), eModoAnterior, true))) {
    static_cast<void>(AposAbrir(rastro, eModoAnterior));
  }
}

/// Header and memory of a file that has just been opened. On failure the file is closed.
HRESULT CQZFileBase::AposAbrir(const CQZRastro &rastro, EModoAbertura eModoAbertura) {
  const bool bMudou = m_bMemoriaCarregada && EstadoMudou();
  m_bCabecalhoGerenciado = m_bCabecalhoGerenciado && !bMudou;
  HRESULT hr = codigos::kOk;
  if ((eModoAbertura != eModoLeituraCompartilhada &&
       QZ_FALHOU(rastro, hr, "GerenciaCabecalho()", GerenciaCabecalho())) ||
      (bMudou && QZ_FALHOU(rastro, hr, "CarregaMemoria()", CarregaMemoria()))) {
    FechaArquivo();
    m_bCabecalhoGerenciado = false;
    if (bMudou) {
      // What memory holds is no longer what the file holds, and must not be served.
      EsvaziaMemoria();
      m_estado.reset();
    }
  }
  m_bPronto = !Falhou(hr);
  return hr;
}

HRESULT CQZFileBase::TentaAbrir(const CString &sCaminho, EModoAbertura eModoAbertura, bool bPreservaConteudo,
                                int iTentativas) {
  for (int n = 0; n < iTentativas; ++n) {
    const FalhaArquivo falha =
        plataforma::Arquivos().Abre(sCaminho, ModoDoSistema(eModoAbertura, bPreservaConteudo), &m_arquivo);
    if (!falha) {
      m_eModoAtual = eModoAbertura;
      return codigos::kOk;
    }
    const HRESULT hr = CodigoDaAbertura(sCaminho, falha.causa, n == iTentativas - 1);
    if (Falhou(hr)) {
      return hr;
    }
    PausaEntreTentativas();
  }
  return codigos::kArqOutra;
}

/// The code with which opening gives up now; 0 while another attempt is due.
HRESULT CQZFileBase::CodigoDaAbertura(const CString &sCaminho, CausaArquivo causa, bool bUltimaTentativa) {
  switch (causa) {
    case CausaArquivo::CaminhoInvalido:
    case CausaArquivo::ArquivoInvalido:
    case CausaArquivo::NaoEncontrado:
      return CodigoDaFalha(causa);
    case CausaArquivo::DiretorioCheio:
      return codigos::kArqDiretorioCheio;
    case CausaArquivo::MuitosAbertos:
      return bUltimaTentativa ? codigos::kArqMuitosAbertos : codigos::kOk;
    case CausaArquivo::AcessoNegado:
      if (!bUltimaTentativa) {
        return codigos::kOk;
      }
      return plataforma::Arquivos().SomenteLeitura(sCaminho) ? codigos::kArqSomenteLeitura : codigos::kArqAcessoNegado;
    case CausaArquivo::ViolacaoCompartilhamento:
    case CausaArquivo::ViolacaoBloqueio:
    case CausaArquivo::DiscoCheio:
      return bUltimaTentativa ? CodigoDaFalha(causa) : codigos::kOk;
    default:
      return codigos::kOk;
  }
}

HRESULT CQZFileBase::CodigoDaFalha(CausaArquivo causa) {
  switch (causa) {
    case CausaArquivo::NaoEncontrado:
      return codigos::kArqNaoEncontrado;
    case CausaArquivo::CaminhoInvalido:
      return codigos::kArqCaminhoInvalido;
    case CausaArquivo::AcessoNegado:
      return codigos::kArqAcessoNegado;
    case CausaArquivo::ArquivoInvalido:
      return codigos::kArqInvalido;
    case CausaArquivo::PosicaoInvalida:
      return codigos::kArqPosicaoInvalida;
    case CausaArquivo::ErroFisico:
      return codigos::kArqErroFisico;
    case CausaArquivo::ViolacaoCompartilhamento:
      return codigos::kArqCompartilhamento;
    case CausaArquivo::ViolacaoBloqueio:
      return codigos::kArqBloqueio;
    case CausaArquivo::DiscoCheio:
      return codigos::kArqDiscoCheio;
    case CausaArquivo::FimDeArquivo:
      return codigos::kArqFimDeArquivo;
    default:
      return codigos::kArqOutra;
  }
}

bool CQZFileBase::EhUmaExcecaoFatal(HRESULT hr) {
  switch (BitsResultado(hr) & 0xFFFF) {
    case BitsResultado(codigos::kArqPosicaoInvalida) & 0xFFFF:
    case BitsResultado(codigos::kArqFimDeArquivo) & 0xFFFF:
    case BitsResultado(codigos::kArqErroFisico) & 0xFFFF:
    case BitsResultado(codigos::kArqNaoEncontrado) & 0xFFFF:
    case BitsResultado(codigos::kArqCaminhoInvalido) & 0xFFFF:
      return true;
    default:
      return false;
  }
}

void CQZFileBase::PausaEntreTentativas() {
  plataforma::Relogio().Espera(kPausaInsistenciaMs);
}

HRESULT CQZFileBase::DescarregaNoDisco() {
  const CQZRastro rastro(this, {"CQZFileBase::DescarregaNoDisco"}, kFonte);
  const CQZTrava trava(m_secao);
  if (!ExisteArquivo()) {
    return codigos::kOk;
  }
  if (const FalhaArquivo falha = m_arquivo->Descarrega()) {
    QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(falha));
  }
  return codigos::kOk;
}

HRESULT CQZFileBase::OnInicializa() {
  const CQZRastro rastro(this, {"CQZFileBase::OnInicializa"}, kFonte);
  FechaArquivo();  // a failed initialisation leaves its handle open
  const std::optional<std::uint32_t> uiLigado = plataforma::Registro().LeNumero(kChaveSuite, kValorCabecalho);
  m_bCabecalhoGerenciado = false;
  m_bTemCabecalho = uiLigado.value_or(0) != 0 && !CQZPath::TemExtensao(m_sNomeArquivo, "TRA");
  if (uiLigado.value_or(0) == 0) {
    return codigos::kOk;
  }
  CQZBaseParaRotinas baseParaRotinas;
  QZ_VERIFICA(rastro, "baseParaRotinas.Inicializa(this)", baseParaRotinas.Inicializa(*this));
  if (!m_pDadosInstalacao) {
    m_pDadosInstalacao = std::make_unique<CQZDadosInstalacao>();
  }
  QZ_VERIFICA(rastro, "LeDadosInstalacao(baseParaRotinas, m_pDadosInstalacao)",
              LeDadosInstalacao(baseParaRotinas, m_pDadosInstalacao.get()));
  return codigos::kOk;
}

HRESULT CQZFileBase::OnFinaliza() {
  const CQZOperacao rastro(this, {"CQZFileBase::OnFinaliza"}, kFonte);
  const CQZTrava trava(m_secao);
  HRESULT hr = codigos::kOk;
  if (ExisteArquivo()) {
    static_cast<void>(QZ_FALHOU(rastro, hr, "Flush(true)", Flush(true)));
  }
  FechaArquivo();
  m_bMemoriaCarregada = false;
  m_estado.reset();
  return hr;
}

HRESULT CQZFileBase::Flush(bool bForcar) {
  if ((!bForcar && m_bFlushAdiado) || m_eModoAtual != eModoLeituraGravacao) {
    return codigos::kOk;
  }
  return AtualizaCabecalho();
}

HRESULT CQZFileBase::DeletaArquivoOffline() {
  const CQZOperacao rastro(this, {"CQZFileBase::DeletaArquivoOffline"}, kFonte);
  if (!ApagaInsistindo(CQZPath::ChangeExtension(CaminhoCompleto(), "OFL"))) {
    QZ_RETORNA_CODIGO(rastro, codigos::kOfflineNaoApagado);
  }
  return codigos::kOk;
}

HRESULT CQZFileBase::GerenciaControleCriacaoArquivos(EModoAbertura eModoAbertura) {
  const CQZRastro rastro(this, {"CQZFileBase::GerenciaControleCriacaoArquivos"}, kFonte);
  if (m_bSemControle) {
    QZ_VERIFICA(rastro, "RemoveControleCriacaoArquivos()", Controle().Remove());
    return codigos::kOk;
  }
  if (!CQZControleCriacao::Controlado(m_sNomeArquivo)) {
    return codigos::kOk;
  }
  bool bPossui = false;
  QZ_VERIFICA(rastro, "PossuiControleCriacaoArquivos(&bPossui)", Controle().Possui(&bPossui));
  if (bPossui && !ExisteNoCaminho(CaminhoCompleto())) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoDesapareceu);
  }
  if (!bPossui && eModoAbertura == eModoCriacao) {
    m_bEntradaNova = true;
    QZ_VERIFICA(rastro, "CriaControleCriacaoArquivos()", Controle().Cria());
  }
  return codigos::kOk;
}

plataforma::FalhaArquivo CQZFileBase::TamanhoDados(std::uint64_t *puiTamanho) {
  std::uint64_t uiTamanho = 0;
  if (const FalhaArquivo falha = m_arquivo->Tamanho(&uiTamanho)) {
    return falha;
  }
  if (uiTamanho < TamanhoCabecalho()) {
    return {CausaArquivo::FimDeArquivo, 0};
  }
  *puiTamanho = uiTamanho - TamanhoCabecalho();
  return plataforma::kSemFalha;
}

void CQZFileBase::FechaArquivo() {
  m_arquivo.reset();
  m_eModoAtual = eModoFechado;
  m_bPronto = false;
}

void CQZFileBase::ReabreSePerdido() {
  const bool bNuncaExistiu = m_estado && m_estado->uiUltimaEscrita == 0;
  if (!m_bMemoriaCarregada || ExisteArquivo() || bNuncaExistiu) {
    return;
  }
  const CQZRastro rastro(this, {"CQZFileBase::ReabreSePerdido"}, kFonte);
  if (!Falhou(TentaAbrir(CaminhoCompleto(), eModoLeitura, false, 1))) {
    static_cast<void>(AposAbrir(rastro, eModoLeitura));
  }
}

void CQZFileBase::MemoriaCarregada() {
  m_bMemoriaCarregada = true;
  m_estado = EstadoArquivo{};
  AnotaEstado();
}

/// Notes length and time of the last write before the file is closed. Where they cannot be had, the next open loads the
/// content anew.
void CQZFileBase::AnotaEstado() {
  if (!ExisteArquivo()) {
    return;
  }
  EstadoArquivo estado;
  if (m_arquivo->Tamanho(&estado.uiTamanho) || m_arquivo->UltimaEscrita(&estado.uiUltimaEscrita)) {
    m_estado.reset();
    return;
  }
  m_estado = estado;
}

bool CQZFileBase::EstadoMudou() {
  const std::optional<EstadoArquivo> anterior = m_estado;
  AnotaEstado();
  if (!anterior || !m_estado) {
    return true;
  }
  const bool bOutraEscrita = anterior->uiUltimaEscrita != 0 && anterior->uiUltimaEscrita != m_estado->uiUltimaEscrita;
  return anterior->uiTamanho != m_estado->uiTamanho || bOutraEscrita;
}
