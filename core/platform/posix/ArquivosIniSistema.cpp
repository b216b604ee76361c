#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/posix/ArquivoIni.h"
#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

class ArquivosIniSistema final : public IArquivosIni {
public:
  std::uint32_t LeInteiro(const CString &sArquivo, const char *lpSecao, const char *lpChave,
                          std::uint32_t padrao) override {
    const CString sValor = ValorIni(CaminhoNativo(sArquivo), lpSecao, lpChave).value_or(CString());
    return sValor.empty() ? padrao : NumeroIni(sValor);
  }

  CString LeTexto(const CString &sArquivo, const char *lpSecao, const char *lpChave, const char *lpPadrao,
                  std::size_t maximo) override {
    return ValorIni(CaminhoNativo(sArquivo), lpSecao, lpChave).value_or(lpPadrao).substr(0, maximo);
  }
};

}  // namespace

IArquivosIni &ArquivosIniDoSistema() {
  return Permanente<ArquivosIniSistema>();
}

}  // namespace plataforma
