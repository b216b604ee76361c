#ifndef KALVO_TESTS_QZDATABASE_BANCOTESTE_H
#define KALVO_TESTS_QZDATABASE_BANCOTESTE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/arquivo/QZFile.h"
#include "core/qzdatabase/arquivo/QZFileSingleReg.h"
#include "core/qzdatabase/banco/QZDataBase.h"
#include "core/qzdatabase/banco/QZDataBaseFacade.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/RelogioFalso.h"
#include "tests/apoio/SerieFalhas.h"
#include "tests/apoio/ServicosTrocados.h"

using apoio::Linhas;
using apoio::NoDisco;

/// A record of 16 bytes, so that lengths around a multiple are easy to make.
struct RegTeste {
  std::uint32_t uiNumero;
  char cTexto[12];
};
static_assert(sizeof(RegTeste) == 16);

template <>
struct NomeTipoRegistro<RegTeste> {
  static constexpr char kNome[] = "struct RegTeste";
};

template <>
struct CamposIndexados<RegTeste> {
  static constexpr std::array<CampoIndexado, 1> kCampos = {{{offsetof(RegTeste, cTexto), sizeof(RegTeste::cTexto)}}};
};

inline bool operator==(const RegTeste &a, const RegTeste &b) {
  return std::memcmp(&a, &b, sizeof(a)) == 0;
}

inline RegTeste Registro(std::uint32_t uiNumero, const char *texto = "") {
  RegTeste reg{uiNumero, {}};
  std::copy_n(texto, strnlen(texto, sizeof(reg.cTexto)), reg.cTexto);
  return reg;
}

/// The bytes of a file that holds the records numbered `primeiro` to `ultimo`.
inline std::string Bytes(std::uint32_t primeiro, std::uint32_t ultimo) {
  std::string bytes;
  for (std::uint32_t n = primeiro; n <= ultimo; ++n) {
    const RegTeste reg = Registro(n);
    bytes.append(reinterpret_cast<const char *>(&reg), sizeof(reg));
  }
  return bytes;
}

inline CArray<RegTeste> Colecao(std::uint32_t primeiro, std::uint32_t ultimo) {
  CArray<RegTeste> aRegistros;
  for (std::uint32_t n = primeiro; n <= ultimo; ++n) {
    aRegistros.Add(Registro(n));
  }
  return aRegistros;
}

/// Number of records of a file that can be had.
template <typename T>
std::uint64_t Quantidade(CQZFile<T> &arquivo) {
  std::uint64_t uiQtd = 0;
  EXPECT_EQ(arquivo.GetQuantidade(&uiQtd), codigos::kOk);
  return uiQtd;
}

/// A typed file that shows its locks.
class ArquivoComTravas : public CQZFile<RegTeste> {
public:
  using CQZFile::CQZFile;
  using CQZFile::Leitores;
  using CQZFile::Secao;
};

/// A database with one typed file and one single-record file.
class BancoTeste : public CQZDataBase {
public:
  BancoTeste() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~BancoTeste() override { FinalizaNoDestrutor(); }

  ArquivoComTravas m_Registros{"TESTE.DAT", this};
  CQZFileSingleReg<RegTeste> m_Unico{"UNICO.DAT", this};
};

template <>
struct NomeTipoBanco<BancoTeste> {
  static constexpr char kNome[] = "class BancoTeste";
};

/// A company, a clock that does not wait and a file system that can be told to fail.
class ComEmpresa : public ::testing::Test {
protected:
  /// All bytes of a file, which may be open; nothing when it is not there.
  std::optional<std::string> Inteiro(const CString &nome) { return m_falhas.Conteudo(m_empresa.Caminho(nome)); }
  /// Has the disk hold a data file with this content, or none, without the help of what is tested.
  void Poe(const CString &nome, const std::optional<std::string> &dados) {
    if (dados) {
      m_empresa.Escreve(nome, NoDisco(nome, *dados));
    } else {
      static_cast<void>(plataforma::ServicosDoSistema().arquivos->Apaga(m_empresa.Caminho(nome)));
    }
  }
  /// `acao` runs right before the N-th opening of a file: another program that comes in between.
  apoio::PlanoFalha AntesDeAbrir(const CString &nome, std::function<void()> acao, std::size_t enesima = 1) {
    return {.operacoes = apoio::kOpAbre,
            .trecho = m_empresa.Caminho(nome),
            .enesima = enesima,
            .falha = {},
            .aoFalhar = std::move(acao)};
  }

  static apoio::PlanoFalha Plano(unsigned operacoes, const CString &trecho, std::uint32_t erro,
                                 bool bPersistente = true, std::size_t gravaAntes = 7) {
    return {.operacoes = operacoes,
            .trecho = trecho,
            .bPersistente = bPersistente,
            .falha = plataforma::FalhaWin32(erro),
            .gravaAntes = gravaAntes};
  }
  void Falha(unsigned operacoes, const CString &trecho, std::uint32_t erro, bool bPersistente = true) {
    m_falhas.Arma(Plano(operacoes, trecho, erro, bPersistente));
  }

  apoio::EmpresaComBase m_empresa;
  apoio::RelogioFalso m_relogio;
  apoio::ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  apoio::ServicosTrocados m_servicos{&m_falhas, nullptr, &m_relogio};
};

/// With a database.
class ComBanco : public ComEmpresa {
protected:
  HRESULT Abre() { return m_banco.Inicializa(m_empresa.Dono()); }
  /// Content of a file, once the database has let go of it.
  std::string Disco(const CString &nome) {
    EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
    return m_empresa.Le(nome);
  }
  CQZFile<RegTeste> &Arquivo() { return m_banco.m_Registros; }
  CQZFileSingleReg<RegTeste> &Unico() { return m_banco.m_Unico; }

  BancoTeste m_banco;
};

#endif
