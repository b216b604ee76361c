#include "qzdados/Relatorio.h"

#include <array>
#include <cstdio>

#include "client/Codificacao.h"
#include "client/Saida.h"

namespace {

constexpr std::size_t kLarguraEstado = 12;

CString NomeDoEstado(EEstado eEstado) {
  static const std::array<CString, 4> nomes{"são"_pt, "reparável"_pt, "danificado", "ilegível"_pt};
  return nomes[static_cast<std::size_t>(eEstado)];
}

CString Hexadecimal(std::uint64_t uiValor) {
  char texto[17];
  std::snprintf(texto, sizeof(texto), "%016llX", static_cast<unsigned long long>(uiValor));
  return texto;
}

CString Detalhe(const char *lpRotulo, const CString &sValor) {
  return CString("    ") + lpRotulo + ": " + sValor + "\n";
}

/// "1200 registros, com cabeçalho"; the kind for a file without records.
CString Conteudo(const ResultadoExame &exame) {
  const ETipoArquivo eTipo = exame.identidade.eTipo;
  if (eTipo == ETipoArquivo::Desconhecido && exame.cabecalhos.uiQuantos == 0) {
    return "não é arquivo que o servidor de veículos conheça"_pt;
  }
  CString sTexto = TextoQuantidade(eTipo, exame.uiUnidades);
  if (sTexto.empty()) {
    return NomeDoTipo(eTipo);
  }
  return sTexto + (exame.cabecalhos.uiQuantos != 0 ? ", com cabeçalho"_pt : ", sem cabeçalho"_pt);
}

CString DetalhesCabecalho(const CabecalhosLidos &lidos) {
  if (lidos.uiQuantos == 0) {
    return {};
  }
  const RegCabecalhoArquivo &registro = lidos.ultimo.registro;
  const std::uint16_t iVersao = lidos.ultimo.versao.iVersao;
  const std::uint32_t uiInstalacao = registro.uiCodigoInstalacao;
  const auto marca = [](bool bConfere) { return bConfere ? CString() : " (não confere)"_pt; };
  return Detalhe("versão do cabeçalho"_pt.c_str(), std::to_string(iVersao) + marca(lidos.ultimo.bVersaoConfere)) +
         Detalhe("código da instalação"_pt.c_str(),
                 std::to_string(uiInstalacao) + marca(lidos.ultimo.bRegistroConfere)) +
         Detalhe("nome no cabeçalho"_pt.c_str(),
                 Visivel(NomeNoCabecalho(registro)) + marca(lidos.ultimo.bNomeConfere)) +
         Detalhe("CRC anotado", Hexadecimal(registro.uiCrcDados));
}

}  // namespace

CString LinhaRelatorio(const ResultadoExame &exame) {
  CString sLinha = NomeDoEstado(exame.eEstado);
  sLinha.resize(kLarguraEstado, ' ');
  const bool bConteudo = exame.aAchados.empty() || exame.uiUnidades != 0 || exame.identidade.bSobra;
  CString sTexto = bConteudo && exame.eEstado != EEstado::Ilegivel ? Conteudo(exame) : CString();
  for (const CString &sAchado : exame.aAchados) {
    sTexto += (sTexto.empty() ? "" : "; ") + sAchado;
  }
  return sLinha + Visivel(exame.sCaminho + ": " + sTexto) + "\n";
}

CString DetalhesRelatorio(const ResultadoExame &exame) {
  CString sTexto = Detalhe("tipo", NomeDoTipo(exame.identidade.eTipo)) +
                   Detalhe("tamanho", std::to_string(exame.uiTamanho) + " bytes") + DetalhesCabecalho(exame.cabecalhos);
  if (exame.uiCrcDados != 0) {
    sTexto += Detalhe("CRC dos dados", Hexadecimal(exame.uiCrcDados));
  }
  for (const CString &sNota : exame.aNotas) {
    sTexto += Detalhe("nota", Visivel(sNota));
  }
  return sTexto;
}
