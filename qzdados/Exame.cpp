#include "qzdados/Exame.h"

#include <algorithm>
#include <cstring>

#include "client/Codificacao.h"
#include "core/errors/CodigosResultado.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "qzdados/LeitorLinhas.h"
#include "vehicles/RegVeiculo.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

CString ComCodigo(const CString &sTexto, HRESULT hr) {
  char codigo[16];
  std::snprintf(codigo, sizeof(codigo), " (0x%08X)", static_cast<unsigned>(BitsResultado(hr)));
  return sTexto + codigo;
}

bool TemDados(ETipoArquivo eTipo) {
  return eTipo != ETipoArquivo::Diario && eTipo != ETipoArquivo::Intencao && eTipo != ETipoArquivo::Log;
}

bool EhTexto(ETipoArquivo eTipo) {
  return eTipo == ETipoArquivo::Texto || eTipo == ETipoArquivo::Lista;
}

/// What the first header says to a server with headers on, the data's CRC excepted.
void ExaminaCabecalho(ResultadoExame *pExame) {
  const CabecalhosLidos &lidos = pExame->cabecalhos;
  const CabecalhoLido &primeiro = lidos.primeiro;
  if (lidos.uiQuantos == 0) {
    return;
  }
  if (pExame->identidade.eTipo == ETipoArquivo::Desconhecido && primeiro.bRegistroConfere && !primeiro.bNomeConfere) {
    // The server does not look for a file of this name, so it is a copy that somebody has put aside.
    pExame->Acha(EEstado::Sao, "tem o cabeçalho de "_pt + NomeNoCabecalho(primeiro.registro) +
                                   ": com --como ele é examinado por esse nome"_pt);
    pExame->cabecalhos = {};
  } else if (primeiro.bVersaoConfere && primeiro.versao.iVersao != kVersaoCabecalho) {
    const std::uint16_t iVersao = primeiro.versao.iVersao;
    pExame->Acha(EEstado::Danificado,
                 ComCodigo("o cabeçalho é da versão "_pt + std::to_string(iVersao) + ", de um programa mais novo",
                           codigos::kCabecalhoVersaoDesconhecida));
  } else if (!primeiro.bInteiro) {
    pExame->Acha(EEstado::Danificado,
                 ComCodigo("o arquivo termina dentro do cabeçalho"_pt, codigos::kCabecalhoDanificado));
  } else if (primeiro.bRegistroConfere && !primeiro.bNomeConfere) {
    pExame->Acha(EEstado::Danificado,
                 ComCodigo("o cabeçalho é de outro arquivo: "_pt + NomeNoCabecalho(primeiro.registro),
                           codigos::kCabecalhoDeOutroArquivo));
  } else if (lidos.uiQuantos > 1) {
    pExame->Acha(EEstado::Reparavel, "há "_pt + std::to_string(lidos.uiQuantos) + " cabeçalhos um atrás do outro"_pt);
  } else if (!primeiro.bVersaoConfere) {
    pExame->Acha(EEstado::Reparavel,
                 "o registro de versão do cabeçalho está danificado: o servidor não o reconhece"_pt);
  } else if (!primeiro.bRegistroConfere) {
    pExame->Acha(EEstado::Reparavel, ComCodigo("o cabeçalho está danificado"_pt, codigos::kCabecalhoDanificado));
  }
}

/// The CRC that the records had when the header was last written.
std::optional<std::uint64_t> CrcEsperado(const CabecalhosLidos &lidos) {
  if (lidos.uiQuantos == 0 || !lidos.ultimo.bRegistroConfere) {
    return std::nullopt;
  }
  const std::uint64_t uiCrc = lidos.ultimo.registro.uiCrcDados;
  return uiCrc;
}

/// CRC of all data, and, where the kind has records, up to which of them it is the expected one.
void PercorreDados(CArquivoEmExame &arquivo, ResultadoExame *pExame) {
  const std::optional<std::uint64_t> esperado = CrcEsperado(pExame->cabecalhos);
  const std::uint64_t uiRegistro = TamanhoRegistro(pExame->identidade.eTipo);
  std::uint64_t uiCrc = 0;
  std::uint64_t uiFeitos = 0;
  std::uint64_t uiCrcPrimeiro = 0;
  if (uiRegistro != 0 && esperado == uiCrc) {
    pExame->conferem = 0;
  }
  Exige(PercorreArquivo(arquivo, pExame->cabecalhos.uiInicioDados,
                        [&](std::uint64_t, const char *pBytes, std::size_t qtd) {
                          const std::size_t uiPasso = uiRegistro != 0 ? static_cast<std::size_t>(uiRegistro) : qtd;
                          for (std::size_t i = 0; i < qtd; i += uiPasso) {
                            const std::size_t cb = std::min(uiPasso, qtd - i);
                            uiCrc = CalculaCrc64(pBytes + i, cb, uiCrc);
                            uiFeitos += cb;
                            if (uiFeitos == uiRegistro) {
                              uiCrcPrimeiro = uiCrc;
                            }
                            if (uiRegistro != 0 && esperado == uiCrc && uiFeitos % uiRegistro == 0) {
                              pExame->conferem = uiFeitos / uiRegistro;
                            }
                          }
                          return plataforma::kSemFalha;
                        }));
  pExame->uiCrcDados = uiCrc;
  if (uiRegistro != 0 && uiFeitos >= uiRegistro) {
    // What stands behind the first record, by the CRC's linearity.
    pExame->uiCrcSemPrimeiro = uiCrc ^ Crc64ComZeros(uiCrcPrimeiro, uiFeitos - uiRegistro);
  }
}

void ContaLinhas(CArquivoEmExame &arquivo, ResultadoExame *pExame) {
  CLeitorLinhas leitor(arquivo, pExame->cabecalhos.uiInicioDados, pExame->uiTamanho, 0);
  LinhaLida linha;
  bool bHa = true;
  pExame->uiTamanhoInteiros = 0;
  Exige(leitor.Proxima(&linha, &bHa));
  while (bHa && linha.bInteira) {
    ++pExame->uiUnidades;
    pExame->uiTamanhoInteiros = pExame->uiTamanho - leitor.Restam() - pExame->cabecalhos.uiInicioDados;
    Exige(leitor.Proxima(&linha, &bHa));
  }
}

/// Whole records or lines and what stands behind them.
void MedeDados(CArquivoEmExame &arquivo, ResultadoExame *pExame) {
  const std::uint64_t uiDados = pExame->uiTamanho - pExame->cabecalhos.uiInicioDados;
  if (EhTexto(pExame->identidade.eTipo)) {
    ContaLinhas(arquivo, pExame);
    return;
  }
  const std::uint64_t uiRegistro = TamanhoRegistro(pExame->identidade.eTipo);
  if (uiRegistro == 0) {
    pExame->uiTamanhoInteiros = uiDados;
    return;
  }
  pExame->uiUnidades = uiDados / uiRegistro;
  if (pExame->identidade.eTipo == ETipoArquivo::Versao) {
    pExame->uiUnidades = std::min<std::uint64_t>(pExame->uiUnidades, 1);
  }
  pExame->uiTamanhoInteiros = pExame->uiUnidades * uiRegistro;
}

void ExaminaCrc(ResultadoExame *pExame) {
  const std::optional<std::uint64_t> esperado = CrcEsperado(pExame->cabecalhos);
  if (!esperado || esperado == pExame->uiCrcDados) {
    pExame->conferem = esperado ? std::optional(pExame->uiUnidades) : std::nullopt;
    return;
  }
  const bool bVazio = pExame->uiTamanho == pExame->cabecalhos.uiInicioDados;
  CString sTexto =
      bVazio ? "os dados que havia atrás do cabeçalho sumiram"_pt : "os dados não são os que o cabeçalho anota"_pt;
  if (pExame->conferem && !bVazio) {
    sTexto += "; conferem " + std::to_string(*pExame->conferem) + " de " +
              TextoQuantidade(pExame->identidade.eTipo, pExame->uiUnidades) + ", a contar do primeiro";
  }
  pExame->Acha(bVazio ? EEstado::Danificado : EEstado::Reparavel, ComCodigo(sTexto, codigos::kDadosNaoConferem));
}

void ExaminaMedidas(ResultadoExame *pExame) {
  const ETipoArquivo eTipo = pExame->identidade.eTipo;
  const bool bVersao = eTipo == ETipoArquivo::Versao;
  if (bVersao && pExame->uiUnidades == 0) {
    pExame->Acha(EEstado::Danificado, ComCodigo("o registro da versão está incompleto"_pt, codigos::kTamanhoDiferente));
  } else if (pExame->Fragmento() != 0) {
    const CString sTexto =
        std::to_string(pExame->Fragmento()) + (EhTexto(eTipo) ? " bytes a mais atrás da última linha inteira"_pt
                                                              : " bytes a mais atrás do último registro inteiro"_pt);
    const HRESULT hr = bVersao ? codigos::kTamanhoDiferente : codigos::kTamanhoNaoMultiplo;
    pExame->Acha(pExame->uiUnidades == 0 && !EhTexto(eTipo) ? EEstado::Danificado : EEstado::Reparavel,
                 EhTexto(eTipo) ? sTexto : ComCodigo(sTexto, hr));
  }
}

void ExaminaVersao(CArquivoEmExame &arquivo, ResultadoExame *pExame) {
  if (pExame->identidade.eTipo != ETipoArquivo::Versao || pExame->uiUnidades == 0) {
    return;
  }
  REG_DF_VEICULO_VERSAO reg{};
  Exige(arquivo.Le(pExame->cabecalhos.uiInicioDados, &reg, sizeof(reg)));
  const std::uint16_t iVersao = reg.iVersao;
  pExame->aNotas.push_back("versão da base: "_pt + std::to_string(iVersao));
  if (iVersao > kVersaoBaseVeiculos) {
    pExame->Acha(EEstado::Danificado,
                 ComCodigo("a base é da versão "_pt + std::to_string(iVersao) + ", de um programa mais novo",
                           codigos::kBaseMaisNova));
  } else if (iVersao < kVersaoBaseVeiculos) {
    pExame->Acha(EEstado::Sao, "versão 0: a próxima abertura retira o primeiro registro dos veículos"_pt);
  }
}

void ExaminaDiario(CArquivoEmExame &arquivo, ResultadoExame *pExame) {
  RegDiario reg{};
  if (pExame->uiTamanho == sizeof(reg)) {
    Exige(arquivo.Le(0, &reg, sizeof(reg)));
    if (reg.iVersao == kVersaoBaseVeiculos && CalculaCrc64(&reg, offsetof(RegDiario, uiCrcDiario)) == reg.uiCrcDiario) {
      pExame->diario = reg;
    }
  }
  pExame->Acha(EEstado::Sao, pExame->diario ? "diário de uma conversão interrompida"_pt
                                            : "diário incompleto, que o servidor não leva em conta"_pt);
}

/// A leftover is no worse than that: the server does not open it as it is.
void RebaixaSobra(ResultadoExame *pExame) {
  if (!pExame->identidade.bSobra) {
    return;
  }
  std::move(pExame->aAchados.begin(), pExame->aAchados.end(), std::back_inserter(pExame->aNotas));
  pExame->aAchados.assign(1, "sobra de um trabalho interrompido: a próxima abertura da empresa cuida dela"_pt);
  pExame->eEstado = EEstado::Sao;
}

}  // namespace

void ResultadoExame::Acha(EEstado ePior, const CString &sTexto) {
  eEstado = std::max(eEstado, ePior);
  aAchados.push_back(sTexto);
}

std::uint64_t TamanhoRegistro(ETipoArquivo eTipo) {
  return eTipo == ETipoArquivo::Veiculos ? sizeof(RegVeiculo)
         : eTipo == ETipoArquivo::Versao ? sizeof(REG_DF_VEICULO_VERSAO)
                                         : 0;
}

CString TextoQuantidade(ETipoArquivo eTipo, std::uint64_t uiQuantidade) {
  const bool bTexto = EhTexto(eTipo);
  if (!bTexto && TamanhoRegistro(eTipo) == 0) {
    return {};
  }
  return std::to_string(uiQuantidade) + (bTexto ? " linha" : " registro") + (uiQuantidade == 1 ? "" : "s");
}

ResultadoExame ExaminaAberto(CArquivoEmExame &arquivo, const IdentidadeArquivo &identidade) {
  ResultadoExame exame;
  exame.identidade = identidade;
  exame.uiTamanho = arquivo.Tamanho();
  exame.uiTamanhoInteiros = exame.uiTamanho;
  if (identidade.eTipo == ETipoArquivo::Diario) {
    ExaminaDiario(arquivo, &exame);
  } else if (TemDados(identidade.eTipo)) {
    Exige(LeCabecalhos(arquivo, identidade.sNome, &exame.cabecalhos));
    ExaminaCabecalho(&exame);
    MedeDados(arquivo, &exame);
    PercorreDados(arquivo, &exame);
    ExaminaCrc(&exame);
    ExaminaMedidas(&exame);
    ExaminaVersao(arquivo, &exame);
  }
  RebaixaSobra(&exame);
  arquivo.ConfereQueNaoMudou();
  return exame;
}

ResultadoExame ExaminaArquivo(const CString &sCaminho, const IdentidadeArquivo &identidade,
                              const FProgresso &progresso) {
  ResultadoExame exame;
  try {
    CArquivoEmExame arquivo(sCaminho, progresso);
    exame = ExaminaAberto(arquivo, identidade);
  } catch (const CErroArquivo &erro) {
    exame = {};
    exame.identidade = identidade;
    exame.Acha(EEstado::Ilegivel, erro.what());
  }
  exame.sCaminho = sCaminho;
  return exame;
}
