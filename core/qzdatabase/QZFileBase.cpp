#include "core/qzdatabase/QZFileBase.h"

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/QZDataBase.h"

using plataforma::CausaArquivo;
using plataforma::CQZTrava;
using plataforma::FalhaArquivo;

namespace {

constexpr char kFonte[] = "QZFileBase.cpp";

constexpr std::uint32_t kPausaMs = 10;

plataforma::ModoAbertura ModoDoSistema(EModoAbertura eModo, bool bCriaSemTruncar) {
  using namespace plataforma;
  if (bCriaSemTruncar) {
    return {Acesso::Leitura, Compartilhamento::Exclusivo, Criacao::AbreOuCria};
  }
  switch (eModo) {
    case eModoLeituraGravacao:
      return {Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::SoExistente};
    case eModoCriacao:
      return {Acesso::Leitura, Compartilhamento::Exclusivo, Criacao::CriaVazio};
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
      m_secao(pDataBase->NivelDosArquivos()) {
  pDataBase->AddFile(this);
}

CQZFileBase::~CQZFileBase() {
  if (m_pDataBase != nullptr) {
    m_pDataBase->RemoveFile(this);
  }
}

HRESULT CQZFileBase::AbreArquivo(EModoAbertura eModoAbertura) {
  const CQZOperacao rastro(this, {"CQZFileBase::AbreArquivo"}, kFonte);
  if (ExisteArquivo() && eModoAbertura == m_eModoAtual) {
    return codigos::kOk;
  }
  const EModoAbertura eModoAnterior = m_eModoAtual;
  AnotaEstado();
  FechaArquivo();

  const HRESULT hr = AbreOuCria(rastro, eModoAbertura);
  if (Falhou(hr)) {
    if (eModoAnterior != eModoFechado && !Falhou(TentaAbrir(CaminhoCompleto(), eModoAnterior))) {
      static_cast<void>(RecarregaSeMudou(rastro));
    }
    return hr;
  }
  return RecarregaSeMudou(rastro);
}

HRESULT CQZFileBase::AbreOuCria(const CQZRastro &rastro, EModoAbertura eModoAbertura) {
  const CString sCaminho = CaminhoCompleto();
  const HRESULT hr = TentaAbrir(sCaminho, eModoAbertura);
  if (hr != codigos::kArqNaoEncontrado) {
    return Falhou(hr) ? rastro.Codigo(hr, __LINE__) : hr;
  }
  if (eModoAbertura == eModoLeitura) {
    return codigos::kOk;
  }
  if (eModoAbertura == eModoCriacao) {
    QZ_RETORNA_CODIGO(rastro, hr);
  }
  // Another process may create the file and write to it between our look and our creation, so creation never truncates.
  const HRESULT hrCriacao = TentaAbrir(sCaminho, eModoCriacao, true);
  QZ_VERIFICA(rastro, "AbreArquivo(eModoCriacao)", Falhou(hrCriacao) ? rastro.Codigo(hrCriacao, __LINE__) : hrCriacao);
  FechaArquivo();
  const HRESULT hrReabertura = TentaAbrir(sCaminho, eModoAbertura);
  QZ_VERIFICA(rastro, "AbreArquivo(eModoAbertura)",
              Falhou(hrReabertura) ? rastro.Codigo(hrReabertura, __LINE__) : hrReabertura);
  return codigos::kOk;
}

HRESULT CQZFileBase::TentaAbrir(const CString &sCaminho, EModoAbertura eModoAbertura, bool bCriaSemTruncar,
                                int iTentativas) {
  for (int n = 0; n < iTentativas; ++n) {
    const FalhaArquivo falha =
        plataforma::Arquivos().Abre(sCaminho, ModoDoSistema(eModoAbertura, bCriaSemTruncar), &m_arquivo);
    if (!falha) {
      if (m_secao.Nivel() == plataforma::NivelTrava::Temporario) {
        m_noLivro.emplace(m_arquivo.get(), plataforma::FechaAbandonado);
      }
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
  plataforma::Relogio().Espera(kPausaMs);
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
  return codigos::kOk;
}

HRESULT CQZFileBase::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, {"CQZFileBase::OnFinaliza"});
  const CQZTrava trava(m_secao);
  FechaArquivo();
  m_bMemoriaCarregada = false;
  m_estado.reset();
  return codigos::kOk;
}

void CQZFileBase::FechaArquivo() {
  m_noLivro.reset();
  m_arquivo.reset();
  m_eModoAtual = eModoFechado;
}

void CQZFileBase::ReabreSePerdido() {
  const bool bNuncaExistiu = m_estado && m_estado->uiUltimaEscrita == 0;
  if (!m_bMemoriaCarregada || ExisteArquivo() || bNuncaExistiu) {
    return;
  }
  const CQZRastro rastro(this, {"CQZFileBase::ReabreSePerdido"}, kFonte);
  if (!Falhou(TentaAbrir(CaminhoCompleto(), eModoLeitura, false, 1))) {
    static_cast<void>(RecarregaSeMudou(rastro));
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

HRESULT CQZFileBase::RecarregaSeMudou(const CQZRastro &rastro) {
  if (!m_bMemoriaCarregada || !ExisteArquivo() || !EstadoMudou()) {
    return codigos::kOk;
  }
  const HRESULT hr = CarregaMemoria();
  if (Falhou(hr)) {
    // What memory holds is no longer what the file holds, and must not be served.
    EsvaziaMemoria();
    FechaArquivo();
    m_estado.reset();
  }
  QZ_VERIFICA(rastro, "CarregaMemoria()", hr);
  return codigos::kOk;
}
