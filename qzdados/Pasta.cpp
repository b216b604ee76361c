#include "qzdados/Pasta.h"

#include <algorithm>
#include <set>

#include "client/Codificacao.h"
#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"
#include "qzdados/LeitorLinhas.h"
#include "vehicles/QZDataBaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

/// So many missing files are told one by one: a damaged list may name any number.
constexpr std::size_t kMaisFaltas = 100;
/// The longest name of a file.
constexpr std::size_t kMaiorNome = 255;

using Exames = std::vector<ResultadoExame>;

ResultadoExame *ProcuraTipo(Exames &exames, ETipoArquivo eTipo) {
  const auto it = std::find_if(exames.begin(), exames.end(), [&](const ResultadoExame &exame) {
    return exame.identidade.eTipo == eTipo && (!exame.identidade.bSobra || eTipo == ETipoArquivo::Diario);
  });
  return it == exames.end() ? nullptr : &*it;
}

ResultadoExame Falta(const CString &sPasta, const CString &sNome) {
  ResultadoExame exame;
  exame.sCaminho = sPasta + sNome;
  exame.identidade = IdentificaNome(sNome);
  exame.Acha(EEstado::Danificado, "está na lista de arquivos criados e não está na pasta (0x81080A50)"_pt);
  return exame;
}

/// What a reading of the list of created files against the directory gives.
struct Conferencia {
  Exames faltas;
  std::uint64_t uiOutrasFaltas = 0;
  std::set<CString> listados;  ///< of those that are there, in upper case
};

Conferencia ConfereLista(const CString &sPasta, const ResultadoExame &lista, const std::set<CString> &presentes) {
  Conferencia conferencia;
  CArquivoEmExame arquivo(lista.sCaminho);
  CLeitorLinhas leitor(arquivo, lista.cabecalhos.uiInicioDados, arquivo.Tamanho(), kMaiorNome);
  LinhaLida linha;
  bool bHa = true;
  for (Exige(leitor.Proxima(&linha, &bHa)); bHa && linha.bInteira; Exige(leitor.Proxima(&linha, &bHa))) {
    const CString sNome = plataforma::Maiusculas(linha.sTexto);
    if (linha.sTexto.empty()) {
      continue;
    }
    if (presentes.contains(sNome)) {
      conferencia.listados.insert(sNome);
    } else if (conferencia.faltas.size() < kMaisFaltas) {
      conferencia.faltas.push_back(Falta(sPasta, linha.sTexto));
    } else {
      ++conferencia.uiOutrasFaltas;
    }
  }
  return conferencia;
}

/// The list may have become unreadable since it was examined.
Conferencia ConfereListaExaminada(const CString &sPasta, ResultadoExame *pLista, const std::set<CString> &presentes) {
  if (pLista == nullptr || pLista->eEstado == EEstado::Ilegivel) {
    return {};
  }
  try {
    return ConfereLista(sPasta, *pLista, presentes);
  } catch (const CErroArquivo &erro) {
    pLista->Acha(EEstado::Ilegivel, erro.what());
    return {};
  }
}

bool EhListavel(const ResultadoExame &exame) {
  const ETipoArquivo eTipo = exame.identidade.eTipo;
  return !exame.identidade.bSobra && (eTipo == ETipoArquivo::Veiculos || eTipo == ETipoArquivo::Versao);
}

/// What the server does with a journal that holds: nothing where the version is already there.
void ConfereDiario(const RegDiario &diario, Exames &exames) {
  ResultadoExame *const pVeiculos = ProcuraTipo(exames, ETipoArquivo::Veiculos);
  const ResultadoExame *const pVersao = ProcuraTipo(exames, ETipoArquivo::Versao);
  if ((pVersao != nullptr && pVersao->eEstado == EEstado::Sao && pVersao->aAchados.empty()) || pVeiculos == nullptr ||
      pVeiculos->eEstado == EEstado::Ilegivel) {
    return;
  }
  const std::uint64_t uiDados = pVeiculos->uiTamanho - pVeiculos->cabecalhos.uiInicioDados;
  const IdentidadeRegistros inteiros{uiDados, pVeiculos->uiCrcDados};
  const IdentidadeRegistros semPrimeiro{uiDados - std::min(uiDados, TamanhoRegistro(ETipoArquivo::Veiculos)),
                                        pVeiculos->uiCrcSemPrimeiro};
  const bool bUmAMais = pVeiculos->uiUnidades != 0 && semPrimeiro == diario.convertida;
  if (inteiros != diario.convertida && !bUmAMais) {
    pVeiculos->Acha(EEstado::Danificado, "não é a base cuja conversão o diário anota (0x810809D6)"_pt);
  }
}

/// Vehicles without a version are those of version 0, of which the server drops the first record.
void ConfereVersaoAusente(const Conferencia &conferencia, bool bDiario, Exames &exames) {
  const bool bFalta = std::any_of(conferencia.faltas.begin(), conferencia.faltas.end(),
                                  [](const auto &falta) { return falta.identidade.sNome == kArquivoVersao; });
  ResultadoExame *const pVeiculos = ProcuraTipo(exames, ETipoArquivo::Veiculos);
  if (pVeiculos != nullptr && pVeiculos->uiUnidades != 0 && ProcuraTipo(exames, ETipoArquivo::Versao) == nullptr &&
      !bDiario && !bFalta) {
    pVeiculos->Acha(EEstado::Sao,
                    "sem DFVEIVS.DAT a base é da versão 0: a próxima abertura retira o primeiro registro"_pt);
  }
}

}  // namespace

std::vector<ResultadoExame> ExaminaPasta(const CString &sPasta, const FProgresso &progresso) {
  std::vector<CString> nomes;
  Exige(plataforma::Arquivos().Lista(sPasta, &nomes));
  Exames exames;
  std::set<CString> presentes;
  for (const CString &sNome : nomes) {
    exames.push_back(ExaminaArquivo(sPasta + sNome, IdentificaNome(sNome), progresso));
    presentes.insert(plataforma::Maiusculas(sNome));
  }
  ResultadoExame *const pLista = ProcuraTipo(exames, ETipoArquivo::Lista);
  Conferencia conferencia = ConfereListaExaminada(sPasta, pLista, presentes);
  const ResultadoExame *const pDiario = ProcuraTipo(exames, ETipoArquivo::Diario);
  const bool bDiario = pDiario != nullptr && pDiario->diario;
  if (bDiario) {
    ConfereDiario(*pDiario->diario, exames);
    // The next opening writes the version that a conversion still lacks.
    std::erase_if(conferencia.faltas,
                  [](const ResultadoExame &falta) { return falta.identidade.sNome == kArquivoVersao; });
  }
  ConfereVersaoAusente(conferencia, bDiario, exames);
  for (ResultadoExame &exame : exames) {
    if (EhListavel(exame)) {
      const bool bListado = conferencia.listados.contains(exame.identidade.sNome);
      exame.aNotas.push_back(bListado ? "está na lista de arquivos criados"_pt
                                      : "não está na lista de arquivos criados: se sumir, ninguém nota"_pt);
    }
  }
  if (conferencia.uiOutrasFaltas != 0) {
    pLista->Acha(EEstado::Danificado, "faltam mais "_pt + std::to_string(conferencia.uiOutrasFaltas) + " arquivos");
  }
  std::move(conferencia.faltas.begin(), conferencia.faltas.end(), std::back_inserter(exames));
  return exames;
}
