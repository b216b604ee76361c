#include <cstdio>

#include "core/platform/Plataforma.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/qzdatabase/QZDataBaseUtil.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

// The step from version 0 to version 1 drops the record file's first record. Run twice it would drop a vehicle, so what
// has been done is on disk before the next step depends on it:
//
//   1. DFVEIC.TRA   all records but the first, complete on the storage device
//   2. DFVEIVS.TRA  the journal: a version-1 record; from here on the rewrite is never done again
//   3. DFVEIC.TRA   moved onto DFVEIC.DAT
//   4. DFVEIVS.DAT  version 1
//   5. DFVEIVS.TRA  deleted
//
// A run that finds the journal complete finishes from step 3.

namespace {

constexpr char kFonte[] = "ConversaoVeiculos.cpp";
constexpr char kArquivoVersao[] = "DFVEIVS.DAT";
constexpr char kArquivoDiario[] = "DFVEIVS.TRA";
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

/// True when an earlier run got as far as the journal. A torn journal counts as none: the rename comes after it.
bool DiarioCompleto(const CString &sEmpresa) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  REG_DF_VEICULO_VERSAO reg{};
  std::uint64_t uiTamanho = 0;
  const ModoAbertura modo{Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente};
  return !Arquivos().Abre(CaminhoDaBase(sEmpresa, kArquivoDiario), modo, &arquivo) && !arquivo->Tamanho(&uiTamanho) &&
         uiTamanho == sizeof(reg) && !arquivo->Le(0, &reg, sizeof(reg)) && reg.iVersao == kVersaoBaseVeiculos;
}

plataforma::FalhaArquivo EscreveDiario(const CString &sEmpresa) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  const REG_DF_VEICULO_VERSAO reg{kVersaoBaseVeiculos, {}};
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};
  if (const FalhaArquivo falha = Arquivos().Abre(CaminhoDaBase(sEmpresa, kArquivoDiario), modo, &arquivo)) {
    return falha;
  }
  if (const FalhaArquivo falha = arquivo->Grava(0, &reg, sizeof(reg))) {
    return falha;
  }
  return arquivo->Descarrega();
}

HRESULT ApagaDiario(const CString &sEmpresa) {
  return CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, kArquivoDiario);
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
  REG_DF_VEICULO_VERSAO regVersao{};
  QZ_VERIFICA(rastro, "CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, \"DFVEIVS.DAT\")",
              CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, kArquivoVersao));
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
  if (DiarioCompleto(sEmpresa)) {
    if (plataforma::Arquivos().Existe(CaminhoDaBase(sEmpresa, kArquivoVeiculosTRA))) {
      QZ_VERIFICA(rastro, "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), QZ_DF, \"DFVEIC.DAT\")",
                  CQZDataBaseUtil::MoveTRA(sEmpresa, QZ_DF, kArquivoVeiculos));
    }
    return codigos::kOk;
  }
  const auto gravaDiario = [&]() -> HRESULT {
    const plataforma::FalhaArquivo falha = EscreveDiario(sEmpresa);
    if (!falha) {
      return codigos::kOk;
    }
    static_cast<void>(ApagaDiario(sEmpresa));
    return CQZFileBase::CatchGravacao(falha);
  };
  QZ_VERIFICA(rastro, "CQZDataBaseUtil::RemoveRegistroZero<RegVeiculo_V01>(this, QZ_DF, \"DFVEIC.DAT\")",
              CQZDataBaseUtil::RemoveRegistroZero<RegVeiculo_V01>(this, QZ_DF, kArquivoVeiculos, gravaDiario,
                                                                  [&] { return ApagaDiario(sEmpresa); }));
  return codigos::kOk;
}
