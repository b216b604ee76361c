// The header of a data file: created, checked, brought up to date.

#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/arquivo/QZFileCopia.h"
#include "core/qzdatabase/banco/QZBancoTemporario.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"

using plataforma::FalhaArquivo;

namespace {

constexpr char kFonte[] = "QZFileBaseCabecalho.cpp";

}  // namespace

HRESULT CQZFileBase::GerenciaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::GerenciaCabecalho"}, kFonte);
  if (!m_bTemCabecalho || m_bCabecalhoGerenciado) {
    return codigos::kOk;
  }
  bool bPossui = false;
  QZ_VERIFICA(rastro, "PossuiCabecalho()", PossuiCabecalho(&bPossui));
  if (bPossui) {
    QZ_VERIFICA(rastro, "ValidaCabecalho()", ValidaCabecalho());
  } else {
    QZ_VERIFICA(rastro, "CriaCabecalho()", CriaCabecalho());
  }
  m_bCabecalhoGerenciado = true;
  return codigos::kOk;
}

/// Whether the file begins with a version record that holds. A file that cannot be read has not been found to have
/// none: that is a failure, or a second header would be put in front of the first.
HRESULT CQZFileBase::PossuiCabecalho(bool *pbPossui) {
  const CQZRastro rastro(this, {"CQZFileBase::PossuiCabecalho"}, kFonte);
  std::uint64_t uiTamanho = 0;
  RegVersaoArquivo reg{};
  FalhaArquivo falha = Arquivo().Tamanho(&uiTamanho);
  if (!falha && uiTamanho >= sizeof(reg)) {
    falha = Arquivo().Le(0, &reg, sizeof(reg));
  }
  if (falha) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  *pbPossui = RegVersaoConfere(reg);
  return codigos::kOk;
}

HRESULT CQZFileBase::ValidaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::ValidaCabecalho"}, kFonte);
  RegVersaoArquivo regVersao{};
  if (const FalhaArquivo falha = Arquivo().Le(0, &regVersao, sizeof(regVersao))) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  if (regVersao.iVersao != kVersaoCabecalho) {
    QZ_RETORNA_CODIGO(rastro, codigos::kCabecalhoVersaoDesconhecida);
  }
  QZ_VERIFICA(rastro, "ValidaCabecalhoV01(regVersao)", ValidaCabecalhoV01());
  return codigos::kOk;
}

HRESULT CQZFileBase::ValidaCabecalhoV01() {
  const CQZRastro rastro(this, {"CQZFileBase::ValidaCabecalhoV01"}, kFonte);
  RegCabecalhoArquivo reg{};
  const FalhaArquivo falhaCabecalho = Arquivo().Le(kPosicaoRegCabecalho, &reg, sizeof(reg));
  if (falhaCabecalho && falhaCabecalho.causa != plataforma::CausaArquivo::FimDeArquivo) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falhaCabecalho));
  }
  // A file that ends within its header has a damaged one.
  if (falhaCabecalho || !RegCabecalhoConfere(reg)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kCabecalhoDanificado);
  }
  if (!NomeConfere(reg, m_sNomeArquivo)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kCabecalhoDeOutroArquivo);
  }
  std::uint64_t uiCrc = 0;
  if (const FalhaArquivo falha = CalculaCrcDoArquivo(kTamanhoCabecalho, &uiCrc)) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  if (uiCrc != reg.uiCrcDados) {
    QZ_RETORNA_CODIGO(rastro, codigos::kDadosNaoConferem);
  }
  m_regCabecalho = reg;
  m_bCabecalhoNoDisco = true;
  m_uiCrcDados = uiCrc;
  return codigos::kOk;
}

/// The file gets its header by way of a complete copy, which replaces it in one step: at no moment is there less than
/// one whole file. It is left open for reading and writing.
HRESULT CQZFileBase::CriaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::CriaCabecalho"}, kFonte);
  HRESULT hr = codigos::kOk;
  if (QZ_FALHOU(rastro, hr, "GravaCopiaComCabecalho()", GravaCopiaComCabecalho())) {
    static_cast<void>(ApagaInsistindo(CQZPath::ChangeExtension(CaminhoCompleto(), "TRA")));
    return hr;
  }
  // The copy cannot be moved over a file that is open.
  FechaArquivo();
  if (QZ_FALHOU(rastro, hr, "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), m_eModulo, m_sNomeArquivo)",
                CQZDataBaseUtil::MoveTRA(GetEmpresa(), m_eModulo, m_sNomeArquivo))) {
    static_cast<void>(ApagaInsistindo(CQZPath::ChangeExtension(CaminhoCompleto(), "TRA")));
    return hr;
  }
  QZ_VERIFICA(rastro, "AbreArquivo()", TentaAbrir(CaminhoCompleto(), eModoLeituraGravacao));
  AnotaEstado();
  m_bCabecalhoNoDisco = true;
  m_uiCrcDados = std::uint64_t{m_regCabecalho.uiCrcDados};  // a copy: packed fields cannot be referred to
  return codigos::kOk;
}

/// The copy is on the storage device, and closed, when this returns.
HRESULT CQZFileBase::GravaCopiaComCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::CriaCabecalho"}, kFonte);
  CQZBancoTemporario<CQZFileCopia> copia(m_eModulo, CQZPath::ChangeExtension(m_sNomeArquivo, "TRA"));
  CQZFileCopia &qzFileDestino = copia.Arquivo();
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", copia.Banco().Inicializa(*this));
  QZ_VERIFICA(rastro, "qzFileDestino.AbreArquivo()", qzFileDestino.AbreArquivo());

  RegVersaoArquivo regVersao{};
  QZ_VERIFICA(rastro, "GeraDadosCabecalho(&regVersao, &regCabecalho, &aBuffer)",
              GeraDadosCabecalho(&regVersao, &m_regCabecalho));
  plataforma::IArquivoAberto &destino = qzFileDestino.Arquivo();
  FalhaArquivo falha = destino.Grava(0, &regVersao, sizeof(regVersao));
  if (!falha) {
    falha = destino.Grava(kPosicaoRegCabecalho, &m_regCabecalho, sizeof(m_regCabecalho));
  }
  if (!falha) {
    falha = PercorreArquivo(Arquivo(), 0, [&](std::uint64_t uiPosicao, const char *pBytes, std::size_t qtd) {
      return destino.Grava(kTamanhoCabecalho + uiPosicao, pBytes, qtd);
    });
  }
  if (!falha) {
    falha = destino.Descarrega();
  }
  if (falha) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  return codigos::kOk;
}

/// Both records for a file that has no header yet: all of its bytes are data.
HRESULT CQZFileBase::GeraDadosCabecalho(RegVersaoArquivo *pRegVersao, RegCabecalhoArquivo *pRegCabecalho) {
  const CQZRastro rastro(this, {"CQZFileBase::GeraDadosCabecalho"}, kFonte);
  std::uint64_t uiCrc = 0;
  if (const FalhaArquivo falha = CalculaCrcDoArquivo(0, &uiCrc)) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  *pRegVersao = MontaRegVersao();
  *pRegCabecalho = MontaRegCabecalho(m_pDadosInstalacao ? m_pDadosInstalacao->uiCodigo : 0, m_sNomeArquivo, uiCrc);
  return codigos::kOk;
}

/// Writes the header record for the data's present CRC, unless the disk has it already. Where no writer has said how
/// the CRC changed the whole file is read for it.
HRESULT CQZFileBase::AtualizaCabecalho() {
  const CQZRastro rastro(this, {"CQZFileBase::AtualizaCabecalho"}, kFonte);
  if (!m_bTemCabecalho) {
    return codigos::kOk;
  }
  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = m_uiCrcDados ? plataforma::kSemFalha : Arquivo().Tamanho(&uiTamanho);
  if (!falha && !m_uiCrcDados) {
    if (uiTamanho < kTamanhoCabecalho) {
      QZ_RETORNA_CODIGO(rastro, codigos::kCabecalhoDanificado);
    }
    std::uint64_t uiCrc = 0;
    falha = CalculaCrcDoArquivo(kTamanhoCabecalho, &uiCrc);
    if (!falha) {
      m_uiCrcDados = uiCrc;
    }
  }
  if (!falha && (!m_bCabecalhoNoDisco || m_regCabecalho.uiCrcDados != *m_uiCrcDados)) {
    DefineCrcDados(*m_uiCrcDados, &m_regCabecalho);
    m_bCabecalhoNoDisco = false;
    falha = Arquivo().Grava(kPosicaoRegCabecalho, &m_regCabecalho, sizeof(m_regCabecalho));
    m_bCabecalhoNoDisco = !falha;
  }
  if (falha) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  return codigos::kOk;
}

/// CRC of a file from a place to its end; 0 for an empty rest.
FalhaArquivo CQZFileBase::CalculaCrcDoArquivo(std::uint64_t uiInicio, std::uint64_t *puiCrc) {
  *puiCrc = 0;
  return PercorreArquivo(Arquivo(), uiInicio, [&](std::uint64_t, const char *pBytes, std::size_t qtd) {
    *puiCrc = CalculaCrc64(pBytes, qtd, *puiCrc);
    return plataforma::kSemFalha;
  });
}
