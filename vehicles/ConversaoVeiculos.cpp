#include <algorithm>
#include <cstddef>
#include <optional>

#include "core/platform/Plataforma.h"
#include "core/platform/PosseNoLivro.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/platform/Travas.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/NomeTrava.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/DiarioConversao.h"
#include "vehicles/VersaoBaseVeiculos.h"

// The step from version 0 to version 1 drops the record file's first record. Run twice it would drop a vehicle, so what
// has been done is on the storage device before the next step depends on it:
//
//   1. DFVEIC.TRA   all records but the first
//   2. DFVEIVSD.TRA the journal: length and CRC of the records as they are after the step
//   3. DFVEIC.TRA   moved onto DFVEIC.DAT
//   4. DFVEIVS.DAT  version 1
//   5. DFVEIVSD.TRA deleted
//
// A run that finds a journal holds the record file against it: without its first record or with it, and goes on from
// there. Where the first record was the only one there is nothing to rewrite: DFVEIC.DAT is deleted, and the journal is
// written after that, for step 4 alone.

namespace {

constexpr char kFonteConversaoVeiculos[] = "ConversaoVeiculos.cpp";
constexpr char kArquivoVeiculosTRA[] = "DFVEIC.TRA";

/// How long one process waits for another that converts a base of the same directory.
constexpr std::uint32_t kEsperaConversaoMs = 60000;

/// How far an earlier run got.
enum class EDiario {
  Nenhum,       ///< nothing that counts was done
  FaltaTrocar,  ///< the companion is complete
  FaltaVersao,  ///< the record file has lost its first record
};

/// Serialises the conversions of this process; used by nothing else.
plataforma::SecaoCritica &SecaoConversao() {
  static plataforma::SecaoCritica secao(plataforma::NivelTrava::Conversao);
  return secao;
}

CString CaminhoDaBase(const CString &sEmpresa, const char *lpNome) {
  return CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, lpNome);
}

/// Opens a file for a look, waiting for another process's short hold; a missing one is no failure and gives null.
plataforma::FalhaArquivo AbreParaVer(const CString &sCaminho, std::unique_ptr<plataforma::IArquivoAberto> *parquivo) {
  using namespace plataforma;
  FalhaArquivo falha;
  Insiste(kTentativasInsistencia, [&](bool) {
    falha = Arquivos().Abre(sCaminho, {Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente}, parquivo);
    return falha.causa == CausaArquivo::ViolacaoCompartilhamento ? EVeredito::OutraVez : EVeredito::Acabou;
  });
  return falha.NaoEsta() ? kSemFalha : falha;
}

/// Identity of a record file's records, and what it would be without the first one; nothing for a missing file.
plataforma::FalhaArquivo Identifica(const CString &sCaminho, std::optional<IdentidadeRegistros> *pTodos,
                                    std::optional<IdentidadeRegistros> *pSemPrimeiro) {
  constexpr std::uint64_t kUmRegistro = sizeof(RegVeiculo_V01);
  std::unique_ptr<plataforma::IArquivoAberto> aberto;
  plataforma::FalhaArquivo falha = AbreParaVer(sCaminho, &aberto);
  if (falha || aberto == nullptr) {
    return falha;
  }
  const plataforma::CQZPosseNoLivro arquivo(std::move(aberto));
  bool bCabecalho = false;
  std::uint16_t iVersao = 0;
  std::uint64_t uiTamanho = 0;
  falha = CQZCabecalhoVigente::LeVersao(*arquivo, &bCabecalho, &iVersao);
  if (!falha) {
    falha = arquivo->Tamanho(&uiTamanho);
  }
  // Records alone are compared: the file may have got its header since the journal was written.
  const std::uint64_t uiInicio = bCabecalho ? std::min<std::uint64_t>(kTamanhoCabecalho, uiTamanho) : 0;
  const auto identifica = [&](std::uint64_t uiDe, std::optional<IdentidadeRegistros> *pIdentidade) {
    IdentidadeRegistros identidade{uiTamanho - uiDe, 0};
    falha = PercorreArquivo(*arquivo, uiDe, [&](std::uint64_t, const char *pBytes, std::size_t qtd) {
      identidade.uiCrc = CalculaCrc64(pBytes, qtd, identidade.uiCrc);
      return plataforma::kSemFalha;
    });
    *pIdentidade = identidade;
  };
  if (!falha) {
    identifica(uiInicio, pTodos);
  }
  if (!falha && uiTamanho - uiInicio >= kUmRegistro) {
    identifica(uiInicio + kUmRegistro, pSemPrimeiro);
  }
  return falha;
}

/// The journal's record; nothing where there is none, or a torn one: the swap comes after it. One that cannot be read
/// is a failure, for taking it for none would drop a vehicle.
plataforma::FalhaArquivo LeDiario(const CString &sEmpresa, std::optional<IdentidadeRegistros> *pConvertida) {
  std::unique_ptr<plataforma::IArquivoAberto> aberto;
  plataforma::FalhaArquivo falha = AbreParaVer(CaminhoDaBase(sEmpresa, kArquivoDiario), &aberto);
  if (falha || aberto == nullptr) {
    return falha;
  }
  const plataforma::CQZPosseNoLivro diario(std::move(aberto));
  RegDiario reg{};
  std::uint64_t uiTamanho = 0;
  falha = diario->Tamanho(&uiTamanho);
  if (!falha && uiTamanho == sizeof(reg)) {
    falha = diario->Le(0, &reg, sizeof(reg));
    if (!falha && reg.iVersao == kVersaoBaseVeiculos &&
        CalculaCrc64(&reg, offsetof(RegDiario, uiCrcDiario)) == reg.uiCrcDiario) {
      *pConvertida = reg.convertida;
    }
  }
  return falha;
}

/// Holds the files against the journal. A base that is neither what the journal says nor what it was before cannot be
/// explained and is left alone.
HRESULT ExaminaDiario(const CString &sEmpresa, EDiario *peDiario) {
  *peDiario = EDiario::Nenhum;
  std::optional<IdentidadeRegistros> convertida, base, baseSemPrimeiro, companheiro, semUso;
  plataforma::FalhaArquivo falha = LeDiario(sEmpresa, &convertida);
  if (falha || !convertida) {
    return CQZFileBase::CatchInicializacao(falha);
  }
  falha = Identifica(CaminhoDaBase(sEmpresa, kArquivoVeiculos), &base, &baseSemPrimeiro);
  if (!falha) {
    falha = Identifica(CaminhoDaBase(sEmpresa, kArquivoVeiculosTRA), &companheiro, &semUso);
  }
  if (falha) {
    return CQZFileBase::CatchInicializacao(falha);
  }
  // A missing base is one without records: that of a base whose only record was dropped.
  if (base.value_or(IdentidadeRegistros{}) == *convertida) {
    *peDiario = EDiario::FaltaVersao;
  } else if (companheiro == convertida && (!base || baseSemPrimeiro == convertida)) {
    *peDiario = EDiario::FaltaTrocar;
    // Else the base is as before and its companion missing or torn: the work starts anew.
  } else if (baseSemPrimeiro != convertida) {
    return codigos::kTraNaoRenomeado;
  }
  return codigos::kOk;
}

plataforma::FalhaArquivo EscreveDiario(const CString &sEmpresa, const IdentidadeRegistros &convertida) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  RegDiario reg{kVersaoBaseVeiculos, {}, convertida, 0};
  reg.uiCrcDiario = CalculaCrc64(&reg, offsetof(RegDiario, uiCrcDiario));
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};
  if (const FalhaArquivo falha = Arquivos().Abre(CaminhoDaBase(sEmpresa, kArquivoDiario), modo, &arquivo)) {
    return falha;
  }
  const CQZPosseNoLivro diario(std::move(arquivo));
  if (const FalhaArquivo falha = diario->Grava(0, &reg, sizeof(reg))) {
    return falha;
  }
  return diario->Descarrega();
}

HRESULT ApagaDiario(const CString &sEmpresa) {
  return CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, kArquivoDiario);
}

/// The end of a conversion, this run's or one that was interrupted after its last write: with the version on the
/// storage device the journal has served. Where that cannot be seen to now, it stays for the next time and does no
/// harm.
void EncerraDiario(const CString &sEmpresa) {
  using namespace plataforma;
  bool bExiste = false;
  std::unique_ptr<IArquivoAberto> versao;
  const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::SoExistente};
  if (Arquivos().Existe(CaminhoDaBase(sEmpresa, kArquivoDiario), &bExiste) || !bExiste ||
      Arquivos().Abre(CaminhoDaBase(sEmpresa, kArquivoVersao), modo, &versao)) {
    return;
  }
  const CQZPosseNoLivro aberto(std::move(versao));
  if (!aberto->Descarrega()) {
    static_cast<void>(ApagaDiario(sEmpresa));
  }
}

/// True for the codes that refuse what a version file holds, or say that it has gone, as opposed to those for a file
/// that cannot be had.
bool ConteudoRecusado(HRESULT hr) {
  return hr == codigos::kTamanhoDiferente || hr == codigos::kCabecalhoDanificado || hr == codigos::kDadosNaoConferem ||
         hr == codigos::kArquivoDesapareceu;
}

}  // namespace

HRESULT CBaseVeiculos::ExecutaConversao() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ExecutaConversao"}, kFonteConversaoVeiculos);
  // Without a company the paths would be bare names in the process's current directory; what follows refuses it.
  if (GetEmpresa().empty() || QZDataBaseEstaInicializado()) {
    return codigos::kOk;
  }
  const plataforma::CQZTrava trava(SecaoConversao());
  if (QZDataBaseEstaInicializado()) {
    return codigos::kOk;
  }
  const auto pTravaDiretorio = plataforma::CriaTravaEntreProcessos(
      NomeTravaDoCaminho("Conversao", CQZPath::DiretorioModulo(QZ_DF, GetEmpresa())));
  const plataforma::CQZTravaDeProcesso travaDiretorio(*pTravaDiretorio, kEsperaConversaoMs);
  if (!travaDiretorio.Tomada()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArqCompartilhamento);
  }
  return ConverteSobTrava();
}

HRESULT CBaseVeiculos::ConverteSobTrava() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ExecutaConversao"}, kFonteConversaoVeiculos);
  HRESULT hr = codigos::kOk;
  REG_DF_VEICULO_VERSAO regVersao{};
  if (QZ_FALHOU(rastro, hr, "CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, \"DFVEIVS.DAT\")",
                CQZDataBaseUtil::LeSingleReg(this, QZ_DF, &regVersao, kArquivoVersao))) {
    EDiario eDiario = EDiario::Nenhum;
    if (!ConteudoRecusado(hr) || Falhou(ExaminaDiario(GetEmpresa(), &eDiario)) || eDiario != EDiario::FaltaVersao) {
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
  EncerraDiario(GetEmpresa());
  return codigos::kOk;
}

HRESULT CBaseVeiculos::ConverteBaseV01() {
  const CQZRastro rastro(this, {"CBaseVeiculos::ConverteBaseV01"}, kFonteConversaoVeiculos);
  const CString sEmpresa = GetEmpresa();
  EDiario eDiario = EDiario::Nenhum;
  QZ_VERIFICA(rastro, "ExaminaDiario(GetEmpresa(), &eDiario)", ExaminaDiario(sEmpresa, &eDiario));
  if (eDiario == EDiario::FaltaTrocar) {
    QZ_VERIFICA(rastro, "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), QZ_DF, \"DFVEIC.DAT\")",
                CQZDataBaseUtil::MoveTRA(sEmpresa, QZ_DF, kArquivoVeiculos));
  }
  if (eDiario != EDiario::Nenhum) {
    return codigos::kOk;
  }
  // RemoveRegistroZero has the journal written between the finished companion and its move.
  bool bDiario = false;
  const auto gravaDiario = [&]() -> HRESULT {
    std::optional<IdentidadeRegistros> companheiro, semUso;
    plataforma::FalhaArquivo falha = Identifica(CaminhoDaBase(sEmpresa, kArquivoVeiculosTRA), &companheiro, &semUso);
    if (!falha) {
      falha = EscreveDiario(sEmpresa, companheiro.value_or(IdentidadeRegistros{}));
    }
    bDiario = !falha;
    if (falha) {
      static_cast<void>(ApagaDiario(sEmpresa));
    }
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
