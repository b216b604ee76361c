#ifndef KALVO_TESTS_APOIO_ARQUIVOSINICONTADOS_H
#define KALVO_TESTS_APOIO_ARQUIVOSINICONTADOS_H

#include <atomic>

#include "core/platform/ServicosSistema.h"

namespace apoio {

/// The real ini files, and how many texts were asked of them.
class ArquivosIniContados final : public plataforma::IArquivosIni {
public:
  std::atomic<int> m_textos{0};

  std::uint32_t LeInteiro(const CString &sArquivo, const char *lpSecao, const char *lpChave,
                          std::uint32_t padrao) override {
    return plataforma::ArquivosIniDoSistema().LeInteiro(sArquivo, lpSecao, lpChave, padrao);
  }
  CString LeTexto(const CString &sArquivo, const char *lpSecao, const char *lpChave, const char *padrao,
                  std::size_t maximo) override {
    ++m_textos;
    return plataforma::ArquivosIniDoSistema().LeTexto(sArquivo, lpSecao, lpChave, padrao, maximo);
  }
};

}  // namespace apoio

#endif
