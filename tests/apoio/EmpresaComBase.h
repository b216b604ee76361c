#ifndef KALVO_TESTS_APOIO_EMPRESACOMBASE_H
#define KALVO_TESTS_APOIO_EMPRESACOMBASE_H

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "tests/apoio/ArquivosComFalha.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/ValoresProprios.h"

namespace apoio {

/// The bytes that a value has in memory.
template <typename T>
requires std::is_trivially_copyable_v<T> std::string Bytes(const T &valor) {
  return std::string(reinterpret_cast<const char *>(&valor), sizeof(T));
}

/// The bytes of a whole data file with this content: behind a header where headers are on.
inline std::string NoDisco(const CString &sNome, const std::string &sDados) {
  if (!CabecalhosLigados() || sNome.ends_with("TRA")) {
    return sDados;
  }
  return Bytes(MontaRegVersao()) + Bytes(MontaRegCabecalho(0, sNome, CalculaCrc64(sDados.data(), sDados.size()))) +
         sDados;
}

/// The content of a text file with these lines.
inline std::string Linhas(const std::vector<std::string> &textos) {
  std::string bytes;
  for (const std::string &texto : textos) {
    bytes += Bytes(static_cast<std::uint32_t>(texto.size())) + texto;
  }
  return bytes;
}

/// A company whose data files are read without their headers, which must hold where there are any: the tests of the
/// record files run with headers off and on.
class EmpresaComBase : public EmpresaTeste {
public:
  /// What a file holds behind its header.
  std::string Le(const CString &sNome) const {
    std::string sConteudo = EmpresaTeste::Le(sNome);
    RegVersaoArquivo versao{};
    std::memcpy(&versao, sConteudo.data(), std::min(sConteudo.size(), sizeof(versao)));
    if (!RegVersaoConfere(versao)) {
      return sConteudo;
    }
    sConteudo.resize(std::max(sConteudo.size(), kTamanhoCabecalho));
    RegCabecalhoArquivo cabecalho{};
    std::memcpy(&cabecalho, sConteudo.data() + kPosicaoRegCabecalho, sizeof(cabecalho));
    EXPECT_TRUE(RegCabecalhoConfere(cabecalho)) << sNome;
    EXPECT_TRUE(NomeConfere(cabecalho, sNome)) << sNome;
    sConteudo.erase(0, kTamanhoCabecalho);
    const std::uint64_t uiCrc = CalculaCrc64(sConteudo.data(), sConteudo.size());
    EXPECT_EQ(std::uint64_t{cabecalho.uiCrcDados}, uiCrc) << sNome;
    return sConteudo;
  }

  /// All bytes of a file.
  std::string LeInteiro(const CString &sNome) const { return EmpresaTeste::Le(sNome); }
};

/// A company, a clock that does not wait and a file system that can be told to fail.
class ComEmpresa : public ::testing::Test {
protected:
  /// All bytes of a file, which may be open; nothing when it is not there.
  std::optional<std::string> Inteiro(const CString &sNome) { return m_falhas.Conteudo(m_empresa.Caminho(sNome)); }
  /// Has the disk hold a data file with this content, or none, without the help of what is tested.
  void Poe(const CString &sNome, const std::optional<std::string> &dados) {
    if (dados) {
      m_empresa.Escreve(sNome, NoDisco(sNome, *dados));
    } else {
      static_cast<void>(plataforma::ServicosDoSistema().arquivos->Apaga(m_empresa.Caminho(sNome)));
    }
  }
  /// `acao` runs right before the N-th opening of a file: another program that comes in between.
  PlanoFalha AntesDeAbrir(const CString &sNome, std::function<void()> acao, std::size_t enesima = 1) {
    return {.operacoes = kOpAbre,
            .trecho = m_empresa.Caminho(sNome),
            .enesima = enesima,
            .falha = {},
            .aoFalhar = std::move(acao)};
  }

  static PlanoFalha Plano(unsigned operacoes, const CString &sTrecho, std::uint32_t erro, bool bPersistente = true,
                          std::size_t gravaAntes = 7) {
    return {.operacoes = operacoes,
            .trecho = sTrecho,
            .bPersistente = bPersistente,
            .falha = plataforma::FalhaWin32(erro),
            .gravaAntes = gravaAntes};
  }
  void Falha(unsigned operacoes, const CString &sTrecho, std::uint32_t erro, bool bPersistente = true) {
    m_falhas.Arma(Plano(operacoes, sTrecho, erro, bPersistente));
  }

  EmpresaComBase m_empresa;
  RelogioFalso m_relogio;
  ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  ServicosTrocados m_servicos{&m_falhas, nullptr, &m_relogio};
};

}  // namespace apoio

#endif
