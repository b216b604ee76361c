#include "client/Relacao.h"

#include <utility>

#include "client/Codificacao.h"
#include "client/Console.h"
#include "client/Programa.h"
#include "client/Saida.h"

namespace {

EFormatoRelacao FormatoDeArgumentos(const CArgumentos &argumentos) {
  argumentos.SoUma("csv", "json");
  return argumentos.Tem("csv")    ? EFormatoRelacao::Csv
         : argumentos.Tem("json") ? EFormatoRelacao::Json
                                  : EFormatoRelacao::Tabela;
}

/// Null: standard output.
std::unique_ptr<CDestino> Destino(const CArgumentos &argumentos, const std::string *pArquivo,
                                  std::optional<ECodificacao> eQual) {
  if (pArquivo != nullptr) {
    return std::make_unique<CDestino>(*pArquivo, argumentos.Tem("substitui"), eQual);
  }
  return std::make_unique<CDestino>(EhConsole(stdout) ? std::nullopt : eQual);
}

std::unique_ptr<CDestino> DestinoDeArgumentos(const CArgumentos &argumentos, EFormatoRelacao eQual) {
  const std::string *const pArquivo = argumentos.Opcao("saida");
  const std::optional<ECodificacao> eDada = CodificacaoDeArgumentos(argumentos);
  if (eDada && eQual != EFormatoRelacao::Csv) {
    throw CErroUso("--codificacao: vale para a saída em CSV"_pt);
  }
  if (eQual == EFormatoRelacao::Tabela) {
    return Destino(argumentos, pArquivo, std::nullopt);
  }
  // What is redirected is in the character set of all texts. JSON is ASCII, which is part of it.
  const bool bMarcado = eQual == EFormatoRelacao::Csv && pArquivo != nullptr;
  return Destino(argumentos, pArquivo, eDada.value_or(bMarcado ? ECodificacao::Utf8 : ECodificacao::Windows1252));
}

}  // namespace

CRelacao::CRelacao(const CArgumentos &argumentos)
    : m_eFormato(FormatoDeArgumentos(argumentos)), m_spDestino(DestinoDeArgumentos(argumentos, m_eFormato)) {}

CRelacao::CRelacao(const CArgumentos &argumentos, const std::string &sArquivoCsv)
    : m_eFormato(EFormatoRelacao::Csv),
      m_spDestino(Destino(argumentos, sArquivoCsv == "-" ? nullptr : &sArquivoCsv,
                          CodificacaoDeArgumentos(argumentos).value_or(ECodificacao::Utf8))) {}

void CRelacao::Comeca(const std::string &sTituloTabela, const std::string &sTituloCsv) {
  if (m_eFormato == EFormatoRelacao::Json) {
    m_spDestino->Escreve("[");
    return;
  }
  const std::string &sTitulo = m_eFormato == EFormatoRelacao::Csv ? sTituloCsv : sTituloTabela;
  if (!sTitulo.empty()) {
    Linha(sTitulo);
  }
}

void CRelacao::Linha(const std::string &sLinha) {
  const std::string sFim(m_spDestino->FimDeLinha());
  if (m_eFormato == EFormatoRelacao::Json) {
    m_spDestino->Escreve((m_bAlguma ? "," : "") + sFim + sLinha);
    m_bAlguma = true;
  } else {
    m_spDestino->Escreve(sLinha + sFim);
  }
}

void CRelacao::Veiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo) {
  Linha(m_eFormato == EFormatoRelacao::Json  ? JsonVeiculo(iPosicao, veiculo)
        : m_eFormato == EFormatoRelacao::Csv ? LinhaCsv(iPosicao, veiculo)
                                             : LinhaLista(iPosicao, veiculo));
}

void CRelacao::Acaba() {
  if (m_eFormato == EFormatoRelacao::Json) {
    const std::string sFim(m_spDestino->FimDeLinha());
    m_spDestino->Escreve(sFim + "]" + sFim);
  }
  m_spDestino->Completa();
}
