#include "core/env/TextosCaixa.h"

namespace {

struct LinhaProduto {
  std::uint32_t uiSistema;
  const char *lpCodigo;
  const char *lpNome;
};

/// The rows of the suite's product list that this system uses.
constexpr LinhaProduto kProdutos[] = {{1, "ME", "Miran Empresarial"}};

const LinhaProduto *Procura(std::uint32_t uiSistema) {
  for (const LinhaProduto &linha : kProdutos) {
    if (linha.uiSistema == uiSistema) {
      return &linha;
    }
  }
  return nullptr;
}

/// Message and error numbers are shown signed.
CString Numero(std::uint32_t uiNumero) {
  return std::to_string(static_cast<std::int32_t>(uiNumero));
}

/// Windows-1252. Split where a hexadecimal digit follows an escape.
constexpr char kErroDesconhecido[] =
    "Erro desconhecido encontrado. C\xF3"
    "digo (";

}  // namespace

CString NomeProduto(std::uint32_t uiSistema) {
  const LinhaProduto *pLinha = Procura(uiSistema);
  return pLinha != nullptr ? pLinha->lpNome : "";
}

CString CodigoProduto(std::uint32_t uiSistema) {
  const LinhaProduto *pLinha = Procura(uiSistema);
  return pLinha != nullptr ? pLinha->lpCodigo : "";
}

CString TextoDaCaixa(const CString &sTexto, std::uint32_t uiMensagem, std::uint32_t uiErroSO, const CString &sTextoSO) {
  const CString sMensagem = sTexto.empty() ? kErroDesconhecido + Numero(uiMensagem) + ")" : sTexto;
  return uiErroSO == 0 ? sMensagem : sMensagem + "\nErro do SO: " + Numero(uiErroSO) + " - " + sTextoSO;
}
