// The note beside a file of a write that a process did not finish: what it explains, and what it does not.

#include "core/qzdatabase/disco/IntencaoGravacao.h"

#include "tests/apoio/ValoresProprios.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Intencao : public ComBanco {
protected:
  static RegCabecalhoArquivo CabecalhoSobre(const std::string &dados) {
    return MontaRegCabecalho(0, "TESTE.DAT", CalculaCrc64(dados.data(), dados.size()));
  }
  static CQZIntencaoGravacao::Escrita Acrescimo(const std::string &antes, const std::string &novo) {
    return {CabecalhoSobre(antes),
            CabecalhoSobre(antes).uiCrcDados,
            CabecalhoSobre(antes + novo).uiCrcDados,
            kTamanhoCabecalho + antes.size(),
            novo.data(),
            novo.size(),
            kTamanhoCabecalho + antes.size(),
            kTamanhoCabecalho + antes.size() + novo.size()};
  }
  /// Leaves a note as a process does that ends now.
  void Anota(const CQZIntencaoGravacao::Escrita &escrita) {
    CQZIntencaoGravacao intencao;
    intencao.Define(m_sCaminho);
    intencao.Prepara();
    intencao.Anuncia(escrita);
  }
  /// A header over some data in front of others.
  static std::string Arquivo(const RegCabecalhoArquivo &cabecalho, const std::string &dados) {
    return Bytes(MontaRegVersao()) + Bytes(cabecalho) + dados;
  }

  apoio::ChaveCabecalho m_chave{true};
  const CString m_sCaminho = m_empresa.Caminho("TESTE.DAT");
};

/// What the file is found to be, and what it comes to: nothing where the note does not explain it.
TEST_F(Intencao, ExplicaExatamente) {
  const std::string antes = Bytes(1, 2);
  const std::string grande = Bytes(100, 6000);  // more than fits into a note
  const std::string outros = Bytes(8, 9);
  for (const std::string &novo : {Bytes(3, 3), grande}) {
    const bool bCabe = novo != grande;
    const std::string depois = antes + novo;
    RegCabecalhoArquivo mistura = CabecalhoSobre(depois);
    const RegCabecalhoArquivo anterior = CabecalhoSobre(antes);
    std::memcpy(&mistura.uiCrcCabecalho, &anterior.uiCrcCabecalho, 4);
    const std::tuple<const char *, RegCabecalhoArquivo, std::string, std::optional<std::string>> casos[] = {
        {"all there but the header", CabecalhoSobre(antes), depois, depois},
        {"torn", CabecalhoSobre(antes), antes + novo.substr(0, 7), bCabe ? depois : antes},
        {"torn header, records there", mistura, depois, depois},
        {"torn header, records not there", mistura, antes, bCabe ? depois : antes},
        {"header of other data", CabecalhoSobre(outros), antes + novo.substr(0, 7), std::nullopt},
        {"other records before it", CabecalhoSobre(antes), outros + novo.substr(0, 7), std::nullopt},
        {"shorter than before", CabecalhoSobre(antes), antes.substr(0, 16), std::nullopt},
        {"longer than it was to be", CabecalhoSobre(antes), depois + outros, std::nullopt},
    };
    for (const auto &[lpNome, cabecalho, dados, reparado] : casos) {
      SCOPED_TRACE(testing::Message() << lpNome << ", " << novo.size());
      Anota(Acrescimo(antes, novo));
      const std::string disco = Arquivo(cabecalho, dados);
      m_empresa.Escreve("TESTE.DAT", disco);
      EXPECT_EQ(Falhou(Abre()), !reparado);
      EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
      EXPECT_EQ(m_empresa.LeInteiro("TESTE.DAT"), reparado ? NoDisco("TESTE.DAT", *reparado) : disco);
      EXPECT_EQ(m_empresa.Existe("TESTE.INT"), !reparado);
    }
  }
}

/// Zeros behind nothing, or behind zeros, have the CRC of nothing: the header holds, and only the note tells that no
/// record arrived. What is longer than the write are records.
TEST_F(Intencao, ZerosNoLugarDoRegistro) {
  for (const std::string &antes : {std::string(), Bytes(RegTeste{})}) {
    for (const std::size_t cb : {7U, 16U, 32U}) {
      Anota(Acrescimo(antes, Bytes(1, 1)));
      const std::string zeros = antes + std::string(cb, '\0');
      m_empresa.Escreve("TESTE.DAT", Arquivo(CabecalhoSobre(antes), zeros));
      EXPECT_EQ(Abre(), codigos::kOk);
      EXPECT_EQ(Disco("TESTE.DAT"), cb <= sizeof(RegTeste) ? antes + Bytes(1, 1) : zeros) << cb;
    }
  }
}

/// Only a whole note of a creation, under the file's name, is one.
TEST_F(Intencao, Criacao) {
  using Criacao = CQZIntencaoGravacao::Criacao;
  const auto anotada = [this] { return CQZIntencaoGravacao::CriacaoAnotada(m_sCaminho, "TESTE.DAT"); };
  CQZIntencaoGravacao::AnotaCriacao(m_sCaminho, "OUTRO.DAT");
  EXPECT_EQ(anotada(), Criacao::Nada);
  CQZIntencaoGravacao::AnotaCriacao(m_sCaminho, "TESTE.DAT");
  EXPECT_EQ(anotada(), Criacao::Criacao);
  std::string nota = m_empresa.LeInteiro("TESTE.INT");
  nota[12] ^= 1;
  m_empresa.Escreve("TESTE.INT", nota);
  EXPECT_EQ(anotada(), Criacao::Nada);
}

/// A file that was found whole is missed when it goes, although the process ended while it created it, or within its
/// first write.
TEST_F(Intencao, ArquivoInteiroContaComoCriado) {
  for (const bool bCriacao : {false, true}) {
    Poe("TESTE.DAT", std::nullopt);
    Poe(kArquivoControle, std::nullopt);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(Grava(0, Registro(1)), codigos::kOk);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    bCriacao ? CQZIntencaoGravacao::AnotaCriacao(m_sCaminho, "TESTE.DAT") : Anota(Acrescimo("", Bytes(1, 1)));
    EXPECT_EQ(Abre(), codigos::kOk);
    EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
    Poe("TESTE.DAT", std::nullopt);
    EXPECT_EQ(Abre(), codigos::kArquivoDesapareceu);
  }
}

/// The companion is there while the file is open and has been written to, notes nothing between two writes, and goes
/// while the file still keeps others out. One that cannot be had is done without.
TEST_F(Intencao, VidaDoCompanheiro) {
  Poe("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("TESTE.INT"));
  EXPECT_EQ(Grava(0, Registro(3)), codigos::kOk);
  EXPECT_EQ(Inteiro("TESTE.INT").value_or("").substr(0, 8), std::string(8, '\0'));
  m_falhas.Arma({.operacoes = apoio::kOpApaga, .trecho = "TESTE.INT", .falha = {}, .aoFalhar = [this] {
                   EXPECT_EQ(m_falhas.Abertos(), 1) << "the file itself";
                 }});
  EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
  EXPECT_TRUE(m_falhas.Disparou());
  EXPECT_FALSE(m_empresa.Existe("TESTE.INT"));
  ASSERT_EQ(Abre(), codigos::kOk);
  Falha(apoio::kOpAbre, "TESTE.INT", 5);
  EXPECT_EQ(Grava(1, Registro(9)), codigos::kOk);
}

}  // namespace
