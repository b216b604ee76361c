#include "core/errors/QZMensagem.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

#include "core/env/QZException.h"
#include "core/env/QZPath.h"
#include "core/env/TextosCaixa.h"
#include "core/platform/Plataforma.h"

namespace {

constexpr std::size_t kTamanhoCampoNumero = 8;
/// What is longer goes on as a line of its own.
constexpr std::size_t kTamanhoMaximoLinha = 1023;
constexpr std::size_t kTamanhoMaximoErroSO = 255;
constexpr char kFimDoTexto = '\x1A';  ///< ends a text file on Windows

/// Windows-1252.
constexpr char kSemCatalogo[] = "N\xE3o foi poss\xEDvel abrir o arquivo texto de Mensagens ";
constexpr char kSemCatalogoFim[] = ". Caso o caminho esteja correto, atualize o arquivo.";

CString CaminhoCatalogo(std::uint32_t uiSistema) {
  return CQZPath::CaminhoArquivo(kModuloMensagens, "", "QZ" + CodigoProduto(uiSistema) + "Mens.txt");
}

/// The whole catalogue with line feeds alone as line ends; nothing when the file cannot be opened. One that opens and
/// cannot be read is as good as empty.
std::optional<CString> LeCatalogo(const CString &sCaminho) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  if (Arquivos().Abre(sCaminho, {Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente}, &arquivo)) {
    return std::nullopt;
  }
  std::uint64_t uiTamanho = 0;
  if (arquivo->Tamanho(&uiTamanho)) {
    return CString();
  }
  CString sConteudo(static_cast<std::size_t>(uiTamanho), '\0');
  if (arquivo->Le(0, sConteudo.data(), sConteudo.size())) {
    return CString();
  }
  sConteudo.resize(std::min(sConteudo.find(kFimDoTexto), sConteudo.size()));
  std::size_t fim = 0;
  for (std::size_t i = 0; i < sConteudo.size(); ++i) {
    if (sConteudo[i] != '\r' || i + 1 == sConteudo.size() || sConteudo[i + 1] != '\n') {
      sConteudo[fim++] = sConteudo[i];
    }
  }
  sConteudo.resize(fim);
  return sConteudo;
}

/// Takes the next line off the front, with the line feed that ends it.
CString TomaLinha(std::string_view *pResto) {
  const std::size_t fim = std::min(pResto->find('\n'), pResto->size() - 1) + 1;
  CString sLinha(pResto->substr(0, std::min(fim, kTamanhoMaximoLinha)));
  pResto->remove_prefix(sLinha.size());
  return sLinha;
}

/// The leading number of a line; what does not fit is the nearest that does.
std::uint32_t NumeroDaLinha(const CString &sLinha) {
  using Limites = std::numeric_limits<std::int32_t>;
  const long long llNumero = std::strtoll(sLinha.c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(std::clamp<long long>(llNumero, Limites::min(), Limites::max()));
}

CString TextoDaLinha(CString sLinha) {
  if (!sLinha.empty() && sLinha.back() == '\n') {
    sLinha.pop_back();
  }
  CString sTexto = sLinha.size() > kTamanhoCampoNumero ? sLinha.substr(kTamanhoCampoNumero) : CString();
  for (std::size_t i = sTexto.find("\\n"); i != CString::npos; i = sTexto.find("\\n", i + 1)) {
    sTexto.replace(i, 2, "\n");
  }
  return sTexto;
}

/// A system text on one line, as much as fits into the box's error line.
CString UmaLinha(const CString &sTexto) {
  CString sLinha;
  for (const char letra : sTexto) {
    const bool bBranco = letra == '\r' || letra == '\n' || letra == ' ';
    if (!bBranco || (!sLinha.empty() && sLinha.back() != ' ')) {
      sLinha += bBranco ? ' ' : letra;
    }
  }
  sLinha.resize(std::min(sLinha.size(), kTamanhoMaximoErroSO));
  sLinha.resize(sLinha.find_last_not_of(' ') + 1);
  return sLinha;
}

}  // namespace

void CQZMensagem::Instala() {
  DefineFonteMensagens(&LeMensagem);
}

CString CQZMensagem::LeMensagem(std::uint32_t uiMensagem, std::uint32_t uiSistema) {
  const CString sCaminho = CaminhoCatalogo(uiSistema);
  const std::optional<CString> catalogo = LeCatalogo(sCaminho);
  if (!catalogo) {
    plataforma::CaixaMensagem().Mostra(kSemCatalogo + sCaminho + kSemCatalogoFim, "Erro", plataforma::kIconeExclamacao,
                                       plataforma::DonoCaixa::Nenhum);
    return {};
  }
  for (std::string_view sResto = *catalogo; !sResto.empty();) {
    const CString sLinha = TomaLinha(&sResto);
    if (NumeroDaLinha(sLinha) == uiMensagem) {
      return TextoDaLinha(sLinha);
    }
  }
  return {};
}

void CQZMensagem::ExibeMensagem(std::uint32_t uiMensagem, std::uint32_t uiSistema, std::uint32_t uiErroSO,
                                std::uint32_t uiTipo) {
  const CString sTextoSO = uiErroSO != 0 ? UmaLinha(DescricaoErroSO(uiErroSO)) : CString();
  plataforma::CaixaMensagem().Mostra(TextoDaCaixa(LeMensagem(uiMensagem, uiSistema), uiMensagem, uiErroSO, sTextoSO),
                                     NomeProduto(uiSistema), uiTipo, plataforma::DonoCaixa::Nenhum);
}

CString CQZMensagem::DescricaoErroSO(std::uint32_t uiErroSO) {
  return plataforma::Informacoes().TextoErro(uiErroSO);
}
