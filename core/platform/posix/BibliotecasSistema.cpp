#include <dlfcn.h>

#include <algorithm>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class BibliotecaSistema final : public IBiblioteca {
public:
  explicit BibliotecaSistema(void *modulo) : m_modulo(modulo) {}
  ~BibliotecaSistema() override { dlclose(m_modulo); }
  BibliotecaSistema(const BibliotecaSistema &) = delete;
  BibliotecaSistema &operator=(const BibliotecaSistema &) = delete;

  void *Funcao(const char *nome) override { return dlsym(m_modulo, nome); }

private:
  void *m_modulo;
};

class BibliotecasSistema final : public IBibliotecas {
public:
  std::unique_ptr<IBiblioteca> Carrega(const CString &caminho) override {
    CString nativo = caminho;
    std::replace(nativo.begin(), nativo.end(), '\\', '/');
    void *modulo = dlopen(nativo.c_str(), RTLD_NOW | RTLD_LOCAL);
    return modulo == nullptr ? nullptr : std::make_unique<BibliotecaSistema>(modulo);
  }
};

}  // namespace

IBibliotecas &BibliotecasDoSistema() {
  return Permanente<BibliotecasSistema>();
}

}  // namespace plataforma
