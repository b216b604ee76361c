#include <windows.h>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class ArquivosIniSistema final : public IArquivosIni {
public:
  std::uint32_t LeInteiro(const CString &sArquivo, const char *lpSecao, const char *lpChave,
                          std::uint32_t padrao) override {
    return ::GetPrivateProfileIntA(lpSecao, lpChave, static_cast<INT>(padrao), sArquivo.c_str());
  }

  CString LeTexto(const CString &sArquivo, const char *lpSecao, const char *lpChave, const char *lpPadrao,
                  std::size_t maximo) override {
    CString sTexto(maximo + 1, '\0');
    const DWORD qtd = ::GetPrivateProfileStringA(lpSecao, lpChave, lpPadrao, sTexto.data(),
                                                 static_cast<DWORD>(sTexto.size()), sArquivo.c_str());
    sTexto.resize(qtd);
    return sTexto;
  }
};

}  // namespace

IArquivosIni &ArquivosIniDoSistema() {
  return Permanente<ArquivosIniSistema>();
}

}  // namespace plataforma
