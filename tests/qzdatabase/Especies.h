#ifndef KALVO_TESTS_QZDATABASE_ESPECIES_H
#define KALVO_TESTS_QZDATABASE_ESPECIES_H

#include "tests/qzdatabase/BancoTeste.h"

/// One write, and the file's content before (nothing: there is no file) and after.
struct Gravacao {
  const char *nome;
  std::optional<std::string> antes;
  std::function<HRESULT()> grava;
  std::string depois;
};

/// One operation, for a file that cannot be had.
using Operacao = std::pair<const char *, std::function<HRESULT()>>;

/// A file of one of the three kinds in the terms in which the tests of all of them are written. A content is that of
/// two numbers, or of the first alone: in a single-record file, and where the second is 0.
class Especie {
public:
  Especie() = default;
  Especie(const Especie &) = delete;
  Especie &operator=(const Especie &) = delete;
  virtual ~Especie() = default;

  virtual CQZFileBase &File() = 0;
  virtual std::string Conteudo(std::uint32_t a, std::uint32_t b) const = 0;
  virtual std::string Acrescentado(const std::string &dados, std::uint32_t n) const { return dados + Conteudo(n, 0); }
  /// What a file with one byte too many is refused with.
  virtual HRESULT Torto() const = 0;
  /// What can be read of a file with this content.
  virtual std::string Carregado(const std::optional<std::string> &dados) const { return dados.value_or(""); }

  /// Everything that can be read, one by one; through the index too.
  virtual HRESULT Le(std::string *psDados) = 0;
  /// Writes over the number at a position, or adds one with 0; in a single-record file over the only one.
  virtual HRESULT Grava(std::uint64_t uiPosicao, std::uint32_t n) = 0;
  HRESULT Muda(std::uint32_t n) { return Grava(1, n); }
  HRESULT Acrescenta(std::uint32_t n) { return Grava(0, n); }
  /// The first creates the file.
  virtual std::vector<Gravacao> Gravacoes() = 0;
  virtual std::vector<Operacao> Operacoes() = 0;
};

class Tipado final : public Especie {
public:
  explicit Tipado(IDonoDeArquivos *pDono) : m_file("TESTE.DAT", pDono) {}

  CQZFileBase &File() override { return m_file; }
  std::string Conteudo(std::uint32_t a, std::uint32_t b) const override {
    return Bytes(a, a) + (b == 0 ? "" : Bytes(b, b));
  }
  HRESULT Torto() const override { return codigos::kTamanhoNaoMultiplo; }
  HRESULT Le(std::string *psDados) override {
    std::uint64_t uiQtd = 0;
    HRESULT hr = m_file.GetQuantidade(&uiQtd);
    const auto junta = [psDados](std::uint64_t, const RegTeste &reg) {
      *psDados += Bytes(reg);
      return true;
    };
    hr = Falhou(hr) ? hr : m_file.Percorre(1, uiQtd, junta);
    // Some of them, or all of a few, by their texts.
    const std::uint64_t uiPasso = 1 + uiQtd / 20;
    for (std::uint64_t uiPosicao = 1; uiPosicao <= uiQtd && !Falhou(hr); uiPosicao += uiPasso) {
      const char *const lpTexto = psDados->data() + (uiPosicao - 1) * sizeof(RegTeste) + offsetof(RegTeste, cTexto);
      bool bAchou = false;
      hr = m_file.PercorreTexto(0, lpTexto, uiQtd, [&](std::uint64_t uiOnde, const RegTeste &) {
        bAchou = uiOnde == uiPosicao;
        return !bAchou;
      });
      EXPECT_TRUE(bAchou || Falhou(hr)) << "by the index, at " << uiPosicao;
    }
    return hr;
  }
  HRESULT Grava(std::uint64_t uiPosicao, std::uint32_t n) override { return m_file.Grava(uiPosicao, Registro(n)); }
  std::vector<Gravacao> Gravacoes() override {
    constexpr std::uint32_t kBloco = kRegistrosPorBloco;
    return {
        {"create", {}, [this] { return Grava(0, 1); }, Bytes(1, 1)},
        {"append", Bytes(1, 3), [this] { return Grava(0, 9); }, Bytes(1, 3) + Bytes(9, 9)},
        {"overwrite", Bytes(1, 3), [this] { return Grava(2, 9); }, Bytes(1, 1) + Bytes(9, 9) + Bytes(3, 3)},
        {"past the end", Bytes(1, 3), [this] { return Colecoes(3, 13, 15); }, Bytes(1, 2) + Bytes(13, 15)},
        {"over blocks, past the end", Bytes(1, 2 * kBloco), [this] { return Colecoes(kBloco, 5001, 5002 + kBloco); },
         Bytes(1, kBloco - 1) + Bytes(5001, 5002 + kBloco)}};
  }
  std::vector<Operacao> Operacoes() override {
    static constexpr auto kNada = [](std::uint64_t, const RegTeste &) { return true; };
    return {{"Le", [this] { return m_file.Le(1, &m_lido); }},
            {"GetQuantidade", [this] { return m_file.GetQuantidade(&m_uiQtd); }},
            {"Percorre", [this] { return m_file.Percorre(1, 0, kNada); }},
            {"Grava", [this] { return Grava(1, 4); }},
            {"Grava behind the end", [this] { return Grava(4, 4); }}};
  }

private:
  HRESULT Colecoes(std::uint64_t uiPosicao, std::uint32_t a, std::uint32_t b) {
    return m_file.GravaColecao(uiPosicao, Colecao(a, b));
  }

  CQZFile<RegTeste> m_file;
  RegTeste m_lido{};
  std::uint64_t m_uiQtd = 0;
};

class Unico final : public Especie {
public:
  explicit Unico(IDonoDeArquivos *pDono) : m_file("UNICO.DAT", pDono) {}

  CQZFileBase &File() override { return m_file; }
  std::string Conteudo(std::uint32_t a, std::uint32_t) const override { return Bytes(a, a); }
  std::string Acrescentado(const std::string &, std::uint32_t n) const override { return Bytes(n, n); }
  HRESULT Torto() const override { return codigos::kTamanhoDiferente; }
  HRESULT Le(std::string *psDados) override {
    RegTeste reg{};
    const HRESULT hr = m_file.Le(&reg);
    *psDados = Falhou(hr) ? "" : Bytes(reg);
    return hr == codigos::kArquivoNaoAberto ? codigos::kOk : hr;
  }
  HRESULT Grava(std::uint64_t, std::uint32_t n) override { return m_file.Grava(Registro(n)); }
  std::vector<Gravacao> Gravacoes() override {
    return {{"create", {}, [this] { return Muda(1); }, Bytes(1, 1)},
            {"overwrite", Bytes(1, 1), [this] { return Muda(2); }, Bytes(2, 2)}};
  }
  std::vector<Operacao> Operacoes() override {
    return {{"Le", [this] { return m_file.Le(&m_lido); }}, {"Grava", [this] { return Muda(4); }}};
  }

private:
  CQZFileSingleReg<RegTeste> m_file;
  RegTeste m_lido{};
};

class Texto final : public Especie {
public:
  explicit Texto(IDonoDeArquivos *pDono) : m_file("TEXTO.DAT", pDono) {}

  CQZFileBase &File() override { return m_file; }
  std::string Conteudo(std::uint32_t a, std::uint32_t b) const override {
    return Linhas({Linha(a)}) + (b == 0 ? "" : Linhas({Linha(b)}));
  }
  HRESULT Torto() const override { return codigos::kOk; }
  std::string Carregado(const std::optional<std::string> &dados) const override {
    return dados && dados->ends_with("x") ? dados->substr(0, dados->size() - 1) : dados.value_or("");
  }
  HRESULT Le(std::string *psDados) override {
    for (std::uint64_t uiPosicao = 1;; ++uiPosicao) {
      const HRESULT hr = m_file.Le(uiPosicao, m_sLida);
      if (Falhou(hr)) {
        return hr == codigos::kPosicaoAlemDoFim || hr == codigos::kArquivoNaoAberto ? codigos::kOk : hr;
      }
      psDados->append(Linhas({m_sLida}));
    }
  }
  HRESULT Grava(std::uint64_t uiPosicao, std::uint32_t n) override { return GravaTextos(uiPosicao, {Linha(n)}); }
  std::vector<Gravacao> Gravacoes() override {
    const std::string antes = Linhas({"um", "dois", "tres"});
    const std::vector<std::string> muitas(1000, "y");
    std::vector<std::string> menores = muitas;
    menores.front() = "u";
    return {Com("create", {}, 0, {Linha(1)}, Conteudo(1, 0)),
            Com("append", antes, 0, {"quatro", "x"}, antes + Linhas({"quatro", "x"})),
            Com("longer", antes, 3, {"trinta"}, antes + Linhas({"trinta"})),
            Com("in place", antes, 2, {"DOIS"}, Linhas({"um", "DOIS", "tres"})),
            Com("past the end", antes, 2, {"dois e meio", "TRES", "x"}, Linhas({"um", "dois e meio", "TRES", "x"})),
            Com("shrink", antes, 1, {"u"}, Linhas({"u", "dois", "tres"})),
            Com("growing shrink", antes, 3, {"t", "quatro"}, Linhas({"um", "dois", "t", "quatro"})),
            Com("damaged end", antes + "x", 0, {"x"}, antes + Linhas({"x"})),
            Com("append to many", Linhas(muitas), 0, {"um"}, Linhas(muitas) + Linhas({"um"})),
            Com("growing shrink of many", Linhas(muitas) + Linhas({"um"}), 1001, menores,
                Linhas(muitas) + Linhas(menores))};
  }
  std::vector<Operacao> Operacoes() override {
    return {{"Le", [this] { return m_file.Le(1, m_sLida); }},
            {"Grava", [this] { return Muda(4); }},
            {"Grava behind the end", [this] { return GravaTextos(4, {"x"}); }},
            {"GravaSeNova", [this] { return m_file.GravaSeNova(m_uiPosicao, "x"); }},
            {"GeraArquivoOffline", [this] { return m_file.GeraArquivoOffline(); }}};
  }

private:
  static std::string Linha(std::uint32_t n) { return "linha " + std::to_string(n); }
  HRESULT GravaTextos(std::uint64_t uiPosicao, const std::vector<std::string> &textos) {
    return m_file.GravaColecao(uiPosicao, Colecao(textos));
  }
  Gravacao Com(const char *nome, std::optional<std::string> antes, std::uint64_t uiPosicao,
               std::vector<std::string> textos, std::string depois) {
    return {nome, std::move(antes), [=, this] { return GravaTextos(uiPosicao, textos); }, std::move(depois)};
  }

  CQZTextFile m_file;
  CString m_sLida;
  std::uint64_t m_uiPosicao = 0;
};

/// The kinds of file, for the suites that run over all of them, and a file of one of them.
inline const auto kEspecies = testing::Values("Tipado", "Unico", "Texto");

inline std::unique_ptr<Especie> CriaEspecie(const std::string &nome, IDonoDeArquivos *pDono) {
  if (nome == "Tipado") {
    return std::make_unique<Tipado>(pDono);
  }
  if (nome == "Unico") {
    return std::make_unique<Unico>(pDono);
  }
  return std::make_unique<Texto>(pDono);
}

#endif
