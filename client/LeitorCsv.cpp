#include "client/LeitorCsv.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "client/Codificacao.h"
#include "client/Sugestao.h"

namespace {

constexpr std::string_view kColunaSemUso = "posicao";
constexpr char kSeparador = ';';
constexpr std::string_view kFimDeLinha = "\n";
/// More than the widest field: a quoted field that has crossed a line end and is longer was never closed.
constexpr std::size_t kMaiorComFimDeLinha = 512;

/// One line of columns, or several where quotes hold line ends. Raises CErroCampo.
class CLinhaEmPartes {
public:
  explicit CLinhaEmPartes(std::string_view sTexto) : m_sTexto(sTexto) {
    do {
      m_aPartes.push_back(EhAqui('"') ? ParteEntreAspas() : ParteSimples());
    } while (Toma(kSeparador));
    Toma('\r');
    Toma('\n');
  }

  std::vector<std::string> &Partes() { return m_aPartes; }
  std::size_t Bytes() const { return m_i; }

private:
  bool EhAqui(char c) const { return m_i < m_sTexto.size() && m_sTexto[m_i] == c; }
  bool Toma(char c) {
    const bool bEh = EhAqui(c);
    m_i += bEh ? 1U : 0U;
    return bEh;
  }
  bool NoFimDaLinha() const {
    const std::string_view sResto = m_sTexto.substr(m_i, 2);
    return sResto.empty() || sResto.front() == '\n' || sResto == "\r\n" || sResto == "\r";
  }

  std::string ParteSimples() {
    const std::size_t uiComeco = m_i;
    while (!NoFimDaLinha() && !EhAqui(kSeparador)) {
      if (EhAqui('"')) {
        throw CErroCampo("aspas no meio de um campo sem aspas");
      }
      ++m_i;
    }
    return std::string(m_sTexto.substr(uiComeco, m_i - uiComeco));
  }

  std::string ParteEntreAspas() {
    std::string sParte;
    bool bOutraLinha = false;
    Toma('"');
    // The second of a doubled pair stands for both.
    while (!Toma('"') || EhAqui('"')) {
      if (m_i == m_sTexto.size() || (bOutraLinha && sParte.size() > kMaiorComFimDeLinha)) {
        throw CErroCampo("aspas sem fechamento");
      }
      bOutraLinha = bOutraLinha || EhAqui('\n');
      sParte += m_sTexto[m_i++];
    }
    if (!NoFimDaLinha() && !EhAqui(kSeparador)) {
      throw CErroCampo("texto depois do fechamento das aspas");
    }
    return sParte;
  }

  std::string_view m_sTexto;
  std::size_t m_i = 0;
  std::vector<std::string> m_aPartes;
};

std::string ColunaDesconhecida(const std::string &sNome) {
  if (sNome.find_first_of(",\t") != std::string::npos) {
    return "o separador das colunas é ; e não vírgula ou tabulação: \""_pt + sNome + "\"";
  }
  std::vector<std::string_view> aNomes;
  std::transform(CamposVeiculo().begin(), CamposVeiculo().end(), std::back_inserter(aNomes),
                 [](const CCampo &campo) { return campo.sNome; });
  return "coluna desconhecida: \"" + sNome + "\"" + Sugestao(sNome, aNomes);
}

}  // namespace

CLeitorCsv::CLeitorCsv(const CConteudoTexto &conteudo) : m_sConteudo(conteudo.sTexto), m_bUtf8(conteudo.bUtf8) {
  PulaVazias();
  if (m_uiInicio == m_sConteudo.size()) {
    throw CErroCsv("o arquivo está vazio: falta a linha com os nomes das colunas"_pt);
  }
  std::vector<std::string> aNomes;
  try {
    aNomes = ProximasPartes();
  } catch (const CErroCampo &erro) {
    throw CErroCsv("linha dos nomes das colunas: " + std::string(erro.what()));
  }
  for (auto it = aNomes.begin(); it != aNomes.end(); ++it) {
    const std::string sNome = m_bUtf8 ? De8Para1252(*it).value_or("?") : *it;
    const CCampo *const pCampo = ProcuraCampo(CamposVeiculo(), *it);
    if (pCampo == nullptr && *it != kColunaSemUso) {
      throw CErroCsv(ColunaDesconhecida(sNome));
    }
    if (std::find(aNomes.begin(), it, *it) != it) {
      throw CErroCsv("coluna repetida: \"" + sNome + "\"");
    }
    m_aColunas.push_back(pCampo);
  }
}

void CLeitorCsv::Avanca(std::size_t uiBytes) {
  const std::string_view sPassados = m_sConteudo.substr(m_uiInicio, uiBytes);
  m_uiLinha += static_cast<std::size_t>(std::count(sPassados.begin(), sPassados.end(), '\n'));
  m_uiInicio += sPassados.size();
}

void CLeitorCsv::PulaVazias() {
  for (;;) {
    const std::string_view sResto = m_sConteudo.substr(m_uiInicio, 2);
    if (!sResto.starts_with('\n') && sResto != "\r\n" && sResto != "\r") {
      return;
    }
    Avanca(sResto.starts_with('\n') ? 1 : sResto.size());
  }
}

std::vector<std::string> CLeitorCsv::ProximasPartes() {
  try {
    CLinhaEmPartes linha(m_sConteudo.substr(m_uiInicio));
    Avanca(linha.Bytes());
    return std::move(linha.Partes());
  } catch (const CErroCampo &) {
    const std::size_t uiFim = std::min(m_sConteudo.find(kFimDeLinha, m_uiInicio), m_sConteudo.size() - 1);
    Avanca(uiFim + 1 - m_uiInicio);
    throw;
  }
}

std::optional<CLinhaCsv> CLeitorCsv::Proxima() {
  PulaVazias();
  if (m_uiInicio == m_sConteudo.size()) {
    return std::nullopt;
  }
  CLinhaCsv linha;
  linha.uiLinha = m_uiLinha;
  std::string_view sColuna;
  try {
    const std::vector<std::string> aPartes = ProximasPartes();
    if (aPartes.size() != m_aColunas.size()) {
      throw CErroCampo("a linha tem "_pt + std::to_string(aPartes.size()) + " campos e o cabeçalho tem "_pt +
                       std::to_string(m_aColunas.size()));
    }
    for (std::size_t i = 0; i < aPartes.size(); ++i) {
      const CCampo *const pCampo = m_aColunas[i];
      // An empty field leaves its zero, numbers included.
      if (pCampo == nullptr || aPartes[i].empty()) {
        continue;
      }
      sColuna = pCampo->sNome;
      const std::optional<std::string> sValor = m_bUtf8 ? De8Para1252(aPartes[i]) : aPartes[i];
      if (!sValor) {
        throw CErroCampo("há um caractere que não existe em Windows-1252"_pt);
      }
      DefineCampo(*pCampo, *sValor, &linha.veiculo);
    }
  } catch (const CErroCampo &erro) {
    linha.sErro = (sColuna.empty() ? std::string() : std::string(sColuna) + ": ") + erro.what();
  }
  return linha;
}
