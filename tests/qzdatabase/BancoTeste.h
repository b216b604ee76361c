#ifndef KALVO_TESTS_QZDATABASE_BANCOTESTE_H
#define KALVO_TESTS_QZDATABASE_BANCOTESTE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

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

inline bool operator==(const RegTeste &a, const RegTeste &b) {
  return std::memcmp(&a, &b, sizeof(a)) == 0;
}

inline RegTeste Registro(std::uint32_t uiNumero, const char *texto = "") {
  RegTeste reg{uiNumero, {}};
  std::strncpy(reg.cTexto, texto, sizeof(reg.cTexto));
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

/// A database with one typed file and one single-record file.
class BancoTeste : public CQZDataBase {
public:
  BancoTeste() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~BancoTeste() override { FinalizaNoDestrutor(); }

  CQZFile<RegTeste> m_Registros{"TESTE.DAT", this};
  CQZFileSingleReg<RegTeste> m_Unico{"UNICO.DAT", this};
};

template <>
struct NomeTipoBanco<BancoTeste> {
  static constexpr char kNome[] = "class BancoTeste";
};

/// A company with a database, a clock that does not wait and a file system that can be told to fail.
class ComBanco : public ::testing::Test {
protected:
  HRESULT Abre() { return m_banco.Inicializa(m_empresa.Dono()); }
  /// Writes a file and, where headers are on, lets it get its header.
  void Prepara(const CString &nome, const std::string &bytes) {
    m_empresa.Escreve(nome, bytes);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
  }
  /// Content of a file, once the database has let go of it.
  std::string Disco(const CString &nome) {
    EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
    return m_empresa.Le(nome);
  }
  CQZFile<RegTeste> &Arquivo() { return m_banco.m_Registros; }
  CQZFileSingleReg<RegTeste> &Unico() { return m_banco.m_Unico; }

  apoio::EmpresaComBase m_empresa;
  apoio::RelogioFalso m_relogio;
  apoio::ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  apoio::ServicosTrocados m_servicos{&m_falhas, nullptr, &m_relogio};
  BancoTeste m_banco;
};

#endif
