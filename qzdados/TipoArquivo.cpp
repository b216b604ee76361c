#include "qzdados/TipoArquivo.h"

#include "client/Codificacao.h"
#include "core/env/QZPath.h"
#include "core/platform/Textos.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "vehicles/DiarioConversao.h"
#include "vehicles/QZDataBaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

struct NomeConhecido {
  const char *lpNome;
  ETipoArquivo eTipo;
};

constexpr NomeConhecido kConhecidos[] = {
    {kArquivoVeiculos, ETipoArquivo::Veiculos}, {kArquivoVersao, ETipoArquivo::Versao},
    {kArquivoControle, ETipoArquivo::Lista},    {"QZProfiler.dat", ETipoArquivo::Log},
    {"QZProfilerErros.dat", ETipoArquivo::Log},
};

}  // namespace

IdentidadeArquivo IdentificaNome(const CString &sNome) {
  const CString sMaiusculo = plataforma::Maiusculas(sNome);
  if (sMaiusculo == kArquivoDiario) {
    return {ETipoArquivo::Diario, kArquivoDiario, true};
  }
  if (CQZPath::TemExtensao(sMaiusculo, "INT")) {
    return {ETipoArquivo::Intencao, sNome, true};
  }
  if (CQZPath::TemExtensao(sMaiusculo, "TRA")) {
    IdentidadeArquivo identidade = IdentificaNome(CQZPath::ChangeExtension(sNome, "DAT"));
    identidade.bSobra = true;
    return identidade;
  }
  if (CQZPath::TemExtensao(sMaiusculo, "OFL")) {
    return {ETipoArquivo::Texto, sNome, false};
  }
  for (const auto &[lpNome, eTipo] : kConhecidos) {
    if (sMaiusculo == plataforma::Maiusculas(lpNome)) {
      return {eTipo, lpNome, false};
    }
  }
  return {ETipoArquivo::Desconhecido, sNome, false};
}

CString NomeDoTipo(ETipoArquivo eTipo) {
  switch (eTipo) {
    case ETipoArquivo::Veiculos:
      return "veículos"_pt;
    case ETipoArquivo::Versao:
      return "versão da base"_pt;
    case ETipoArquivo::Lista:
      return "lista de arquivos criados";
    case ETipoArquivo::Texto:
      return "texto";
    case ETipoArquivo::Diario:
      return "diário de conversão"_pt;
    case ETipoArquivo::Intencao:
      return "intenção de gravação"_pt;
    case ETipoArquivo::Log:
      return "log";
    default:
      return "desconhecido";
  }
}

CString NomeDoCaminho(const CString &sCaminho) {
  const std::size_t uiBarra = sCaminho.find_last_of("\\/:");
  return uiBarra == CString::npos ? sCaminho : sCaminho.substr(uiBarra + 1);
}
