#include "core/qzdatabase/disco/TransacaoGravacao.h"

#include <algorithm>

#include "core/errors/CodigosResultado.h"
#include "core/qzdatabase/disco/QZCrc64.h"

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;

namespace {

/// Up to so many bytes of a write are kept to know it again by. A longer one that is torn when its handle dies, and of
/// which no header tells, stays as it is.
constexpr std::size_t kMaiorTrecho = std::size_t{64} * 1024;

}  // namespace

void CQZTransacaoGravacao::Inicia(std::uint64_t uiOnde, std::uint64_t uiTamanho) {
  m_uiOnde = uiOnde;
  m_uiTamanho = uiTamanho;
  m_sAntes.clear();
  m_uiCrcAntes = m_cabecalho.CrcDados();
}

FalhaArquivo CQZTransacaoGravacao::Grava(IArquivoAberto &arquivo, const void *pBytes, std::size_t cb, bool bCorta) {
  const auto *pNovos = static_cast<const char *>(pBytes);
  m_uiCrcDepois = CrcDepois(pNovos, cb, bCorta);
  const std::uint64_t uiFim = m_uiOnde + cb;
  m_uiTamanhoNovo = bCorta ? uiFim : std::max(uiFim, m_uiTamanho);
  m_sNovo.clear();
  m_bNovoGuardado = cb <= kMaiorTrecho;
  if (m_bNovoGuardado) {
    m_sNovo.assign(pNovos, cb);
  }
  // In this order: noted, pending, written. An end after either of the first two leaves a file that is whole.
  AnunciaGravacao(pNovos, cb);
  m_bPendente = true;
  FalhaArquivo falha = arquivo.Grava(m_uiOnde, pBytes, cb);
  if (!falha && m_uiTamanhoNovo < m_uiTamanho) {
    falha = arquivo.AjustaTamanho(m_uiTamanhoNovo);
  }
  if (!falha) {
    m_cabecalho.SegueDados(m_uiCrcDepois);
  }
  return falha;
}

void CQZTransacaoGravacao::AnunciaGravacao(const char *pBytes, std::size_t cb) {
  if (m_cabecalho.Tem()) {
    m_intencao.Prepara();
    m_intencao.Anuncia(
        {m_cabecalho.Registro(), m_uiCrcAntes, m_uiCrcDepois, m_uiOnde, pBytes, cb, m_uiTamanho, m_uiTamanhoNovo});
  }
}

/// Once undoing has begun the write is not to be completed any more: its caller was told that it failed.
void CQZTransacaoGravacao::AnunciaVolta() {
  if (m_cabecalho.Tem()) {
    m_intencao.Anuncia({m_cabecalho.Registro(), m_uiCrcDepois, m_uiCrcAntes, m_uiOnde, m_sAntes.data(), m_sAntes.size(),
                        m_uiTamanhoNovo, m_uiTamanho});
  }
}

/// CRC of the data once the bytes are written. A change of some bytes with others behind it changes the CRC by that of
/// the difference, moved over those behind.
std::uint64_t CQZTransacaoGravacao::CrcDepois(const char *pBytes, std::size_t cb, bool bCorta) const {
  if (!m_cabecalho.Tem()) {
    return 0;
  }
  if (bCorta) {
    return CalculaCrc64(pBytes, cb);
  }
  const std::size_t substituidos = m_sAntes.size();
  const std::uint64_t uiDiferenca = CalculaCrc64(m_sAntes.data(), substituidos) ^ CalculaCrc64(pBytes, substituidos);
  const std::uint64_t uiFimSubstituidos = m_uiOnde + substituidos;
  const std::uint64_t uiAtras = m_uiTamanho > uiFimSubstituidos ? m_uiTamanho - uiFimSubstituidos : 0;
  const std::uint64_t uiLacuna = m_uiOnde > m_uiTamanho ? m_uiOnde - m_uiTamanho : 0;
  const std::uint64_t uiCrc = m_uiCrcAntes ^ Crc64ComZeros(uiDiferenca, uiAtras);
  return CalculaCrc64(pBytes + substituidos, cb - substituidos, Crc64ComZeros(uiCrc, uiLacuna));
}

FalhaArquivo CQZTransacaoGravacao::Desfaz(IArquivoAberto &arquivo) {
  AnunciaVolta();
  FalhaArquivo falha;
  if (!m_sAntes.empty()) {
    falha = arquivo.Grava(m_uiOnde, m_sAntes.data(), m_sAntes.size());
  }
  std::uint64_t uiTamanho = 0;
  if (!falha) {
    falha = arquivo.Tamanho(&uiTamanho);
  }
  if (!falha && uiTamanho > m_uiTamanho) {
    falha = arquivo.AjustaTamanho(m_uiTamanho);
  }
  // Also where undoing failed: it is pending still, and the header is not written before it has succeeded.
  m_cabecalho.SegueDados(m_uiCrcAntes);
  return falha;
}

/// The companion was let go of with the handle, its note in it: it is taken back, to be told what happens now and to go
/// with the file.
FalhaArquivo CQZTransacaoGravacao::DesfazSeNossa(IArquivoAberto &arquivo) {
  if (m_cabecalho.Tem()) {
    m_intencao.Prepara();
  }
  bool bFoi = false;
  FalhaArquivo falha = FoiDeixadoAssim(arquivo, &bFoi);
  if (!falha && bFoi) {
    falha = Desfaz(arquivo);
    if (!falha) {
      falha = m_cabecalho.Atualiza(arquivo);
    }
  }
  if (!falha) {
    Confirma();
  }
  return falha;
}

/// Where the header holds its CRC tells at once: before the write, after it, or somebody else's. Before and after only
/// with the length: the header of an empty file holds over any number of zeros.
FalhaArquivo CQZTransacaoGravacao::FoiDeixadoAssim(IArquivoAberto &arquivo, bool *pbFoi) {
  if (m_cabecalho.Tem()) {
    HRESULT hr = codigos::kOk;
    std::uint64_t uiTamanho = 0;
    FalhaArquivo falha = m_cabecalho.Examina(arquivo, &hr);
    falha = falha ? falha : arquivo.Tamanho(&uiTamanho);
    const std::uint64_t uiCrc = m_cabecalho.CrcDados();
    const bool bOutro = uiCrc != m_uiCrcAntes && uiCrc != m_uiCrcDepois;
    const bool bDepois = uiCrc == m_uiCrcDepois && uiTamanho == m_uiTamanhoNovo;
    if (falha || (!Falhou(hr) && (bOutro || bDepois || uiTamanho == m_uiTamanho))) {
      *pbFoi = bDepois;
      return falha;
    }
  }
  return FaixaDeixadaAssim(arquivo, pbFoi);
}

/// Every byte of the range is an old or a new one, and the length lies between the old and the new one.
FalhaArquivo CQZTransacaoGravacao::FaixaDeixadaAssim(IArquivoAberto &arquivo, bool *pbFoi) const {
  *pbFoi = false;
  std::uint64_t uiTamanho = 0;
  if (const FalhaArquivo falha = arquivo.Tamanho(&uiTamanho)) {
    return falha;
  }
  const auto [uiMenor, uiMaior] = std::minmax(m_uiTamanho, m_uiTamanhoNovo);
  // Neither our write nor its undoing ever makes the file shorter or longer than this.
  if (!m_bNovoGuardado || uiTamanho < uiMenor || uiTamanho > uiMaior) {
    return plataforma::kSemFalha;
  }
  const std::uint64_t uiFaixa = std::max(m_sAntes.size(), m_sNovo.size());
  const std::uint64_t uiAteOFim = uiTamanho > m_uiOnde ? uiTamanho - m_uiOnde : 0;
  CString sAgora(static_cast<std::size_t>(std::min(uiFaixa, uiAteOFim)), '\0');
  if (const FalhaArquivo falha = arquivo.Le(m_uiOnde, sAgora.data(), sAgora.size())) {
    return falha;
  }
  *pbFoi = true;
  for (std::size_t i = 0; i < sAgora.size(); ++i) {
    const bool bVelho = i < m_sAntes.size() && sAgora[i] == m_sAntes[i];
    const bool bNovo = i < m_sNovo.size() && sAgora[i] == m_sNovo[i];
    // A file that has grown but not got its bytes yet reads as zeros.
    const bool bVazio = m_uiOnde + i >= m_uiTamanho && sAgora[i] == 0;
    *pbFoi = *pbFoi && (bVelho || bNovo || bVazio);
  }
  return plataforma::kSemFalha;
}
