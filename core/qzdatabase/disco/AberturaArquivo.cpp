#include "core/qzdatabase/disco/AberturaArquivo.h"

#include "core/qzdatabase/disco/CodigosArquivo.h"

using plataforma::CausaArquivo;
using plataforma::FalhaArquivo;

namespace {

constexpr std::uint32_t kErroJaExiste = 80;  // ERROR_FILE_EXISTS

plataforma::ModoAbertura ModoDoSistema(EModoAbertura eModo) {
  using namespace plataforma;
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

HRESULT CodigoDeAcessoNegado(const CString &sCaminho) {
  return plataforma::Arquivos().SomenteLeitura(sCaminho) ? codigos::kArqSomenteLeitura : codigos::kArqAcessoNegado;
}

/// The code with which opening gives up now; 0 while another attempt is due.
HRESULT CodigoDaAbertura(const CString &sCaminho, const FalhaArquivo &falha, bool bUltimaTentativa) {
  switch (falha.causa) {
    case CausaArquivo::CaminhoInvalido:
    case CausaArquivo::ArquivoInvalido:
    case CausaArquivo::NaoEncontrado:
      return CodigoDaFalha(falha);
    case CausaArquivo::DiretorioCheio:
      return codigos::kArqDiretorioCheio;
    case CausaArquivo::MuitosAbertos:
      return bUltimaTentativa ? codigos::kArqMuitosAbertos : codigos::kOk;
    case CausaArquivo::AcessoNegado:
      return bUltimaTentativa ? CodigoDeAcessoNegado(sCaminho) : codigos::kOk;
    case CausaArquivo::ViolacaoCompartilhamento:
    case CausaArquivo::ViolacaoBloqueio:
    case CausaArquivo::DiscoCheio:
      return bUltimaTentativa ? CodigoDaFalha(falha) : codigos::kOk;
    default:
      return codigos::kOk;
  }
}

}  // namespace

HRESULT CQZAberturaArquivo::Abre(const CString &sCaminho, EModoAbertura eModo, int iTentativas) {
  if (eModo == eModoLeituraGravacao) {
    m_intencao.Define(sCaminho);
  }
  const HRESULT hr = TentaAbrir(sCaminho, ModoDoSistema(eModo), iTentativas);
  if (Aberto()) {
    Assume(eModo);
  }
  return hr;
}

HRESULT CQZAberturaArquivo::Cria(const CString &sCaminho) {
  using namespace plataforma;
  // First: a file that was created must not be forgotten for want of memory.
  m_intencao.Define(sCaminho);
  const HRESULT hr = TentaAbrir(sCaminho, {Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::CriaNovo},
                                kTentativasAbertura);
  if (Aberto()) {
    Assume(eModoLeituraGravacao);
  }
  return hr;
}

/// Success without an open file means that one which was to be new exists.
HRESULT CQZAberturaArquivo::TentaAbrir(const CString &sCaminho, const plataforma::ModoAbertura &modo, int iTentativas) {
  HRESULT hr = codigos::kArqOutra;
  Insiste(iTentativas, [&](bool bUltima) {
    const FalhaArquivo falha = plataforma::Arquivos().Abre(sCaminho, modo, &m_arquivo);
    if (!falha || (falha.erroSO == kErroJaExiste && modo.criacao == plataforma::Criacao::CriaNovo)) {
      hr = codigos::kOk;
      return EVeredito::Acabou;
    }
    const HRESULT hrDesiste = CodigoDaAbertura(sCaminho, falha, bUltima);
    if (!Falhou(hrDesiste)) {
      return EVeredito::OutraVez;
    }
    hr = hrDesiste;
    return EVeredito::Acabou;
  });
  return hr;
}

void CQZAberturaArquivo::Assume(EModoAbertura eModo) {
  m_eModo = eModo;
  m_bMesmo = m_aparencia && Olha() == m_aparencia;
  m_aparencia.reset();
}

void CQZAberturaArquivo::Fecha() {
  m_intencao.Encerra();
  m_arquivo.reset();
  m_eModo = eModoFechado;
  m_aparencia.reset();
  m_bMesmo = false;
}

void CQZAberturaArquivo::FechaParaReabrir() {
  const std::optional<Aparencia> aparencia = Aberto() ? Olha() : std::nullopt;
  Fecha();
  m_aparencia = aparencia;
}

bool CQZAberturaArquivo::TrocaSeMorto(const CString &sCaminho) {
  std::unique_ptr<plataforma::IArquivoAberto> novo;
  if (m_eModo != eModoLeituraGravacao || plataforma::Arquivos().Abre(sCaminho, ModoDoSistema(m_eModo), &novo)) {
    return false;
  }
  m_arquivo = std::move(novo);
  m_bMesmo = false;
  return true;
}

std::optional<CQZAberturaArquivo::Aparencia> CQZAberturaArquivo::Olha() const {
  Aparencia aparencia{};
  if (m_arquivo->Tamanho(&aparencia.uiTamanho) || m_arquivo->UltimaEscrita(&aparencia.uiUltimaEscrita)) {
    return std::nullopt;
  }
  return aparencia;
}
