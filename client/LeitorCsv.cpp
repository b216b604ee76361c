#include "client/LeitorCsv.h"

#include <algorithm>

#include "client/Codificacao.h"

namespace {

constexpr std::string_view kMarcaUtf8 = "\xEF\xBB\xBF";
constexpr std::string_view kColunaSemUso = "posicao";
constexpr char kSeparador = ';';

}  // namespace

CLeitorCsv::CLeitorCsv(std::string_view sConteudo) : m_sConteudo(sConteudo) {
  if (m_sConteudo.substr(0, kMarcaUtf8.size()) == kMarcaUtf8) {
    m_bUtf8 = true;
    m_uiInicio = kMarcaUtf8.size();
  }
  const std::optional<std::string_view> sCabecalho = ProximaLinha();
  if (!sCabecalho) {
    throw CErroCsv("o arquivo está vazio: falta a linha com os nomes das colunas"_pt);
  }
  std::vector<std::string> aNomes;
  try {
    aNomes = Separa(*sCabecalho);
  } catch (const CErroCampo &erro) {
    throw CErroCsv("linha dos nomes das colunas: " + std::string(erro.what()));
  }
  for (auto it = aNomes.begin(); it != aNomes.end(); ++it) {
    const CCampo *const pCampo = ProcuraCampo(CamposVeiculo(), *it);
    if (pCampo == nullptr && *it != kColunaSemUso) {
      throw CErroCsv("coluna desconhecida: \"" + *it + "\"");
    }
    if (std::find(aNomes.begin(), it, *it) != it) {
      throw CErroCsv("coluna repetida: \"" + *it + "\"");
    }
    m_aColunas.push_back(pCampo);
  }
}

std::optional<std::string_view> CLeitorCsv::ProximaLinha() {
  while (m_uiInicio < m_sConteudo.size()) {
    const std::size_t uiFim = std::min(m_sConteudo.find('\n', m_uiInicio), m_sConteudo.size());
    std::string_view sLinha = m_sConteudo.substr(m_uiInicio, uiFim - m_uiInicio);
    m_uiInicio = std::min(uiFim + 1, m_sConteudo.size());
    ++m_uiLinha;
    if (!sLinha.empty() && sLinha.back() == '\r') {
      sLinha.remove_suffix(1);
    }
    if (!sLinha.empty()) {
      return sLinha;
    }
  }
  return std::nullopt;
}

std::vector<std::string> CLeitorCsv::Separa(std::string_view sLinha) const {
  std::string sConvertida;
  if (m_bUtf8) {
    std::optional<std::string> s1252 = De8Para1252(sLinha);
    if (!s1252) {
      throw CErroCampo("há um caractere que não existe em Windows-1252"_pt);
    }
    sConvertida = std::move(*s1252);
    sLinha = sConvertida;
  }

  std::vector<std::string> aPartes;
  std::size_t i = 0;
  for (;;) {
    std::string sParte;
    if (i < sLinha.size() && sLinha[i] == '"') {
      for (++i;; ++i) {
        if (i == sLinha.size()) {
          throw CErroCampo("aspas sem fechamento");
        }
        if (sLinha[i] == '"' && sLinha.substr(i + 1, 1) != "\"") {
          break;
        }
        if (sLinha[i] == '"') {
          ++i;  // the second of a doubled pair stands for both
        }
        sParte += sLinha[i];
      }
      ++i;
      if (i < sLinha.size() && sLinha[i] != kSeparador) {
        throw CErroCampo("texto depois do fechamento das aspas");
      }
    } else {
      const std::size_t uiFim = std::min(sLinha.find(kSeparador, i), sLinha.size());
      sParte = sLinha.substr(i, uiFim - i);
      if (sParte.find('"') != std::string::npos) {
        throw CErroCampo("aspas no meio de um campo sem aspas");
      }
      i = uiFim;
    }
    aPartes.push_back(std::move(sParte));
    if (i == sLinha.size()) {
      return aPartes;
    }
    ++i;  // the separator
  }
}

std::optional<CLinhaCsv> CLeitorCsv::Proxima() {
  const std::optional<std::string_view> sLinha = ProximaLinha();
  if (!sLinha) {
    return std::nullopt;
  }
  CLinhaCsv linha;
  linha.uiLinha = m_uiLinha;
  std::string_view sColuna;
  try {
    const std::vector<std::string> aPartes = Separa(*sLinha);
    if (aPartes.size() != m_aColunas.size()) {
      throw CErroCampo("a linha tem "_pt + std::to_string(aPartes.size()) + " campos e o cabeçalho tem "_pt +
                       std::to_string(m_aColunas.size()));
    }
    for (std::size_t i = 0; i < aPartes.size(); ++i) {
      const CCampo *const pCampo = m_aColunas[i];
      // An empty field leaves its zero, numbers included.
      if (pCampo != nullptr && !aPartes[i].empty()) {
        sColuna = pCampo->sNome;
        DefineCampo(*pCampo, aPartes[i], &linha.veiculo);
      }
    }
  } catch (const CErroCampo &erro) {
    linha.sErro = (sColuna.empty() ? std::string() : std::string(sColuna) + ": ") + erro.what();
  }
  return linha;
}
