#include "core/errors/DescricaoDaBiblioteca.h"

#include <memory>

#include "core/env/QZPath.h"
#include "core/platform/Caminhos.h"
#include "core/platform/CodigoEstrangeiro.h"
#include "core/platform/Plataforma.h"

namespace {

constexpr char kBiblioteca[] = "x64\\QZLMensagem.dll";
constexpr char kFuncao[] = "QZGetDescricaoHRESULT";

/// The export. The text that it returns belongs to the library.
using FuncaoDescricao = const char *(*)(HRESULT);

/// Foreign code from the loading, which runs the library's start, to the freeing, which runs its end. Each step has a
/// frame of its own, so that the library is freed whatever its function does.
CString Descricao(HRESULT hr) {
  const CString diretorio = CQZPath::DiretorioInstalacao(QZ_DF);
  if (!plataforma::CaminhoAbsoluto(diretorio)) {
    return {};
  }
  const CString caminho = CQZPath::Junta(diretorio, kBiblioteca);
  std::unique_ptr<plataforma::IBiblioteca> spBiblioteca;
  plataforma::ChamaCodigoEstrangeiro([&] { spBiblioteca = plataforma::Bibliotecas().Carrega(caminho); });
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
