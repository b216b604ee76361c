#include "qzdados/Reparo.h"

#include "client/Codificacao.h"
#include "qzdados/Copia.h"
#include "qzdados/Relatorio.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

/// A companion is examined, and copied, as the file that it was to become.
IdentidadeArquivo SemSobra(IdentidadeArquivo identidade) {
  identidade.bSobra = false;
  return identidade;
}

void DizGravado(const CString &sNovo, std::uint64_t uiTamanho, const CString &sNome, ITela &tela) {
  tela.Escreve(sNovo + ": gravado, " + std::to_string(uiTamanho) + " bytes, para o lugar de " + sNome +
               ". O original não foi tocado.\n"_pt);
}

/// True for files that hold data behind headers, or could.
bool TemReparo(ETipoArquivo eTipo) {
  return eTipo != ETipoArquivo::Diario && eTipo != ETipoArquivo::Intencao && eTipo != ETipoArquivo::Log;
}

CString TextoUnidades(const ResultadoExame &exame) {
  const CString sTexto = TextoQuantidade(exame.identidade.eTipo, exame.uiUnidades);
  return sTexto.empty() ? std::to_string(exame.uiTamanhoInteiros) + " bytes" : sTexto;
}

/// What a repaired copy has of its origin, step by step.
void DizReparos(const ResultadoExame &exame, ITela &tela) {
  const CabecalhosLidos &lidos = exame.cabecalhos;
  if (lidos.uiQuantos != 0) {
    tela.Escreve("cabeçalhos retirados: "_pt + std::to_string(lidos.uiQuantos) + "; posto um novo\n");
  }
  if (exame.Fragmento() != 0) {
    tela.Escreve("cortados "_pt + std::to_string(exame.Fragmento()) + " bytes do fim\n");
  }
  tela.Escreve("mantidos, nas suas posições: "_pt + TextoUnidades(exame) + "\n");
  if (lidos.uiQuantos == 0) {
    return;
  }
  if (!exame.conferem) {
    tela.Escreve("o cabeçalho antigo não diz quais deles mudaram: confira-os\n"_pt);
  } else if (*exame.conferem < exame.uiUnidades) {
    tela.Escreve("conferem com o cabeçalho antigo: "_pt + std::to_string(*exame.conferem) +
                 ", a contar do primeiro; confira os que vêm depois\n"_pt);
  }
}

std::optional<CabecalhoNovo> CabecalhoDe(const ResultadoExame &exame) {
  const CabecalhosLidos &lidos = exame.cabecalhos;
  if (lidos.uiQuantos == 0) {
    return std::nullopt;
  }
  return CabecalhoNovo{exame.identidade.sNome,
                       lidos.ultimo.bRegistroConfere ? lidos.ultimo.registro.uiCodigoInstalacao : 0};
}

/// A copy with or without a header, of a sound file alone: what is wrong with another would be hidden by a new one.
EEstado TrocaCabecalho(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, bool bPoe,
                       ITela &tela) {
  CArquivoEmExame arquivo(sOrigem, ProgressoNaTela(tela));
  ResultadoExame exame = ExaminaAberto(arquivo, SemSobra(identidade));
  exame.sCaminho = sOrigem;
  if (exame.eEstado != EEstado::Sao || !TemReparo(identidade.eTipo)) {
    tela.Escreve(LinhaRelatorio(exame));
    tela.EscreveErro(exame.eEstado == EEstado::Reparavel ? "recupere o arquivo antes: qzdados recupera\n"_pt
                                                         : "nada foi gravado\n"_pt);
    return exame.eEstado;
  }
  if ((exame.cabecalhos.uiQuantos != 0) == bPoe) {
    tela.Escreve(sOrigem +
                 (bPoe ? ": já tem cabeçalho; nada foi gravado\n"_pt : ": não tem cabeçalho; nada foi gravado\n"_pt));
    return EEstado::Sao;
  }
  const std::uint64_t uiInicio = exame.cabecalhos.uiInicioDados;
  const auto cabecalho = bPoe ? std::optional(CabecalhoNovo{identidade.sNome, 0}) : std::nullopt;
  const std::uint64_t uiGravados = CopiaDados(arquivo, uiInicio, exame.uiTamanho - uiInicio, cabecalho, sNovo);
  tela.Escreve((bPoe ? "posto o cabeçalho de "_pt : "retirado o cabeçalho de "_pt) + identidade.sNome +
               "; mantidos, nas suas posições: "_pt + TextoUnidades(exame) + "\n");
  DizGravado(sNovo, uiGravados, identidade.sNome, tela);
  return EEstado::Sao;
}

}  // namespace

EEstado Recupera(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela) {
  CArquivoEmExame arquivo(sOrigem, ProgressoNaTela(tela));
  ResultadoExame exame = ExaminaAberto(arquivo, SemSobra(identidade));
  exame.sCaminho = sOrigem;
  tela.Escreve(LinhaRelatorio(exame));
  if (exame.eEstado == EEstado::Sao) {
    tela.Escreve("nada a recuperar; nada foi gravado\n");
    return exame.eEstado;
  }
  if (exame.eEstado != EEstado::Reparavel) {
    tela.EscreveErro("isto não se repara a partir do próprio arquivo; nada foi gravado\n"_pt);
    return exame.eEstado;
  }
  const std::uint64_t uiGravados =
      CopiaDados(arquivo, exame.cabecalhos.uiInicioDados, exame.uiTamanhoInteiros, CabecalhoDe(exame), sNovo);
  DizReparos(exame, tela);
  DizGravado(sNovo, uiGravados, identidade.sNome, tela);
  return EEstado::Sao;
}

EEstado PoeCabecalho(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela) {
  return TrocaCabecalho(sOrigem, identidade, sNovo, true, tela);
}

EEstado TiraCabecalho(const CString &sOrigem, const IdentidadeArquivo &identidade, const CString &sNovo, ITela &tela) {
  return TrocaCabecalho(sOrigem, identidade, sNovo, false, tela);
}

void CriaVersao(const CString &sNovo, ITela &tela) {
  const REG_DF_VEICULO_VERSAO reg{kVersaoBaseVeiculos, {}};
  CArquivoNovo novo(sNovo);
  if (const plataforma::FalhaArquivo falha = novo.Arquivo().Grava(0, &reg, sizeof(reg))) {
    throw CErroArquivo(sNovo + ": " + TextoDaFalha(falha));
  }
  novo.Conclui();
  tela.Escreve(sNovo + ": gravada a versão 1, sem cabeçalho\n"_pt);
}
