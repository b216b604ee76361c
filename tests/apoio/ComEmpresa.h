#ifndef KALVO_TESTS_APOIO_COMEMPRESA_H
#define KALVO_TESTS_APOIO_COMEMPRESA_H

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "core/platform/Plataforma.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

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
