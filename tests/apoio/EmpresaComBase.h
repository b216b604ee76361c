#ifndef KALVO_TESTS_APOIO_EMPRESACOMBASE_H
#define KALVO_TESTS_APOIO_EMPRESACOMBASE_H

#include <gtest/gtest.h>

#include <cstring>

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "tests/apoio/EmpresaTeste.h"

namespace apoio {

/// A company whose data files are read without their headers, which must hold where there are any: the tests of the
/// record files run with headers off and on.
class EmpresaComBase : public EmpresaTeste {
public:
  /// What a file holds behind its header.
  std::string Le(const CString &nome) const {
    std::string conteudo = EmpresaTeste::Le(nome);
    RegVersaoArquivo versao{};
    std::memcpy(&versao, conteudo.data(), std::min(conteudo.size(), sizeof(versao)));
    if (!RegVersaoConfere(versao)) {
      return conteudo;
    }
    conteudo.resize(std::max(conteudo.size(), kTamanhoCabecalho));
    RegCabecalhoArquivo cabecalho{};
    std::memcpy(&cabecalho, conteudo.data() + kPosicaoRegCabecalho, sizeof(cabecalho));
    EXPECT_TRUE(RegCabecalhoConfere(cabecalho)) << nome;
    EXPECT_TRUE(NomeConfere(cabecalho, nome)) << nome;
    conteudo.erase(0, kTamanhoCabecalho);
    const std::uint64_t uiCrc = CalculaCrc64(conteudo.data(), conteudo.size());
    EXPECT_EQ(std::uint64_t{cabecalho.uiCrcDados}, uiCrc) << nome;
    return conteudo;
  }

  /// All bytes of a file.
  std::string LeInteiro(const CString &nome) const { return EmpresaTeste::Le(nome); }
};

}  // namespace apoio

#endif
