#ifndef KALVO_TESTS_QZDATABASE_BANCOTESTE_H
#define KALVO_TESTS_QZDATABASE_BANCOTESTE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/qzdatabase/arquivo/QZFile.h"
#include "core/qzdatabase/arquivo/QZFileSingleReg.h"
#include "core/qzdatabase/arquivo/QZTextFile.h"
#include "core/qzdatabase/banco/QZDataBase.h"
#include "core/qzdatabase/banco/QZDataBaseFacade.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/SerieFalhas.h"

using apoio::Bytes;
using apoio::ComEmpresa;
using apoio::Linhas;
using apoio::NoDisco;

/// Counts down with the allocations of this thread; the one that meets 1 fails. 0: none does, as under the thread
/// sanitizer, which brings operators of its own.
extern constinit thread_local std::size_t t_alocacoesAteFalhar;

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

inline RegTeste Registro(std::uint32_t uiNumero, std::string_view sTexto) {
  RegTeste reg{uiNumero, {}};
  sTexto.copy(reg.cTexto, sizeof(reg.cTexto));
  return reg;
}

/// With a text of its own.
inline RegTeste Registro(std::uint32_t uiNumero) {
  return Registro(uiNumero, std::to_string(uiNumero));
}

/// The bytes of a file that holds the records numbered `primeiro` to `ultimo`.
inline std::string Bytes(std::uint32_t primeiro, std::uint32_t ultimo) {
  std::string bytes;
  for (std::uint32_t n = primeiro; n <= ultimo; ++n) {
    bytes += Bytes(Registro(n));
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

inline CStringArray Colecao(const std::vector<std::string> &textos) {
  CStringArray aTextos;
  for (const std::string &texto : textos) {
    aTextos.Add(texto);
  }
  return aTextos;
}

/// Number of records of a file that can be had.
inline std::uint64_t Quantidade(CQZFile<RegTeste> &arquivo) {
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

/// A database with a file of each kind.
class BancoTeste : public CQZDataBase {
public:
  BancoTeste() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~BancoTeste() override { FinalizaNoDestrutor(); }

  CQZTextFile m_Texto{"TEXTO.DAT", this};
  ArquivoComTravas m_Registros{"TESTE.DAT", this};
  CQZFileSingleReg<RegTeste> m_Unico{"UNICO.DAT", this};
};

template <>
struct NomeTipoBanco<BancoTeste> {
  static constexpr char kNome[] = "class BancoTeste";
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
  /// Position 0 appends.
  HRESULT Grava(std::uint64_t uiPosicao, const RegTeste &reg) { return Arquivo().Grava(uiPosicao, reg); }
  CQZFile<RegTeste> &Arquivo() { return m_banco.m_Registros; }
  CQZFileSingleReg<RegTeste> &Unico() { return m_banco.m_Unico; }
  CQZTextFile &Texto() { return m_banco.m_Texto; }

  BancoTeste m_banco;
};

#endif
