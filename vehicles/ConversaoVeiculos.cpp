#include <cstdio>
#include <cstring>

#include "core/platform/ArquivoNoLivro.h"
#include "core/platform/Plataforma.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/Insistencia.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

// The step from version 0 to version 1 drops the record file's first record. Run twice it would drop a vehicle, so what
// has been done is on disk before the next step depends on it:
//
//   1. DFVEIC.TRA   all records but the first, complete on the storage device
//   2. DFVEIVSD.TRA the journal: a version-1 record; from here on the rewrite is never done again
//   3. DFVEIC.TRA   moved onto DFVEIC.DAT
//   4. DFVEIVS.DAT  version 1
//   5. DFVEIVSD.TRA deleted
//
// A run that finds the journal complete finishes from step 3. Where the first record was the only one there is nothing
// to rewrite: DFVEIC.DAT is deleted, and the journal is written after that, for step 4 alone.

namespace {

constexpr char kFonte[] = "ConversaoVeiculos.cpp";
constexpr char kArquivoVersao[] = "DFVEIVS.DAT";
constexpr char kArquivoDiario[] = "DFVEIVSD.TRA";

/// Where earlier programs kept the journal: the name of the version file's own companion, which is overwritten when
/// that file gets a header.
constexpr char kArquivoDiarioAntigo[] = "DFVEIVS.TRA";
constexpr char kArquivoVeiculosTRA[] = "DFVEIC.TRA";

/// How long one process waits for another that converts a base of the same directory.
constexpr std::uint32_t kEsperaConversaoMs = 60000;

/// Serialises the conversions of this process; used by nothing else.
plataforma::SecaoCritica &SecaoConversao() {
  static plataforma::SecaoCritica secao(plataforma::NivelTrava::Conversao);
  return secao;
}

/// The lock that server processes of this machine share for a data directory. Directories on the network that several
/// machines use are not covered.
CString NomeTravaDiretorio(const CString &sDiretorio) {
  const CString sMaiusculo = plataforma::Maiusculas(sDiretorio);
  char nome[48];
  std::snprintf(nome, sizeof(nome), "Kalvo-Conversao-%016llX",
                static_cast<unsigned long long>(CalculaCrc64(sMaiusculo.data(), sMaiusculo.size())));
  return nome;
}

CString CaminhoDaBase(const CString &sEmpresa, const char *lpNome) {
  return CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, lpNome);
}

/// Whether an earlier run got as far as the journal. A torn journal counts as none: the rename comes after it. One that
/// cannot be read is a failure, for taking it for none would drop a vehicle.
plataforma::FalhaArquivo LeDiario(const CString &sEmpresa, bool *pbCompleto, const char *lpDiario = kArquivoDiario) {
  using namespace plataforma;
  *pbCompleto = false;
  std::unique_ptr<IArquivoAberto> arquivo;
  const ModoAbertura modo{Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente};
  FalhaArquivo falha;
  for (int i = 0; i < kTentativasInsistencia; ++i) {
    falha = Arquivos().Abre(CaminhoDaBase(sEmpresa, lpDiario), modo, &arquivo);
    if (falha.causa != CausaArquivo::ViolacaoCompartilhamento) {
      break;
    }
    Relogio().Espera(kPausaInsistenciaMs);
  }
  if (falha) {
    const bool bAusente = falha.causa == CausaArquivo::NaoEncontrado || falha.causa == CausaArquivo::CaminhoInvalido;
    return bAusente ? kSemFalha : falha;
  }
  const CQZArquivoNoLivro diario(std::move(arquivo));
  REG_DF_VEICULO_VERSAO reg{};
  const REG_DF_VEICULO_VERSAO completo{kVersaoBaseVeiculos, {}};
  std::uint64_t uiTamanho = 0;
  falha = diario->Tamanho(&uiTamanho);
  if (!falha && uiTamanho == sizeof(reg)) {
    falha = diario->Le(0, &reg, sizeof(reg));
    *pbCompleto = !falha && std::memcmp(&reg, &completo, sizeof(reg)) == 0;
  }
  return falha;
}

/// The same with the result code of a failure.
HRESULT ExaminaDiario(const CString &sEmpresa, bool *pbCompleto) {
  const plataforma::FalhaArquivo falha = LeDiario(sEmpresa, pbCompleto);
  return falha ? CQZFileBase::CatchInicializacao(falha) : codigos::kOk;
}

plataforma::FalhaArquivo EscreveDiario(const CString &sEmpresa) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  const REG_DF_VEICULO_VERSAO reg{kVersaoBaseVeiculos, {}};
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};
  if (const FalhaArquivo falha = Arquivos().Abre(CaminhoDaBase(sEmpresa, kArquivoDiario), modo, &arquivo)) {
    return falha;
  }
  const CQZArquivoNoLivro diario(std::move(arquivo));
  if (const FalhaArquivo falha = diario->Grava(0, &reg, sizeof(reg))) {
    return falha;
  }
  return diario->Descarrega();
}

HRESULT ApagaDiario(const CString &sEmpresa) {
  return CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, kArquivoDiario);
}

/// True for the codes that refuse what a version file holds, or say that it has gone, as opposed to those for a file
/// that cannot be had.
bool ConteudoRecusado(HRESULT hr) {
  return hr == codigos::kTamanhoDiferente || hr == codigos::kCabecalhoDanificado || hr == codigos::kDadosNaoConferem ||
         hr == codigos::kArquivoDesapareceu;
}

HRESULT AdotaDiarioAntigo(const CString &sEmpresa) {
  bool bCompleto = false;
  plataforma::FalhaArquivo falha = LeDiario(sEmpresa, &bCompleto, kArquivoDiarioAntigo);
  if (!falha && bCompleto) {
    falha = plataforma::Arquivos().MoveSubstituindo(CaminhoDaBase(sEmpresa, kArquivoDiarioAntigo),
                                                    CaminhoDaBase(sEmpresa, kArquivoDiario));
  }
  return falha ? CQZFileBase::CatchGravacao(falha) : codigos::kOk;
}

}  // namespace

HRESULT CBaseVeiculos::ExecutaConversao() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ExecutaConversao"}, kFonte);
  // Without a company the paths would be bare names in the process's current directory; what follows refuses it.
  if (GetEmpresa().empty() || QZDataBaseEstaInicializado()) {
    return codigos::kOk;
  }
  const plataforma::CQZTrava trava(SecaoConversao());
  if (QZDataBaseEstaInicializado()) {
    return codigos::kOk;
  }
  const auto pTravaDiretorio =
      plataforma::CriaTravaEntreProcessos(NomeTravaDiretorio(CQZPath::DiretorioModulo(QZ_DF, GetEmpresa())));
  const plataforma::CQZTravaDeProcesso travaDiretorio(*pTravaDiretorio, kEsperaConversaoMs);
  if (!travaDiretorio.Tomada()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArqCompartilhamento);
  }
  return ConverteSobTrava();
}

HRESULT CBaseVeiculos::ConverteSobTrava() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ExecutaConversao"}, kFonte);
  HRESULT hr = codigos::kOk;
  REG_DF_VEICULO_VERSAO regVersao{};
  QZ_VERIFICA(rastro, "AdotaDiarioAntigo(GetEmpresa())", AdotaDiarioAntigo(GetEmpresa()));
  if (QZ_FALHOU(rastro, hr, "CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, \"DFVEIVS.DAT\")",
                CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, kArquivoVersao))) {
    bool bDiario = false;
    QZ_VERIFICA(rastro, "ExaminaDiario(GetEmpresa(), &bDiario)", ExaminaDiario(GetEmpresa(), &bDiario));
    if (!ConteudoRecusado(hr) || !bDiario) {
      return hr;
    }
    // The journal says that only the version was missing: the file is what an interrupted write of it has left.
    QZ_VERIFICA(rastro, "CQZDataBaseUtil::DeletaArquivo(GetEmpresa(), QZ_DF, \"DFVEIVS.DAT\")",
                CQZDataBaseUtil::DeletaArquivo(GetEmpresa(), QZ_DF, kArquivoVersao));
    regVersao = {};
  }
  if (regVersao.iVersao > kVersaoBaseVeiculos) {
    return codigos::kBaseMaisNova;
  }
  if (regVersao.iVersao < kVersaoBaseVeiculos) {
    QZ_VERIFICA(rastro, "ConverteBaseV01()", ConverteBaseV01());
    regVersao.iVersao = kVersaoBaseVeiculos;
    QZ_VERIFICA(rastro, "CQZDataBaseUtil::GravaSingleReg(this, QZ_DF, regVersao, \"DFVEIVS.DAT\")",
                CQZDataBaseUtil::GravaSingleReg(this, QZ_DF, regVersao, kArquivoVersao));
  }
  // The version is on disk, so a journal that stays is never looked at; it goes so that a version-0 base restored into
  // this directory later is converted again.
  static_cast<void>(ApagaDiario(GetEmpresa()));
  return codigos::kOk;
}

HRESULT CBaseVeiculos::ConverteBaseV01() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ConverteBaseV01"}, kFonte);
  const CString sEmpresa = GetEmpresa();
  bool bDiario = false;
  QZ_VERIFICA(rastro, "ExaminaDiario(GetEmpresa(), &bDiario)", ExaminaDiario(sEmpresa, &bDiario));
  if (bDiario) {
    if (ExisteNoCaminho(CaminhoDaBase(sEmpresa, kArquivoVeiculosTRA))) {
      QZ_VERIFICA(rastro, "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), QZ_DF, \"DFVEIC.DAT\")",
                  CQZDataBaseUtil::MoveTRA(sEmpresa, QZ_DF, kArquivoVeiculos));
    }
    return codigos::kOk;
  }
  const auto gravaDiario = [&]() -> HRESULT {
    const plataforma::FalhaArquivo falha = EscreveDiario(sEmpresa);
    bDiario = !falha;
    if (bDiario) {
      return codigos::kOk;
    }
    static_cast<void>(ApagaDiario(sEmpresa));
    return CQZFileBase::CatchGravacao(falha);
  };
  QZ_VERIFICA(rastro, "CQZDataBaseUtil::RemoveRegistroZero<RegVeiculo_V01>(this, QZ_DF, \"DFVEIC.DAT\")",
              CQZDataBaseUtil::RemoveRegistroZero<RegVeiculo_V01>(this, QZ_DF, kArquivoVeiculos, gravaDiario,
                                                                  [&] { return ApagaDiario(sEmpresa); }));
  if (!bDiario) {
    // Without it only an interruption of the version's write would be noticed: not worth refusing the company.
    static_cast<void>(gravaDiario());
  }
  return codigos::kOk;
}
