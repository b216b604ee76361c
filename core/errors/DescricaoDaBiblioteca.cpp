#include "core/errors/DescricaoDaBiblioteca.h"

#include <memory>

#include "core/env/BibliotecaSuite.h"
#include "core/platform/CodigoEstrangeiro.h"

namespace {

constexpr char kBiblioteca[] = "QZLMensagem.dll";
constexpr char kFuncao[] = "QZGetDescricaoHRESULT";

/// The export. The text that it returns belongs to the library.
using FuncaoDescricao = const char *(*)(HRESULT);

/// Foreign code from the loading, which runs the library's start, to the freeing, which runs its end. Each step has a
/// frame of its own, so that the library is freed whatever its function does.
CString Descricao(HRESULT hr) {
  std::unique_ptr<plataforma::IBiblioteca> spBiblioteca;
  plataforma::ChamaCodigoEstrangeiro([&] { spBiblioteca = CarregaBibliotecaSuite(QZ_DF, kBiblioteca); });
  if (spBiblioteca == nullptr) {
    return {};
  }
  CString sTexto;
  const bool bCompleto = plataforma::ChamaCodigoEstrangeiro([&] {
    const auto funcao = reinterpret_cast<FuncaoDescricao>(spBiblioteca->Funcao(kFuncao));
    const char *lpTexto = funcao != nullptr ? funcao(hr) : nullptr;
    sTexto = lpTexto != nullptr ? lpTexto : "";
  });
  plataforma::ChamaCodigoEstrangeiro([&] { spBiblioteca.reset(); });
  return bCompleto ? sTexto : CString();
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
