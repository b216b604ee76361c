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
  const HRESULT codigos[] = {E_ACCESSDENIED, CodigoResultado(0x8004EAC5), S_OK};
  for (const HRESULT hr : codigos) {
    try {
      throw _com_error(hr);
    } catch (...) {
      EXPECT_EQ(QZTranslateThrownExceptionToHresult(), hr);
    }
    try {
      throw ErroDerivado(hr);
    } catch (...) {
      EXPECT_EQ(QZTranslateThrownExceptionToHresult(), hr);
    }
  }
}

}  // namespace
