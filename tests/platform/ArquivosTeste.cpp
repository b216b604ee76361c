// Files by their paths: opening, moving, deleting and listing, and what an open file refuses to two handles and to two
// processes.

#include <gtest/gtest.h>

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

TEST(Abertura, ModosDeCriacao) {
  const apoio::PastaTemporaria pasta;
  const struct {
    Criacao criacao;
    std::uint32_t erroSemArquivo;
    std::uint32_t erroComArquivo;
    const char *depois;  ///< of an existing file's content
  } casos[] = {{Criacao::SoExistente, 2, 0, "velho"},
               {Criacao::CriaNovo, 0, 80, "velho"},
               {Criacao::AbreOuCria, 0, 0, "velho"},
               {Criacao::CriaVazio, 0, 0, ""}};
  for (const auto &caso : casos) {
    const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, caso.criacao};
    apoio::EscreveArquivo(pasta / "VELHO", "velho");
    EXPECT_EQ(ErroAoAbrir(pasta / "VELHO", modo), caso.erroComArquivo);
    EXPECT_EQ(apoio::LeArquivo(pasta / "VELHO"), caso.depois);
    EXPECT_EQ(ErroAoAbrir(pasta / "NOVO", modo), caso.erroSemArquivo);
    EXPECT_EQ(Arquivos().Apaga(pasta / "NOVO").erroSO, caso.erroSemArquivo);
  }
}

/// A directory, nothing, and what could only be in a directory that is none.
TEST(Abertura, OQueNaoEArquivo) {
  const apoio::PastaTemporaria pasta;
  pasta.CriaSubpasta("SUB");
  apoio::EscreveArquivo(pasta / "A.DAT", "conteudo");
  const std::pair<const char *, std::uint32_t> casos[] = {
      {"SUB", 5}, {"NADA\\A.DAT", 3}, {"A.DAT\\B.DAT", 3}, {"NADA", 2}};
  for (const auto &[nome, erro] : casos) {
    SCOPED_TRACE(nome);
    EXPECT_EQ(ErroAoAbrir(pasta / nome, {Acesso::Leitura, Compartilhamento::NegaNada, Criacao::SoExistente}), erro);
    std::uint64_t tamanho = 77;
    EXPECT_EQ(Arquivos().TamanhoDe(pasta / nome, &tamanho).erroSO, erro);
    EXPECT_EQ(tamanho, 77u);
    bool bExiste = true;
    EXPECT_EQ(Arquivos().Existe(pasta / nome, &bExiste).erroSO, erro == 5 ? erro : 0u);
    EXPECT_FALSE(bExiste);
    EXPECT_FALSE(Arquivos().SomenteLeitura(pasta / nome));
    EXPECT_EQ(Arquivos().Apaga(pasta / nome).erroSO, erro);
    EXPECT_EQ(Move(pasta / "A.DAT", pasta / nome), erro == 2 ? 0u : erro);
  }
}

TEST(Abertura, SomenteLeitura) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.DAT", "conteudo");
  apoio::EscreveArquivo(pasta / "B.DAT", "outro");
  apoio::MarcaSomenteLeitura(pasta / "A.DAT", true);
  EXPECT_TRUE(Arquivos().SomenteLeitura(pasta / "A.DAT"));
  EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {Acesso::Leitura}), 0u);
  EXPECT_EQ(Arquivos().Apaga(pasta / "A.DAT").erroSO, 5u);
  if (!apoio::SomenteLeituraSemEfeito()) {
    for (const Criacao criacao : {Criacao::SoExistente, Criacao::AbreOuCria, Criacao::CriaVazio}) {
      EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {Acesso::LeituraEscrita, Compartilhamento::NegaNada, criacao}), 5u);
    }
    EXPECT_EQ(Move(pasta / "B.DAT", pasta / "A.DAT"), 5u);
  }
  EXPECT_EQ(apoio::LeArquivo(pasta / "A.DAT"), "conteudo");
  apoio::MarcaSomenteLeitura(pasta / "A.DAT", false);
  EXPECT_FALSE(Arquivos().SomenteLeitura(pasta / "A.DAT"));
  EXPECT_EQ(Arquivos().Apaga(pasta / "A.DAT").erroSO, 0u);
}

TEST(Nomes, MoveSubstitui) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.TRA", "novo");
  apoio::EscreveArquivo(pasta / "B.DAT", "velho");
  EXPECT_EQ(Move(pasta / "NADA", pasta / "B.DAT"), 2u);
  EXPECT_EQ(Move(pasta / "NADA\\A.TRA", pasta / "B.DAT"), 3u);
  EXPECT_EQ(Move(pasta / "A.TRA", pasta / "B.DAT"), 0u);
  EXPECT_FALSE(apoio::ExisteNoDisco(pasta / "A.TRA"));
  EXPECT_EQ(Move(pasta / "B.DAT", pasta / "B.DAT"), 0u) << "onto itself";
  EXPECT_EQ(apoio::LeArquivo(pasta / "B.DAT"), "novo");
}

TEST(Nomes, Lista) {
  const apoio::PastaTemporaria pasta;
  // One has a short alias name on Windows that ends in .TRA.
  for (const char *nome : {"df2.tra", "DF1.TRA", "DF3.TRAX", "\xC9.DAT", "SEMPONTO"}) {
    apoio::EscreveArquivo(pasta / nome, "");
  }
  pasta.CriaSubpasta("DF9.TRA");
  using Nomes = std::vector<CString>;
  Nomes nomes{"resto"};
  EXPECT_FALSE(Arquivos().Lista(pasta.Caminho(), &nomes));
  EXPECT_EQ(nomes, (Nomes{"DF1.TRA", "DF3.TRAX", "SEMPONTO", "df2.tra", "\xC9.DAT"}));
  EXPECT_EQ(Arquivos().Lista(pasta / "NADA\\", &nomes).causa, CausaArquivo::CaminhoInvalido);
  EXPECT_TRUE(nomes.empty());
}

}  // namespace
