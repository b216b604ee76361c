// File headers: creation, damage, the switch, and the bytes themselves.

#include <future>
#include <thread>

#include "core/conx/DadosInstalacao.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/NomeTrava.h"
#include "tests/apoio/ValoresProprios.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Cabecalho : public ComBanco {
protected:
  /// Opens the base and lets it go.
  HRESULT AbreUmaVez() { return BancoTeste().Inicializa(m_empresa.Dono()); }
  std::string Inteiro(const CString &nome = "TESTE.DAT") { return m_empresa.LeInteiro(nome); }

  apoio::ChaveCabecalho m_chave{true};
};

/// A name is cut to the 40 letters that there is room for.
TEST_F(Cabecalho, BytesConhecidos) {
  const CString sNome = "NOME_COM_MAIS_DE_40_LETRAS_NAO_CABE_INTEIRO.DAT";
  const std::string dados = Linhas({"DFVEIC.DAT"});
  m_empresa.Escreve(sNome, dados);
  DefineLeitorDadosInstalacao([](const CQZBaseParaRotinas &, CQZDadosInstalacao *pDados) -> HRESULT {
    pDados->uiCodigo = 12345678;
    return codigos::kOk;
  });
  CQZDataBase qzDB(QZ_DF);
  CQZTextFile qzFile(sNome, &qzDB);
  EXPECT_EQ(qzDB.Inicializa(m_empresa.Dono()), codigos::kOk);
  EXPECT_EQ(qzDB.Finaliza(), codigos::kOk);
  DefineLeitorDadosInstalacao(nullptr);
  EXPECT_EQ(Inteiro(sNome), Bytes(std::uint64_t{1}) + Bytes(0x54E979925CD0F10DU) + Bytes(0x53E7815838846436U) +
                                Bytes(12345678) + std::string(2, 0) + sNome.substr(0, 40) + std::string(6, 0) +
                                Bytes(0x4601B8E253E36143U) + Bytes(0xC19622B387EBD274U) + dados);
}

/// Each kind of damage has its code, changes nothing, and goes away with the good file.
TEST_F(Cabecalho, DanoERecusadoEPassa) {
  Poe("TESTE.DAT", Bytes(1, 4));
  const std::string sBom = Inteiro();
  const auto inverte = [&](std::size_t uiPosicao) {
    std::string bytes = sBom;
    bytes[uiPosicao] = static_cast<char>(~bytes[uiPosicao]);
    return bytes;
  };
  // Without a whole version record it is a file without header: its bytes are data, 16 of them one record.
  std::vector<std::pair<std::string, HRESULT>> casos;
  for (std::size_t i = 1; i < sBom.size(); ++i) {
    const HRESULT hr = i == sizeof(RegTeste)      ? codigos::kOk
                       : i < kPosicaoRegCabecalho ? codigos::kTamanhoNaoMultiplo
                       : i < kTamanhoCabecalho    ? codigos::kCabecalhoDanificado
                                                  : codigos::kDadosNaoConferem;
    casos.emplace_back(sBom.substr(0, i), hr);
    if (i >= 8) {  // what is before is the version and its padding
      casos.emplace_back(inverte(i), hr == codigos::kOk ? codigos::kTamanhoNaoMultiplo : hr);
    }
  }
  RegVersaoArquivo versao2 = MontaRegVersao();
  versao2.iVersao = 2;
  versao2.uiCrcVersao = CalculaCrc64(&versao2, 2);
  versao2.uiCrcCrcVersao = CalculaCrc64(reinterpret_cast<const char *>(&versao2) + 8, 8);
  casos.emplace_back(Bytes(versao2) + sBom.substr(24), codigos::kCabecalhoVersaoDesconhecida);
  casos.emplace_back(NoDisco("TESTE.DATX", Bytes(1, 4)), codigos::kCabecalhoDeOutroArquivo);
  for (std::size_t i = 0; i < casos.size(); ++i) {
    SCOPED_TRACE(i);
    const auto &[bytes, hr] = casos[i];
    m_empresa.Escreve("TESTE.DAT", bytes);
    ASSERT_EQ(AbreUmaVez(), hr);
    ASSERT_EQ(AbreUmaVez(), hr) << "again";
    ASSERT_EQ(m_empresa.Existe("TESTE.TRA"), false);
    ASSERT_EQ(hr == codigos::kTamanhoNaoMultiplo || hr == codigos::kOk ? m_empresa.Le("TESTE.DAT") : Inteiro(), bytes);
    m_empresa.Escreve("TESTE.DAT", sBom);
    ASSERT_EQ(AbreUmaVez(), codigos::kOk);
    ASSERT_EQ(Inteiro(), sBom);
  }
  m_empresa.Escreve("TESTE.DAT", inverte(2));
  EXPECT_EQ(AbreUmaVez(), codigos::kOk) << "padding of the version record is covered by no check";
}

/// The switch holds from one initialisation to the next: no record moves while it changes.
TEST_F(Cabecalho, ChaveMudaDuranteEEntreAberturas) {
  m_chave.Define(false);
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  m_chave.Define(true);
  EXPECT_EQ(Grava(0, Registro(4)), codigos::kOk);
  EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
  EXPECT_EQ(Inteiro(), Bytes(1, 4)) << "opened without";
  ASSERT_EQ(Abre(), codigos::kOk);
  m_chave.Define(false);
  EXPECT_EQ(Grava(4, Registro(9)), codigos::kOk);
  EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
  m_chave.Define(true);
  EXPECT_EQ(Inteiro(), NoDisco("TESTE.DAT", Bytes(1, 3) + Bytes(9, 9)));
}

/// A database that defers flushing writes the header once, at the end.
TEST_F(Cabecalho, FlushAdiado) {
  Poe("TESTE.DAT", Bytes(1, 4));
  CQZDataBase qzDB(QZ_DF);
  qzDB.AdiaFlush();
  CQZFile<RegTeste> qzFile("TESTE.DAT", &qzDB);
  ASSERT_EQ(qzDB.Inicializa(m_empresa.Dono()), codigos::kOk);
  m_falhas.Arma({apoio::kOpGrava, "TESTE.DAT", 100, false, plataforma::FalhaWin32(112), {}});
  for (std::uint64_t uiPosicao : {1U, 2U, 3U, 4U}) {
    ASSERT_EQ(qzFile.Grava(uiPosicao, Registro(50)), codigos::kOk);
  }
  EXPECT_EQ(m_falhas.Vistas(), 4U);
  m_falhas.Arma({.operacoes = apoio::kOpGrava, .trecho = "TESTE.DAT"});
  EXPECT_EQ(qzDB.Finaliza(), codigos::kArqErroFisico) << "the failure of the only one is told";
  ASSERT_EQ(qzDB.Inicializa(m_empresa.Dono()), codigos::kDadosNaoConferem);
}

/// A file without header gets it whole or stays as it was; one with a header that cannot be read gets no second one.
TEST_F(Cabecalho, FalhaEmCadaOperacaoDaAbertura) {
  const std::string novo = NoDisco("TESTE.DAT", Bytes(1, 4));
  for (const std::string &antes : {Bytes(1, 4), novo}) {
    for (apoio::SerieFalhas serie(m_falhas, {.trecho = "TESTE", .gravaAntes = 30}, apoio::Duracao::Todas);
         serie.Proxima();) {
      m_empresa.Escreve("TESTE.DAT", antes);
      const HRESULT hr = serie.Roda([&] { return AbreUmaVez(); });
      ASSERT_TRUE(Inteiro() == novo || (Falhou(hr) && Inteiro() == antes));
      ASSERT_TRUE(!m_empresa.Existe("TESTE.TRA") || !serie.Passageira());
      ASSERT_EQ(AbreUmaVez(), codigos::kOk) << "a second try works";
      ASSERT_EQ(Inteiro(), novo);
      ASSERT_FALSE(m_empresa.Existe("TESTE.TRA"));
    }
  }
}

/// While the file gets its header: the move of the complete copy fails for a moment, and others do something to the
/// file then, or before it is opened again.
TEST_F(Cabecalho, OutroProgramaNaTrocaPeloNovo) {
  const std::string alheio = NoDisco("TESTE.DAT", Bytes(5, 8));
  const std::string novo = NoDisco("TESTE.DAT", Bytes(1, 4));
  const auto escreve = [&] { m_empresa.Escreve("TESTE.DAT", alheio); };
  const auto segura = [&] { m_falhas.ArmaTambem(Plano(apoio::kOpAbre, "", 32, false)); };
  const std::tuple<const char *, unsigned, std::function<void()>, HRESULT, std::string> casos[] = {
      {"nothing", apoio::kOpMove, [] {}, codigos::kOk, novo},
      {"write", apoio::kOpMove, escreve, codigos::kTraNaoRenomeado, alheio},
      {"copy taken away", apoio::kOpMove, [&] { Poe("TESTE.TRA", {}); }, codigos::kTraNaoRenomeado, Bytes(1, 4)},
      {"write after the move", apoio::kOpAbre, escreve, codigos::kOk, alheio},
      {"damage after the move", apoio::kOpAbre, [&] { m_empresa.Escreve("TESTE.DAT", alheio + "x"); },
       codigos::kDadosNaoConferem, alheio + "x"},
      {"file held for a moment", apoio::kOpMove, segura, codigos::kOk, novo},
      {"file held for a moment, and written", apoio::kOpMove, [&] { escreve(), segura(); }, codigos::kTraNaoRenomeado,
       alheio},
  };
  for (const auto &[lpNome, onde, acao, hr, depois] : casos) {
    SCOPED_TRACE(lpNome);
    m_empresa.Escreve("TESTE.DAT", Bytes(1, 4));
    m_falhas.Arma({.operacoes = apoio::kOpMove, .enesima = 3});
    const bool bMovendo = onde == apoio::kOpMove;
    m_falhas.ArmaTambem({.operacoes = onde,
                         .trecho = "TESTE.DAT",
                         .enesima = bMovendo ? 1U : 2U,
                         .falha = bMovendo ? plataforma::FalhaWin32(32) : plataforma::FalhaArquivo{},
                         .aoFalhar = acao});
    EXPECT_EQ(AbreUmaVez(), hr);
    EXPECT_LE(m_falhas.Vistas(), 2U) << "it is not moved while it cannot be looked at";
    m_falhas.Desarma();
    EXPECT_EQ(Inteiro(), depois);
    EXPECT_FALSE(m_empresa.Existe("TESTE.TRA"));
  }
}

/// Another program is giving the file its header at this moment, and needs the file for that.
TEST_F(Cabecalho, EsperaQuemOCria) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 4));
  std::promise<void> travado;
  std::thread outro;
  const auto cria = [&] {
    const CString sCaminho = m_empresa.Caminho("TESTE.DAT");
    const auto trava = plataforma::CriaTravaEntreProcessos(NomeTravaDoCaminho("Cabecalho", sCaminho));
    EXPECT_TRUE(trava->Toma(0));
    travado.set_value();
    std::unique_ptr<plataforma::IArquivoAberto> arquivo;
    while (plataforma::ServicosDoSistema().arquivos->Abre(sCaminho, {}, &arquivo)) {
      std::this_thread::yield();
    }
    arquivo.reset();
    Poe("TESTE.DAT", Bytes(5, 8));
    trava->Solta();
  };
  m_falhas.Arma({.operacoes = apoio::kOpLe, .trecho = "TESTE.DAT", .falha = {}, .aoFalhar = [&] {
                   outro = std::thread(cria);
                   travado.get_future().wait();
                 }});
  EXPECT_EQ(AbreUmaVez(), codigos::kOk);
  outro.join();
  EXPECT_EQ(Inteiro(), NoDisco("TESTE.DAT", Bytes(5, 8)));
}

/// The copy is on the storage device before it is moved. A file opened to be read along with others neither gets a
/// header nor has it checked.
TEST_F(Cabecalho, CopiaDescarregadaEAberturaCompartilhada) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 4));
  Falha(apoio::kOpDescarrega, "TESTE.TRA", 1117);
  EXPECT_EQ(AbreUmaVez(), codigos::kArqErroFisico);
  EXPECT_EQ(Inteiro(), Bytes(1, 4));
  Poe("TESTE.DAT", Bytes(1, 4));
  m_falhas.FixaUltimaEscrita(1);
  ASSERT_EQ(Abre(), codigos::kOk);
  std::string alheio = NoDisco("TESTE.DAT", Bytes(5, 8));
  alheio[80] ^= 1;
  m_falhas.Arma(AntesDeAbrir("TESTE.DAT", [&] {
    m_empresa.Escreve("TESTE.DAT", alheio);
    m_falhas.FixaUltimaEscrita(2);
  }));
  EXPECT_EQ(Arquivo().AbreArquivo(eModoLeituraCompartilhada), codigos::kOk);
  EXPECT_EQ(Arquivo().AbreArquivo(), codigos::kCabecalhoDanificado);
  EXPECT_EQ(Inteiro(), alheio);
  // What a check has read, and refused, is not served either.
  m_empresa.Escreve("TESTE.DAT", NoDisco("TESTE.DAT", Bytes(5, 8)) + "x");
  EXPECT_EQ(Arquivo().AbreArquivo(), codigos::kDadosNaoConferem);
  m_empresa.Escreve("TESTE.DAT", NoDisco("TESTE.DAT", Bytes(1, 2)));
  EXPECT_EQ(Arquivo().AbreArquivo(eModoLeituraCompartilhada), codigos::kOk);
  EXPECT_EQ(Quantidade(Arquivo()), 2U);
}

}  // namespace
