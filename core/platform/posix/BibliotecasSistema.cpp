#include <dlfcn.h>

#include <algorithm>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class BibliotecaSistema final : public IBiblioteca {
public:
  explicit BibliotecaSistema(void *pModulo) : m_modulo(pModulo) {}
  ~BibliotecaSistema() override { dlclose(m_modulo); }
  BibliotecaSistema(const BibliotecaSistema &) = delete;
  BibliotecaSistema &operator=(const BibliotecaSistema &) = delete;

  void *Funcao(const char *lpNome) override { return dlsym(m_modulo, lpNome); }

private:
  void *m_modulo;
};

class BibliotecasSistema final : public IBibliotecas {
public:
  std::unique_ptr<IBiblioteca> Carrega(const CString &sCaminho) override {
    CString sNativo = sCaminho;
    std::replace(sNativo.begin(), sNativo.end(), '\\', '/');
    void *pModulo = dlopen(sNativo.c_str(), RTLD_NOW | RTLD_LOCAL);
    return pModulo == nullptr ? nullptr : std::make_unique<BibliotecaSistema>(pModulo);
  }
};

}  // namespace

IBibliotecas &BibliotecasDoSistema() {
  return Permanente<BibliotecasSistema>();
}

}  // namespace plataforma
