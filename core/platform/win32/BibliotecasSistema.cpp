#include <windows.h>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class BibliotecaSistema final : public IBiblioteca {
public:
  explicit BibliotecaSistema(HMODULE modulo) : m_modulo(modulo) {}
  ~BibliotecaSistema() override { ::FreeLibrary(m_modulo); }
  BibliotecaSistema(const BibliotecaSistema &) = delete;
  BibliotecaSistema &operator=(const BibliotecaSistema &) = delete;

  void *Funcao(const char *nome) override { return reinterpret_cast<void *>(::GetProcAddress(m_modulo, nome)); }

private:
  HMODULE m_modulo;
};

class BibliotecasSistema final : public IBibliotecas {
public:
  std::unique_ptr<IBiblioteca> Carrega(const CString &caminho) override {
    const HMODULE modulo = ::LoadLibraryExA(caminho.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    return modulo == nullptr ? nullptr : std::make_unique<BibliotecaSistema>(modulo);
  }
};

}  // namespace

IBibliotecas &BibliotecasDoSistema() {
  return Permanente<BibliotecasSistema>();
}

}  // namespace plataforma
