#include "qzdados/Listagem.h"

#include <algorithm>
#include <cstring>

#include "client/Codificacao.h"
#include "client/Json.h"
#include "client/Saida.h"
#include "core/qzdatabase/disco/QZLeitorSequencial.h"
#include "qzdados/Cabecalhos.h"
#include "qzdados/Exame.h"
#include "qzdados/LeitorLinhas.h"
#include "vehicles/RegVeiculo.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

/// So much of a line is shown.
constexpr std::size_t kMaiorLinha = std::size_t{64} * 1024;

/// The rows of one listing: title, separators and end by the format, the rows' own text by the caller.
class CListagem {
public:
  CListagem(EFormato eFormato, ITela &tela) : m_eFormato(eFormato), m_tela(tela) {}

  void Comeca(const CString &sTituloTabela, const CString &sTituloCsv) {
    if (m_eFormato != EFormato::Tabela) {
      m_tela.SaidaEmBytes();
    }
    m_tela.Escreve(m_eFormato == EFormato::Json  ? CString("[")
                   : m_eFormato == EFormato::Csv ? sTituloCsv + "\n"
                                                 : sTituloTabela + "\n");
  }
  /// `fTexto(eFormato)` is the row, without its line end.
  template <typename F>
  void Linha(F fTexto) {
    const CString sLinha = fTexto(m_eFormato);
    m_tela.Escreve(m_eFormato == EFormato::Json ? (m_bAlguma ? ",\n" : "\n") + sLinha : sLinha + "\n");
    m_bAlguma = true;
  }
  void Acaba() {
    if (m_eFormato == EFormato::Json) {
      m_tela.Escreve("\n]\n");
    }
  }

private:
  EFormato m_eFormato;
  ITela &m_tela;
  bool m_bAlguma = false;
};

CString LinhaDoVeiculo(EFormato eFormato, std::uint64_t uiPosicao, const RegVeiculo &reg) {
  tagREG_VEICULOPS veiculo{};
  CopiaParaInterface(reg, &veiculo);
  const auto iPosicao = static_cast<std::int64_t>(uiPosicao);
  return eFormato == EFormato::Json  ? JsonVeiculo(iPosicao, veiculo)
         : eFormato == EFormato::Csv ? LinhaCsv(iPosicao, veiculo)
                                     : LinhaLista(iPosicao, veiculo);
}

void DizResto(std::uint64_t uiResto, const CString &sDoQue, ITela &tela) {
  if (uiResto != 0) {
    tela.EscreveErro("há "_pt + std::to_string(uiResto) + " bytes a mais atrás "_pt + sDoQue + "\n");
  }
}

void ListaVeiculos(CArquivoEmExame &arquivo, std::uint64_t uiInicio, EFormato eFormato, const FaixaPosicoes &faixa,
                   ITela &tela) {
  const std::uint64_t uiDados = arquivo.Tamanho() - uiInicio;
  const std::uint64_t uiAte = std::min(faixa.uiAte, uiDados / sizeof(RegVeiculo));
  const std::uint64_t uiAntes = std::min(faixa.uiDe - 1, uiAte);
  CQZLeitorSequencial leitor(arquivo, uiInicio + uiAntes * sizeof(RegVeiculo), uiInicio + uiAte * sizeof(RegVeiculo));
  CListagem listagem(eFormato, tela);
  listagem.Comeca(TituloLista(), TituloCsv());
  for (std::uint64_t uiPosicao = uiAntes + 1; uiPosicao <= uiAte; ++uiPosicao) {
    RegVeiculo reg{};
    Exige(leitor.Le(&reg, sizeof(reg)));
    listagem.Linha([&](EFormato e) { return LinhaDoVeiculo(e, uiPosicao, reg); });
  }
  listagem.Acaba();
  DizResto(uiDados % sizeof(RegVeiculo), "do último registro inteiro"_pt, tela);
}

void ListaLinhas(CArquivoEmExame &arquivo, std::uint64_t uiInicio, EFormato eFormato, const FaixaPosicoes &faixa,
                 ITela &tela) {
  CLeitorLinhas leitor(arquivo, uiInicio, arquivo.Tamanho(), kMaiorLinha);
  CListagem listagem(eFormato, tela);
  listagem.Comeca("   linha  texto", "linha;texto");
  LinhaLida linha;
  bool bHa = true;
  std::uint64_t uiPosicao = 1;
  for (Exige(leitor.Proxima(&linha, &bHa)); bHa && linha.bInteira && uiPosicao <= faixa.uiAte; ++uiPosicao) {
    if (uiPosicao >= faixa.uiDe) {
      listagem.Linha([&](EFormato e) {
        const CString sPosicao = std::to_string(uiPosicao);
        return e == EFormato::Json  ? "{\"linha\":" + sPosicao + ",\"texto\":" + TextoJson(linha.sTexto) + "}"
               : e == EFormato::Csv ? sPosicao + ";" + CampoCsv(linha.sTexto)
                                    : Ajusta(sPosicao, 8, true) + "  " + Visivel(linha.sTexto);
      });
      if (linha.bCortada) {
        tela.EscreveErro("linha " + std::to_string(uiPosicao) + ": mostrados só os primeiros "_pt +
                         std::to_string(kMaiorLinha) + " de " + std::to_string(linha.uiTamanho) + " bytes\n");
      }
    }
    Exige(leitor.Proxima(&linha, &bHa));
  }
  listagem.Acaba();
  if (uiPosicao <= faixa.uiAte) {
    DizResto(bHa ? linha.uiTamanho + sizeof(std::uint32_t) : leitor.Restam(), "da última linha inteira"_pt, tela);
  }
}

void ListaVersao(CArquivoEmExame &arquivo, std::uint64_t uiInicio, EFormato eFormato, const FaixaPosicoes &faixa,
                 ITela &tela) {
  REG_DF_VEICULO_VERSAO reg{};
  const std::uint64_t uiDados = arquivo.Tamanho() - uiInicio;
  CListagem listagem(eFormato, tela);
  listagem.Comeca("versao", "versao");
  if (uiDados >= sizeof(reg) && faixa.uiDe == 1) {
    Exige(arquivo.Le(uiInicio, &reg, sizeof(reg)));
    const std::uint16_t iVersao = reg.iVersao;
    listagem.Linha([&](EFormato e) {
      return e == EFormato::Json ? "{\"versao\":" + std::to_string(iVersao) + "}" : std::to_string(iVersao);
    });
  }
  listagem.Acaba();
  DizResto(uiDados >= sizeof(reg) ? uiDados - sizeof(reg) : uiDados, "do último registro inteiro"_pt, tela);
}

}  // namespace

void ListaArquivo(const CString &sCaminho, const IdentidadeArquivo &identidade, EFormato eFormato,
                  const FaixaPosicoes &faixa, ITela &tela) {
  FProgresso progresso;
  if (!tela.SaidaVisivel()) {
    progresso = [&tela](std::uint64_t uiFeito, std::uint64_t uiTotal) { tela.Progresso(uiFeito, uiTotal); };
  }
  CArquivoEmExame arquivo(sCaminho, progresso);
  CabecalhosLidos cabecalhos;
  Exige(LeCabecalhos(arquivo, identidade.sNome, &cabecalhos));
  switch (identidade.eTipo) {
    case ETipoArquivo::Veiculos:
      return ListaVeiculos(arquivo, cabecalhos.uiInicioDados, eFormato, faixa, tela);
    case ETipoArquivo::Lista:
    case ETipoArquivo::Texto:
      return ListaLinhas(arquivo, cabecalhos.uiInicioDados, eFormato, faixa, tela);
    case ETipoArquivo::Versao:
      return ListaVersao(arquivo, cabecalhos.uiInicioDados, eFormato, faixa, tela);
    default:
      throw CErroArquivo("não tem registros nem linhas que se conheçam; com --como diga de que arquivo é"_pt);
  }
}
