#include <windows.h>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class ArquivosIniSistema final : public IArquivosIni {
public:
  std::uint32_t LeInteiro(const CString &arquivo, const char *secao, const char *chave, std::uint32_t padrao) override {
    return ::GetPrivateProfileIntA(secao, chave, static_cast<INT>(padrao), arquivo.c_str());
  }

  CString LeTexto(const CString &arquivo, const char *secao, const char *chave, const char *padrao,
                  std::size_t maximo) override {
    CString texto(maximo + 1, '\0');
    const DWORD qtd = ::GetPrivateProfileStringA(secao, chave, padrao, texto.data(), static_cast<DWORD>(texto.size()),
                                                 arquivo.c_str());
    texto.resize(qtd);
    return texto;
  }
};

}  // namespace

IArquivosIni &ArquivosIniDoSistema() {
  return Permanente<ArquivosIniSistema>();
}

}  // namespace plataforma
