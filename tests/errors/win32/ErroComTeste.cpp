#include <gtest/gtest.h>
#include <windows.h>
//
#include <comdef.h>

#include "core/errors/guard/TraducaoExcecoes.h"

namespace {

TEST(TraducaoExcecoes, ErroDoComPassaComOSeuCodigo) {
  struct ErroDerivado : _com_error {
    using _com_error::_com_error;
  };
  for (const HRESULT hr : {E_ACCESSDENIED, CodigoResultado(0x8004EAC5), S_OK}) {
    for (const bool bDerivado : {false, true}) {
      try {
        bDerivado ? throw ErroDerivado(hr) : throw _com_error(hr);
      } catch (...) {
        EXPECT_EQ(QZTranslateThrownExceptionToHresult(), hr) << bDerivado;
      }
    }
  }
}

}  // namespace
