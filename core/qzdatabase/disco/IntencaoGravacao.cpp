#include "core/qzdatabase/disco/IntencaoGravacao.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <vector>

#include "core/env/QZPath.h"
#include "core/platform/CodigoEstrangeiro.h"
#include "core/platform/MemoriaMapeada.h"
#include "core/platform/Plataforma.h"
#include "core/platform/PosseNoLivro.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;

namespace {

/// The note below and as many bytes of the write as fit behind it: 255 vehicles, or a list of some thousand files. Only
/// the pages that are touched cost anything.
constexpr std::size_t kTamanhoCompanheiro = 65536;

#pragma pack(push, 1)

/// The note as it stands at the start of the companion; integers are little-endian.
struct RegIntencao {
  std::uint64_t uiSelo;  ///< CRC of everything behind it, the write's bytes included; 0: nothing is noted
  std::uint32_t uiTipo;
  RegCabecalhoArquivo cabecalho;  ///< its two CRCs do not count; of a creation nothing but the name does
  std::uint64_t uiCrcAntes;
  std::uint64_t uiCrcDepois;
  std::uint64_t uiOnde;
  std::uint64_t cb;
  std::uint64_t cbGuardados;  ///< `cb`, or 0 for a write that does not fit
  std::uint64_t uiTamanhoAntes;
  std::uint64_t uiTamanhoDepois;
};

#pragma pack(pop)

static_assert(sizeof(RegIntencao) == 136);

constexpr std::uint32_t kTipoGravacao = 1;
constexpr std::uint32_t kTipoCriacao = 2;

constexpr std::size_t kMaiorGuardado = kTamanhoCompanheiro - sizeof(RegIntencao);

/// An empty note must not be sealed by chance.
std::uint64_t Selo(const char *pCompanheiro, std::size_t cbGuardados) {
  const std::uint64_t uiCrc = CalculaCrc64(pCompanheiro + sizeof(RegIntencao::uiSelo),
                                           sizeof(RegIntencao) - sizeof(RegIntencao::uiSelo) + cbGuardados);
  return uiCrc != 0 ? uiCrc : 1;
}

/// The compiler moves no store across, and this processor lets none overtake another: what the operating system finds
/// after the process is gone was written in this order.
void EscreveSelo(std::byte *pMapa, std::uint64_t uiSelo) {
  std::atomic_signal_fence(std::memory_order_seq_cst);
  std::memcpy(pMapa, &uiSelo, sizeof(uiSelo));
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

/// A note read from a companion.
struct Nota {
  RegIntencao reg;
  std::vector<char> bytes;  ///< the write's, if they are kept
};

/// False when nothing is noted there for a file of this name.
bool LeNota(const CString &sCaminho, const CString &sNomeArquivo, Nota *pNota) {
  std::unique_ptr<IArquivoAberto> aberto;
  std::vector<char> tudo(kTamanhoCompanheiro);
  if (plataforma::Arquivos().Abre(sCaminho, {}, &aberto)) {
    return false;
  }
  const plataforma::CQZPosseNoLivro companheiro(std::move(aberto));
  if (companheiro->Le(0, tudo.data(), tudo.size())) {
    return false;
  }
  std::memcpy(&pNota->reg, tudo.data(), sizeof(pNota->reg));
  const RegIntencao &reg = pNota->reg;
  if ((reg.uiTipo != kTipoGravacao && reg.uiTipo != kTipoCriacao) || !NomeConfere(reg.cabecalho, sNomeArquivo) ||
      reg.cbGuardados > kMaiorGuardado || (reg.cbGuardados != 0 && reg.cbGuardados != reg.cb) ||
      reg.uiSelo != Selo(tudo.data(), static_cast<std::size_t>(reg.cbGuardados))) {
    return false;
  }
  const char *const pBytes = tudo.data() + sizeof(RegIntencao);
  pNota->bytes.assign(pBytes, pBytes + reg.cbGuardados);
  return true;
}

/// Whether a note is one of a write, within the file as it was to be.
bool EDeEscrita(const RegIntencao &reg) {
  return reg.uiTipo == kTipoGravacao &&
         std::min({reg.uiOnde, reg.uiTamanhoAntes, reg.uiTamanhoDepois}) >= kTamanhoCabecalho &&
         reg.uiOnde + reg.cb >= reg.uiOnde;
}

/// How the file is put right.
struct Reparo {
  bool bCompleta;           ///< the note's bytes are to be written
  std::uint64_t uiTamanho;  ///< and this is to be the file's length
  RegCabecalhoArquivo cabecalho;
};

/// Compares an open file with a note.
class CExplicacao {
public:
  CExplicacao(IArquivoAberto &arquivo, const Nota &nota)
      : m_arquivo(arquivo), m_nota(nota), m_reg(nota.reg), m_antes(nota.reg.cabecalho), m_depois(nota.reg.cabecalho) {
    DefineCrcDados(m_reg.uiCrcAntes, &m_antes);
    DefineCrcDados(m_reg.uiCrcDepois, &m_depois);
  }

  /// `*pbExplica` tells whether `*pReparo` puts the file right.
  FalhaArquivo Procura(Reparo *pReparo, bool *pbExplica) {
    *pbExplica = false;
    FalhaArquivo falha = m_arquivo.Tamanho(&m_uiTamanho);
    bool bCabecalho = false;
    // What stands behind the end that the write was to lead to came from somebody else, and is not for us to cut.
    const bool bSemSobra = m_uiTamanho <= std::max(m_reg.uiTamanhoAntes, m_reg.uiTamanhoDepois);
    if (!falha && m_uiTamanho >= kTamanhoCabecalho && bSemSobra) {
      falha = CabecalhoEUmDosDois(&bCabecalho);
    }
    if (falha || !bCabecalho) {
      return falha;
    }
    // The write may be all there although its bytes did not fit into the note.
    const Reparo reparos[] = {{false, m_reg.uiTamanhoDepois, m_depois},
                              {true, m_reg.uiTamanhoDepois, m_depois},
                              {false, m_reg.uiTamanhoAntes, m_antes}};
    for (const Reparo &reparo : reparos) {
      if (const FalhaArquivo falhaCrc = Confere(reparo, pbExplica); falhaCrc || *pbExplica) {
        *pReparo = reparo;
        return falhaCrc;
      }
    }
    return plataforma::kSemFalha;
  }

private:
  /// Each byte of the header record is one of before or of after the write: between them it may be torn.
  FalhaArquivo CabecalhoEUmDosDois(bool *pbSim) {
    char agora[sizeof(RegCabecalhoArquivo)];
    const FalhaArquivo falha = m_arquivo.Le(kPosicaoRegCabecalho, agora, sizeof(agora));
    const auto *pAntes = reinterpret_cast<const char *>(&m_antes);
    const auto *pDepois = reinterpret_cast<const char *>(&m_depois);
    *pbSim = !falha;
    for (std::size_t i = 0; *pbSim && i < sizeof(agora); ++i) {
      *pbSim = agora[i] == pAntes[i] || agora[i] == pDepois[i];
    }
    return falha;
  }

  /// Whether the file's data, repaired so, have the CRC of the header that they would get.
  FalhaArquivo Confere(const Reparo &reparo, bool *pbSim) {
    // With the note's bytes the file itself counts up to the write and from behind it; without them, all of it.
    const std::uint64_t uiFimEscrita = m_reg.uiOnde + m_reg.cb;
    const std::uint64_t uiAte = reparo.bCompleta ? std::min(m_reg.uiOnde, reparo.uiTamanho) : reparo.uiTamanho;
    const std::uint64_t uiDe = reparo.bCompleta ? uiFimEscrita : reparo.uiTamanho;
    // What is not written must be there already.
    const bool bFalta = uiAte > m_uiTamanho || (uiDe < reparo.uiTamanho && reparo.uiTamanho > m_uiTamanho);
    const bool bCabe = m_nota.bytes.size() == m_reg.cb && uiFimEscrita <= reparo.uiTamanho;
    if (bFalta || (reparo.bCompleta && !bCabe)) {
      return plataforma::kSemFalha;
    }
    std::uint64_t uiCrc = 0;
    FalhaArquivo falha = CrcFaixa(kTamanhoCabecalho, uiAte, &uiCrc);
    if (reparo.bCompleta) {
      uiCrc = CalculaCrc64(m_nota.bytes.data(), m_nota.bytes.size(), uiCrc);
    }
    falha = falha ? falha : CrcFaixa(uiDe, reparo.uiTamanho, &uiCrc);
    *pbSim = !falha && uiCrc == reparo.cabecalho.uiCrcDados;
    return falha;
  }

  FalhaArquivo CrcFaixa(std::uint64_t uiDe, std::uint64_t uiAte, std::uint64_t *puiCrc) {
    return PercorreArquivo(m_arquivo, uiDe, uiAte, [&](std::uint64_t, const char *pBytes, std::size_t qtd) {
      *puiCrc = CalculaCrc64(pBytes, qtd, *puiCrc);
      return plataforma::kSemFalha;
    });
  }

  IArquivoAberto &m_arquivo;
  const Nota &m_nota;
  const RegIntencao &m_reg;
  RegCabecalhoArquivo m_antes;  ///< the header record before the write
  RegCabecalhoArquivo m_depois;
  std::uint64_t m_uiTamanho = 0;
};

FalhaArquivo Aplica(IArquivoAberto &arquivo, const Nota &nota, const Reparo &reparo) {
  FalhaArquivo falha;
  if (reparo.bCompleta) {
    falha = arquivo.Grava(nota.reg.uiOnde, nota.bytes.data(), nota.bytes.size());
  }
  if (!falha) {
    falha = arquivo.AjustaTamanho(reparo.uiTamanho);
  }
  if (!falha) {
    falha = arquivo.Grava(kPosicaoRegCabecalho, &reparo.cabecalho, sizeof(reparo.cabecalho));
  }
  return falha ? falha : arquivo.Descarrega();
}

}  // namespace

CString CQZIntencaoGravacao::Caminho(const CString &sCaminhoArquivo) {
  return CQZPath::ChangeExtension(sCaminhoArquivo, "INT");
}

void CQZIntencaoGravacao::AnotaCriacao(const CString &sCaminhoArquivo, const CString &sNomeArquivo) {
  using namespace plataforma;
  RegIntencao reg{};
  reg.uiTipo = kTipoCriacao;
  reg.cabecalho = MontaRegCabecalho(0, sNomeArquivo, 0);
  std::vector<char> tudo(kTamanhoCompanheiro);
  std::memcpy(tudo.data(), &reg, sizeof(reg));
  reg.uiSelo = Selo(tudo.data(), 0);
  std::memcpy(tudo.data(), &reg, sizeof(reg));
  std::unique_ptr<IArquivoAberto> aberto;
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::Exclusivo, plataforma::Criacao::CriaVazio};
  if (!Arquivos().Abre(Caminho(sCaminhoArquivo), modo, &aberto)) {
    const CQZPosseNoLivro companheiro(std::move(aberto));
    static_cast<void>(companheiro->Grava(0, tudo.data(), tudo.size()));
  }
}

/// The first write is noted over the creation: it is the one to a file that ends with its header.
CQZIntencaoGravacao::Criacao CQZIntencaoGravacao::CriacaoAnotada(const CString &sCaminhoArquivo,
                                                                 const CString &sNomeArquivo) {
  Nota nota{};
  if (!LeNota(Caminho(sCaminhoArquivo), sNomeArquivo, &nota)) {
    return Criacao::Nada;
  }
  if (nota.reg.uiTipo == kTipoCriacao) {
    return Criacao::Criacao;
  }
  return nota.reg.uiTamanhoAntes == kTamanhoCabecalho ? Criacao::PrimeiraGravacao : Criacao::Nada;
}

bool CQZIntencaoGravacao::AnotaCrescimentoDeZeros(const CString &sCaminhoArquivo, const CString &sNomeArquivo,
                                                  std::uint64_t uiTamanho) {
  Nota nota{};
  return LeNota(Caminho(sCaminhoArquivo), sNomeArquivo, &nota) && EDeEscrita(nota.reg) && nota.reg.uiCrcAntes == 0 &&
         nota.reg.uiTamanhoAntes < uiTamanho;
}

void CQZIntencaoGravacao::Esquece(const CString &sCaminhoArquivo) noexcept {
  plataforma::ChamaCodigoEstrangeiro(
      [&] { static_cast<void>(plataforma::Arquivos().Apaga(Caminho(sCaminhoArquivo))); });
}

void CQZIntencaoGravacao::Define(const CString &sCaminho) {
  m_sCaminho = Caminho(sCaminho);
}

void CQZIntencaoGravacao::Prepara() {
  if (m_pMapa != nullptr || m_sCaminho.empty()) {
    return;
  }
  using namespace plataforma;
  // What an interrupted run has noted stands until it is written over.
  const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, plataforma::Criacao::AbreOuCria};
  FalhaArquivo falha = Arquivos().Abre(m_sCaminho, modo, &m_companheiro);
  if (!falha) {
    falha = m_companheiro->AjustaTamanho(kTamanhoCompanheiro);
  }
  if (!falha) {
    falha = m_companheiro->Mapeia(kTamanhoCompanheiro, &m_pMapa);
  }
  if (falha) {
    Encerra();
  }
}

/// Between the two seals the note is none: one that is half written must not be believed.
void CQZIntencaoGravacao::Anuncia(const Escrita &escrita) noexcept {
  if (m_pMapa == nullptr) {
    return;
  }
  // Set before memory is touched: a note that may stand there must not be deleted with the companion.
  m_bAnunciada = true;
  const std::size_t cbGuardados = escrita.cb <= kMaiorGuardado ? escrita.cb : 0;
  const RegIntencao reg{
      .uiSelo = 0,
      .uiTipo = kTipoGravacao,
      .cabecalho = escrita.cabecalho,
      .uiCrcAntes = escrita.uiCrcAntes,
      .uiCrcDepois = escrita.uiCrcDepois,
      .uiOnde = escrita.uiOnde,
      .cb = escrita.cb,
      .cbGuardados = cbGuardados,
      .uiTamanhoAntes = escrita.uiTamanhoAntes,
      .uiTamanhoDepois = escrita.uiTamanhoDepois,
  };
  const bool bFeito = plataforma::TocaMemoriaMapeada([&] {
    // The old note goes first; the seal over the new one is the last to be written.
    EscreveSelo(m_pMapa, 0);
    std::memcpy(m_pMapa, &reg, sizeof(reg));
    if (cbGuardados != 0) {
      std::memcpy(m_pMapa + sizeof(reg), escrita.pBytes, cbGuardados);
    }
    EscreveSelo(m_pMapa, Selo(reinterpret_cast<const char *>(m_pMapa), cbGuardados));
  });
  // The device has failed: the write goes on without a note, as it does without a companion.
  if (!bFeito) {
    m_bAnunciada = false;
    Encerra();
  }
}

void CQZIntencaoGravacao::Retira() noexcept {
  if (m_bAnunciada) {
    m_bAnunciada = false;
    if (!plataforma::TocaMemoriaMapeada([&] { EscreveSelo(m_pMapa, 0); })) {
      Encerra();
    }
  }
}

void CQZIntencaoGravacao::Encerra() noexcept {
  const bool bApaga = m_companheiro != nullptr && !m_bAnunciada;
  m_companheiro.reset();
  m_pMapa = nullptr;
  m_bAnunciada = false;
  if (bApaga) {
    // What stays does no harm, whatever the reason.
    plataforma::ChamaCodigoEstrangeiro([&] { static_cast<void>(plataforma::Arquivos().Apaga(m_sCaminho)); });
  }
  m_sCaminho.clear();
}

FalhaArquivo CQZIntencaoGravacao::Repara(IArquivoAberto &arquivo, const CString &sCaminhoArquivo,
                                         const CString &sNomeArquivo, bool *pbReparado) {
  *pbReparado = false;
  Nota nota{};
  if (!LeNota(Caminho(sCaminhoArquivo), sNomeArquivo, &nota) || !EDeEscrita(nota.reg)) {
    return plataforma::kSemFalha;
  }
  Reparo reparo{};
  bool bExplica = false;
  FalhaArquivo falha = CExplicacao(arquivo, nota).Procura(&reparo, &bExplica);
  if (!falha && bExplica) {
    falha = Aplica(arquivo, nota, reparo);
    *pbReparado = !falha;
  }
  if (*pbReparado) {
    Esquece(sCaminhoArquivo);
  }
  return falha;
}
