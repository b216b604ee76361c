#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/posix/ArquivoIni.h"
#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

class ArquivosIniSistema final : public IArquivosIni {
public:
  std::uint32_t LeInteiro(const CString &arquivo, const char *secao, const char *chave, std::uint32_t padrao) override {
    const CString valor = ValorIni(CaminhoNativo(arquivo), secao, chave).value_or(CString());
    return valor.empty() ? padrao : NumeroIni(valor);
  }

  CString LeTexto(const CString &arquivo, const char *secao, const char *chave, const char *padrao,
                  std::size_t maximo) override {
    return ValorIni(CaminhoNativo(arquivo), secao, chave).value_or(padrao).substr(0, maximo);
  }
};

}  // namespace

IArquivosIni &ArquivosIniDoSistema() {
  return Permanente<ArquivosIniSistema>();
}

}  // namespace plataforma
