#include <windows.h>

#include <utility>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

class BibliotecaSistema final : public IBiblioteca {
public:
  explicit BibliotecaSistema(PosseModulo modulo) : m_modulo(std::move(modulo)) {}

  void *Funcao(const char *lpNome) override {
    return reinterpret_cast<void *>(::GetProcAddress(m_modulo.get(), lpNome));
  }

private:
  PosseModulo m_modulo;
};

class BibliotecasSistema final : public IBibliotecas {
public:
  std::unique_ptr<IBiblioteca> Carrega(const CString &sCaminho) override {
    PosseModulo modulo(::LoadLibraryExA(sCaminho.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    return modulo ? std::make_unique<BibliotecaSistema>(std::move(modulo)) : nullptr;
  }
};

}  // namespace

IBibliotecas &BibliotecasDoSistema() {
  return Permanente<BibliotecasSistema>();
}

}  // namespace plataforma
