#include "core/env/QZException.h"

#include <algorithm>
#include <atomic>

#include "core/env/TextosCaixa.h"
#include "core/platform/Plataforma.h"

namespace {

constexpr std::uint32_t kTodosOsIcones =
    plataforma::kIconeErro | plataforma::kIconePergunta | plataforma::kIconeInformacao;

std::atomic<FonteMensagens> g_fonte{nullptr};

}  // namespace

FonteMensagens DefineFonteMensagens(FonteMensagens fonte) {
  return g_fonte.exchange(fonte);
}

CString CQZException::GetTexto() {
  const FonteMensagens fonte = g_fonte.load();
  if (m_sMensagem.empty() && fonte != nullptr) {
    m_sMensagem = fonte(m_uiMensagem, m_uiSistema);
  }
  return m_sMensagem;
}

bool CQZException::GetErrorMessage(char *lpBuffer, std::uint32_t uiTamanho, std::uint32_t *puiAjuda) {
  const CString sTexto = GetTexto();
  if (puiAjuda != nullptr) {
    *puiAjuda = 0;
  }
  if (lpBuffer != nullptr && uiTamanho > 0) {
    // What the text leaves of the buffer is zero, its last byte above all.
    char *const lpFim = std::copy_n(sTexto.data(), std::min<std::size_t>(sTexto.size(), uiTamanho - 1), lpBuffer);
    std::fill(lpFim, lpBuffer + uiTamanho, '\0');
  }
  return !sTexto.empty();
}

int CQZException::ReportError(std::uint32_t uiTipo, std::uint32_t /*uiAjuda*/) {
  const CString sTextoSO = m_uiErroSO != 0 ? plataforma::Informacoes().TextoErro(m_uiErroSO) : CString();
  const std::uint32_t uiIcone = (uiTipo & kTodosOsIcones) == 0 ? plataforma::kIconeExclamacao : 0;
  return plataforma::CaixaMensagem().Mostra(TextoDaCaixa(GetTexto(), m_uiMensagem, m_uiErroSO, sTextoSO),
                                            NomeProduto(m_uiSistema), uiTipo | uiIcone,
                                            plataforma::DonoCaixa::JanelaDaThread);
}
