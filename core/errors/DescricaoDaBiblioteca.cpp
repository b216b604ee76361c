#include "core/errors/DescricaoDaBiblioteca.h"

#include "core/env/BibliotecaSuite.h"

namespace {

constexpr char kBiblioteca[] = "QZLMensagem.dll";
constexpr char kFuncao[] = "QZGetDescricaoHRESULT";

/// The export. The text that it returns belongs to the library.
using FuncaoDescricao = const char *(*)(HRESULT);

/// The library's text, copied while the library is still loaded. Foreign code: whatever it throws ends here, before the
/// caller frees the library that the exception's type and destructor live in.
CString ChamaFuncao(FuncaoDescricao funcao, HRESULT hr) {
  try {
    const char *lpTexto = funcao(hr);
    return lpTexto != nullptr ? lpTexto : "";
  } catch (...) {
    return {};
  }
}

CString Descricao(HRESULT hr) {
  const auto pBiblioteca = CarregaBibliotecaSuite(QZ_DF, kBiblioteca);
  void *pFuncao = pBiblioteca != nullptr ? pBiblioteca->Funcao(kFuncao) : nullptr;
  return pFuncao != nullptr ? ChamaFuncao(reinterpret_cast<FuncaoDescricao>(pFuncao), hr) : CString();
}

}  // namespace

CString DescricaoDaBiblioteca(HRESULT hr) noexcept {
  try {
    return Descricao(hr);
  } catch (...) {
    // Out of memory: a failure is being described, and its own code must reach the caller whatever happens here.
    return {};
  }
}
