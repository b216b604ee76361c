// Files by their paths: opening, moving, deleting and listing, what an open file refuses to two handles and to two
// processes, and what is done to one.

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ProcessoFilho.h"

namespace {

using namespace plataforma;

std::vector<ModoAbertura> TodosOsModos() {
  std::vector<ModoAbertura> modos;
  for (const Acesso acesso : {Acesso::Leitura, Acesso::Escrita, Acesso::LeituraEscrita}) {
    for (const auto outros : {Compartilhamento::Exclusivo, Compartilhamento::NegaEscrita, Compartilhamento::NegaNada}) {
      modos.push_back({acesso, outros, Criacao::SoExistente});
    }
  }
  return modos;
}

std::string Descreve(const ModoAbertura &modo) {
  return std::to_string(static_cast<int>(modo.acesso)) + " " + std::to_string(static_cast<int>(modo.compartilhamento));
}

bool Tolera(const ModoAbertura &aberto, const ModoAbertura &outro) {
  const bool bOutroLe = outro.acesso != Acesso::Escrita;
  const bool bOutroGrava = outro.acesso != Acesso::Leitura;
  return (!bOutroLe || aberto.compartilhamento != Compartilhamento::Exclusivo) &&
         (!bOutroGrava || aberto.compartilhamento == Compartilhamento::NegaNada);
}

std::uint32_t ErroAoAbrir(const CString &caminho, const ModoAbertura &modo) {
  std::unique_ptr<IArquivoAberto> arquivo;
  const FalhaArquivo falha = Arquivos().Abre(caminho, modo, &arquivo);
  EXPECT_EQ(arquivo == nullptr, static_cast<bool>(falha));
  EXPECT_EQ(falha.causa, CausaDoErroWin32(falha.erroSO));
  return falha.erroSO;
}

std::uint32_t Move(const CString &origem, const CString &destino) {
  return Arquivos().MoveSubstituindo(origem, destino).erroSO;
}

/// What all others may do to a file of one byte that is open in mode `primeiro`.
void ConfereSegundos(const CString &caminho, const ModoAbertura &primeiro) {
  SCOPED_TRACE(Descreve(primeiro));
  for (const ModoAbertura &segundo : TodosOsModos()) {
    const bool bPermitido = Tolera(primeiro, segundo) && Tolera(segundo, primeiro);
    EXPECT_EQ(ErroAoAbrir(caminho, segundo), bPermitido ? 0u : 32u) << "second " << Descreve(segundo);
  }
  if (primeiro.compartilhamento != Compartilhamento::NegaNada) {
    EXPECT_EQ(ErroAoAbrir(caminho, {Acesso::Escrita, Compartilhamento::NegaNada, Criacao::CriaVazio}), 32u);
  }
  EXPECT_EQ(Arquivos().Apaga(caminho).erroSO, 32u);
  EXPECT_EQ(Move(caminho, caminho + "2"), 32u);
  apoio::EscreveArquivo(caminho + "3", "outro");
  EXPECT_EQ(Move(caminho + "3", caminho), 5u);
  EXPECT_EQ(Move(caminho, caminho + "3"), 32u);
  std::uint64_t tamanho = 0;
  EXPECT_FALSE(Arquivos().TamanhoDe(caminho, &tamanho));
  EXPECT_EQ(tamanho, 1u) << "neither emptied nor replaced";
}

/// Opens the file in each mode that it is told, giving up the one before; answers with the error number.
int AbreQuandoMandado(const std::vector<std::string> &argumentos) {
  std::unique_ptr<IArquivoAberto> arquivo;
  int acesso = 0;
  int compartilhamento = 0;
  while (std::cin >> acesso >> compartilhamento) {
    const ModoAbertura modo{static_cast<Acesso>(acesso), static_cast<Compartilhamento>(compartilhamento),
                            Criacao::SoExistente};
    std::cout << Arquivos().Abre(argumentos[0], modo, &arquivo).erroSO << std::endl;
  }
  return 0;
}
const apoio::RegistraFilha kQueAbre("abre-quando-mandado", AbreQuandoMandado);

TEST(Compartilhamento, EntreDoisNoMesmoProcessoEEntreDoisProcessos) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.DAT", "x");
  apoio::ProcessoFilho filho("abre-quando-mandado", {pasta / "A.DAT"});
  for (const ModoAbertura &primeiro : TodosOsModos()) {
    filho.EnviaLinha(Descreve(primeiro));
    ASSERT_EQ(filho.LeLinha(), "0") << Descreve(primeiro);
    ConfereSegundos(pasta / "A.DAT", primeiro);
  }
  filho.Mata();
  EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {}), 0u) << "a dead process holds nothing";
  for (const ModoAbertura &primeiro : TodosOsModos()) {
    std::unique_ptr<IArquivoAberto> arquivo;
    ASSERT_FALSE(Arquivos().Abre(pasta / "A.DAT", primeiro, &arquivo)) << Descreve(primeiro);
    ConfereSegundos(pasta / "A.DAT", primeiro);
  }
}

/// A file of ten bytes.
class NoDisco : public testing::Test {
protected:
  NoDisco() { apoio::EscreveArquivo(m_caminho, "0123456789"); }

  void Abre(Acesso acesso) {
    ASSERT_FALSE(Arquivos().Abre(m_caminho, {acesso, Compartilhamento::NegaNada, Criacao::SoExistente}, &m_arquivo));
  }
  std::string Le(std::uint64_t posicao, std::size_t qtd) {
    std::string lido(qtd, '#');
    const FalhaArquivo falha = m_arquivo->Le(posicao, lido.data(), qtd);
    return falha ? "error " + std::to_string(falha.erroSO) : lido;
  }

  const apoio::PastaTemporaria m_pasta;
  const CString m_caminho = m_pasta / "A.DAT";
  std::unique_ptr<IArquivoAberto> m_arquivo;
};

TEST_F(NoDisco, ModosDeCriacao) {
  const struct {
    Criacao criacao;
    std::uint32_t erroSemArquivo;
    std::uint32_t erroComArquivo;
    const char *depois;  ///< of an existing file's content
  } casos[] = {{Criacao::SoExistente, 2, 0, "0123456789"},
               {Criacao::CriaNovo, 0, 80, "0123456789"},
               {Criacao::AbreOuCria, 0, 0, "0123456789"},
               {Criacao::CriaVazio, 0, 0, ""}};
  for (const auto &caso : casos) {
    const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, caso.criacao};
    EXPECT_EQ(ErroAoAbrir(m_caminho, modo), caso.erroComArquivo);
    EXPECT_EQ(apoio::LeArquivo(m_caminho), caso.depois);
    EXPECT_EQ(ErroAoAbrir(m_pasta / "NOVO", modo), caso.erroSemArquivo);
    EXPECT_EQ(Arquivos().Apaga(m_pasta / "NOVO").erroSO, caso.erroSemArquivo);
  }
}

/// A directory, nothing, and what could only be in a directory that is none.
TEST_F(NoDisco, OQueNaoEArquivo) {
  m_pasta.CriaSubpasta("SUB");
  const std::pair<const char *, std::uint32_t> casos[] = {
      {"SUB", 5}, {"NADA\\A.DAT", 3}, {"A.DAT\\B.DAT", 3}, {"NADA", 2}};
  for (const auto &[nome, erro] : casos) {
    SCOPED_TRACE(nome);
    EXPECT_EQ(ErroAoAbrir(m_pasta / nome, {Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente}), erro);
    std::uint64_t tamanho = 77;
    EXPECT_EQ(Arquivos().TamanhoDe(m_pasta / nome, &tamanho).erroSO, erro);
    EXPECT_EQ(tamanho, 77u);
    bool bExiste = true;
    EXPECT_EQ(Arquivos().Existe(m_pasta / nome, &bExiste).erroSO, erro == 5 ? erro : 0u);
    EXPECT_FALSE(bExiste);
    EXPECT_EQ(Arquivos().Apaga(m_pasta / nome).erroSO, erro);
    EXPECT_EQ(Move(m_caminho, m_pasta / nome), erro == 2 ? 0u : erro);
  }
}

TEST_F(NoDisco, SomenteLeitura) {
  apoio::EscreveArquivo(m_pasta / "B.DAT", "outro");
  apoio::MarcaSomenteLeitura(m_caminho, true);
  EXPECT_TRUE(Arquivos().SomenteLeitura(m_caminho));
  EXPECT_EQ(ErroAoAbrir(m_caminho, {Acesso::Leitura}), 0u);
  EXPECT_EQ(Arquivos().Apaga(m_caminho).erroSO, 5u);
  if (!apoio::SomenteLeituraSemEfeito()) {
    EXPECT_EQ(ErroAoAbrir(m_caminho, {Acesso::Escrita, Compartilhamento::NegaNada, Criacao::CriaVazio}), 5u);
    EXPECT_EQ(Move(m_pasta / "B.DAT", m_caminho), 5u);
  }
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "0123456789");
}

TEST_F(NoDisco, MoveSubstitui) {
  apoio::EscreveArquivo(m_pasta / "A.TRA", "novo");
  EXPECT_EQ(Move(m_pasta / "NADA", m_caminho), 2u);
  EXPECT_EQ(Move(m_pasta / "NADA\\A.TRA", m_caminho), 3u);
  EXPECT_EQ(Move(m_pasta / "A.TRA", m_caminho), 0u);
  EXPECT_FALSE(apoio::ExisteNoDisco(m_pasta / "A.TRA"));
  EXPECT_EQ(Move(m_caminho, m_caminho), 0u) << "onto itself";
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "novo");
}

TEST_F(NoDisco, Lista) {
  // One has a short alias name on Windows that ends in .TRA.
  for (const char *nome : {"df2.tra", "DF3.TRAX", "\xC9.DAT", "SEMPONTO"}) {
    apoio::EscreveArquivo(m_pasta / nome, "");
  }
  m_pasta.CriaSubpasta("DF9.TRA");
  using Nomes = std::vector<CString>;
  Nomes nomes{"resto"};
  EXPECT_FALSE(Arquivos().Lista(m_pasta.Caminho(), &nomes));
  EXPECT_EQ(nomes, (Nomes{"A.DAT", "DF3.TRAX", "SEMPONTO", "df2.tra", "\xC9.DAT"}));
  EXPECT_EQ(Arquivos().Lista(m_pasta / "NADA\\", &nomes).causa, CausaArquivo::CaminhoInvalido);
  EXPECT_TRUE(nomes.empty());
}

TEST_F(NoDisco, LeEGravaNaPosicaoPedidaTambemAcimaDeQuatroGigabytes) {
  Abre(Acesso::LeituraEscrita);
  EXPECT_EQ(Le(7, 3), "789");
  EXPECT_EQ(Le(10, 0), "");
  EXPECT_EQ(Le(9, 2), "error 38");
  EXPECT_EQ(Le(std::uint64_t{1} << 33, 1), "error 38");
  EXPECT_FALSE(m_arquivo->Grava(2, "XY", 2));
  EXPECT_FALSE(m_arquivo->Grava(1, "", 0));
  EXPECT_FALSE(m_arquivo->Descarrega());
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "01XY456789");
  EXPECT_FALSE(m_arquivo->AjustaTamanho(4));
  EXPECT_FALSE(m_arquivo->AjustaTamanho(6));
  const std::uint64_t longe = (std::uint64_t{1} << 32) + 1;
  std::uint64_t tamanho = 0;
  ASSERT_FALSE(m_arquivo->Grava(longe, "longe", 5));
  EXPECT_FALSE(m_arquivo->Tamanho(&tamanho));
  EXPECT_EQ(tamanho, longe + 5);
  EXPECT_FALSE(Arquivos().TamanhoDe(m_caminho, &tamanho));
  EXPECT_EQ(tamanho, longe + 5);
  EXPECT_EQ(Le(longe, 5), "longe");
  EXPECT_EQ(Le(0, 7), std::string("01XY\0\0\0", 7)) << "the position must not lose its upper half";
}

TEST_F(NoDisco, SoFazOQueOModoPermite) {
  Abre(Acesso::Leitura);
  EXPECT_EQ(m_arquivo->Grava(0, "x", 1).erroSO, 5u);
  EXPECT_TRUE(m_arquivo->AjustaTamanho(0));
  Abre(Acesso::Escrita);
  EXPECT_EQ(Le(0, 1), "error 5");
  EXPECT_FALSE(m_arquivo->Grava(0, "x", 1));
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "x123456789");
}

TEST_F(NoDisco, UltimaEscritaMostraAMudanca) {
  Abre(Acesso::Leitura);
  std::uint64_t antes = 0;
  std::uint64_t depois = 0;
  ASSERT_FALSE(m_arquivo->UltimaEscrita(&antes));
  // The system's clock for files moves in steps, so the change shows only with the next one.
  const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (depois <= antes && std::chrono::steady_clock::now() < limite) {
    apoio::EscreveArquivo(m_caminho, "2");
    ASSERT_FALSE(m_arquivo->UltimaEscrita(&depois));
  }
  EXPECT_GT(depois, antes);
}

}  // namespace
