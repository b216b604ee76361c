#include "core/errors/guard/TraducaoExcecoes.h"

#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>
//
#include <comdef.h>
#endif

#include <memory>
#include <new>
#include <stdexcept>

#include "core/env/QZException.h"
#include "core/errors/QZExceptionEx.h"
#include "core/platform/CFileException.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

using plataforma::CausaArquivo;

/// Throws an exception object by pointer that the handlers may leave alone.
template <class Excecao, class... Argumentos>
[[noreturn]] void Lanca(Argumentos... argumentos) {
  static std::unique_ptr<Excecao> s_spExcecao;
  s_spExcecao = std::make_unique<Excecao>(argumentos...);
  throw s_spExcecao.get();
}

struct ExcecaoPropria : CException {};
struct SistemaDerivada : CQZException {
  using CQZException::CQZException;
};

TEST(TraducaoExcecoes, CadaTipoTemOSeuCodigo) {
  const struct {
    const char *lpNome;
    void (*lanca)();
    std::uint32_t hr;
  } linhas[] = {
      {"extended", [] { throw CQZExceptionEx(CodigoResultado(0x81080123), 1, 2, "m", "f", "a", 3); }, 0x81080123},
      {"system error", [] { Lanca<CQZException>("m", 1U, 2U); }, 0x80040002},
      {"whole system error", [] { Lanca<CQZException>(7U, 1U, 0x81234567U); }, 0x81274567},
      {"derived", [] { Lanca<SistemaDerivada>("m", 1U, 0U); }, 0x8004EA61},
      {"file", [] { Lanca<CFileException>(CausaArquivo::DiscoCheio, 112); }, 0x80070070},
      {"file, low half", [] { Lanca<CFileException>(CausaArquivo::Generica, 0x82345); }, 0x80072345},
      {"file, negative", [] { Lanca<CFileException>(CausaArquivo::Generica, -5); }, 0xFFFFFFFB},
      {"memory", [] { Lanca<CMemoryException>(); }, 0x8004EA62},
      {"framework", [] { Lanca<ExcecaoPropria>(); }, 0x8004EA63},
      {"index check", [] { LancaArgumentoInvalido(); }, 0x8004EA63},
      {"result code", [] { throw CodigoResultado(0x810809DB); }, 0x810809DB},
      {"success code", [] { throw CodigoResultado(0); }, 0},
      {"bad_alloc", [] { throw std::bad_alloc(); }, 0x8004EA64},
      {"exception", [] { throw std::out_of_range("x"); }, 0x8004EA65},
      {"text", [] { throw "x"; }, 0x8004EA66},
      {"by value", [] { throw CMemoryException(); }, 0x8004EA66},
      {"null system error", [] { throw static_cast<CQZException *>(nullptr); }, 0x8004EA61},
      {"null file", [] { throw static_cast<CFileException *>(nullptr); }, 0x8004EA63},
      {"null memory", [] { throw static_cast<CMemoryException *>(nullptr); }, 0x8004EA62},
      {"nullptr", [] { throw nullptr; }, 0x8004EA66},
#ifdef _WIN32
      {"COM", [] { throw _com_error(E_ACCESSDENIED); }, 0x80070005},
      {"COM, a success", [] { throw _com_error(S_OK); }, 0},
#endif
  };
  // Boxes would hold up the call that is being ended.
  apoio::CaixaFalsa caixa;
  const apoio::ServicosTrocados servicos(nullptr, nullptr, nullptr, nullptr, &caixa);
  for (const auto &linha : linhas) {
    try {
      linha.lanca();
      FAIL() << linha.lpNome << " did not throw";
    } catch (...) {
      EXPECT_EQ(BitsResultado(QZTranslateThrownExceptionToHresult()), linha.hr) << linha.lpNome;
    }
  }
  EXPECT_TRUE(caixa.Toma().empty());
}

// Delete knows the ones that live on.
TEST(TraducaoExcecoes, ObjetoPermanente) {
  try {
    LancaArgumentoInvalido();
  } catch (CException *pEx) {
    pEx->Delete();
    EXPECT_STREQ(pEx->GetRuntimeClass()->m_lpszClassName, "CInvalidArgException");
  }
}

}  // namespace
