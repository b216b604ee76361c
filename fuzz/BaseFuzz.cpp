// A company's directory in which one of the three data files holds any bytes, opened as a register of vehicles.
//
// Property: the code of the initialisation is the one that the format gives for the damage, and the next attempt gives
// it again. A refusal leaves every file as it was, or, with headers on and no version record that holds in front of it,
// behind one new header. After a success all records are the stored ones (a base without a version loses its first,
// which was no vehicle), an append and a write over the first record work, and a new register finds everything.

#include "vehicles/BaseVeiculos.h"

#include <algorithm>

#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"
#include "fuzz/PastaDaEntrada.h"
#include "fuzz/Referencia.h"
#include "tests/apoio/ChaveCabecalho.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/RelogioFalso.h"

namespace {

using namespace fuzz;

/// What the initialisation should answer, and the records that it should find.
struct Esperado {
  HRESULT hr = codigos::kOk;
  std::string sRegistros;
  bool bConverte = false;  ///< the base has no version and its vehicle file can be converted
};

class Previsao {
public:
  Previsao(const Pasta &pasta, bool bCabecalhos) : m_pasta(pasta), m_bCabecalhos(bCabecalhos) {}

  Esperado Calcula() {
    std::string sControle;
    std::string sVersao;
    Esperado esperado;
    esperado.hr = Dados(kControle, {}, &sControle);
    const std::vector<std::string> lista = fuzz::LinhasDoTexto(sControle);
    if (!Falhou(esperado.hr)) {
      esperado.hr = Dados(kVersao, lista, &sVersao);
    }
    if (!Falhou(esperado.hr) && m_pasta.contains(kVersao) && sVersao.size() != kTamanhoVersao) {
      esperado.hr = codigos::kTamanhoDiferente;
    }
    if (Falhou(esperado.hr)) {
      return esperado;
    }
    sVersao.resize(kTamanhoVersao);
    const int iVersao = static_cast<unsigned char>(sVersao[0]) + 256 * static_cast<unsigned char>(sVersao[1]);
    if (iVersao > 1) {
      esperado.hr = codigos::kBaseMaisNova;
      return esperado;
    }
    Veiculos(lista, &esperado);
    if (!Falhou(esperado.hr) && iVersao == 0) {
      Converte(lista, &esperado);
    }
    return esperado;
  }

private:
  HRESULT Dados(const std::string &sNome, const std::vector<std::string> &lista, std::string *psDados) const {
    const auto achado = m_pasta.find(sNome);
    if (achado == m_pasta.end()) {
      const bool bListado = std::find(lista.begin(), lista.end(), sNome) != lista.end();
      return bListado ? codigos::kArquivoDesapareceu : codigos::kOk;
    }
    const fuzz::ArquivoExaminado exame = fuzz::Examina(sNome, achado->second, m_bCabecalhos);
    *psDados = exame.sDados;
    return exame.hr;
  }

  void Veiculos(const std::vector<std::string> &lista, Esperado *pEsperado) const {
    pEsperado->hr = Dados(kVeiculos, lista, &pEsperado->sRegistros);
    if (!Falhou(pEsperado->hr) && pEsperado->sRegistros.size() % sizeof(RegVeiculo) != 0) {
      pEsperado->hr = codigos::kTamanhoNaoMultiplo;
    }
  }

  /// The file whose only record goes is deleted and its entry in the list emptied. A second entry, which the system
  /// never makes, then has no file.
  static void Converte(const std::vector<std::string> &lista, Esperado *pEsperado) {
    pEsperado->bConverte = true;
    pEsperado->sRegistros.erase(0, sizeof(RegVeiculo));
    if (pEsperado->sRegistros.empty() && std::count(lista.begin(), lista.end(), kVeiculos) > 1) {
      pEsperado->hr = codigos::kArquivoDesapareceu;
    }
  }

  const Pasta &m_pasta;
  bool m_bCabecalhos;
};

class Execucao {
public:
  Execucao(const Pasta &pasta, bool bCabecalhos)
      : m_antes(pasta), m_bCabecalhos(bCabecalhos), m_cabecalho(bCabecalhos) {
    for (const auto &[sNome, sConteudo] : m_antes) {
      m_empresa.Escreve(sNome, sConteudo);
    }
  }

  void Roda() {
    const Esperado esperado = Previsao(m_antes, m_bCabecalhos).Calcula();
    {
      CBaseVeiculos base;
      ExigeCodigo(Inicia(&base), esperado.hr, "the code of the initialisation");
      if (Falhou(esperado.hr)) {
        ConfereRecusa(esperado);
        ExigeCodigo(Inicia(&base), esperado.hr, "the code of a second attempt");
        ConfereRecusa(esperado);
        return;
      }
      m_sRegistros = esperado.sRegistros;
      ConfereRegistros(base);
      Escreve(&base);
      ConfereRegistros(base);
    }
    ConfereDisco();
    CBaseVeiculos base;
    ExigeCodigo(Inicia(&base), codigos::kOk, "the code of a new register");
    ConfereRegistros(base);
  }

private:
  HRESULT Inicia(CBaseVeiculos *pBase) { return pBase->Inicializa(m_empresa.Codigo(), 7, 42); }

  /// Every file as it was, or behind one new header. What a conversion has rightly done before the refusal stays.
  void ConfereRecusa(const Esperado &esperado) const {
    ConfereSobras();
    if (esperado.bConverte) {
      return;
    }
    for (const char *lpNome : kArquivos) {
      const auto antes = m_antes.find(lpNome);
      Exige(m_empresa.Existe(lpNome) == (antes != m_antes.end()), "a refusal neither makes nor deletes a file");
      if (antes != m_antes.end()) {
        const std::string sDepois = m_empresa.Le(lpNome);
        const bool bPodeGanhar = m_bCabecalhos && !fuzz::Examina(lpNome, antes->second, true).bTemCabecalho;
        Exige(sDepois == antes->second ||
                  (bPodeGanhar && sDepois == fuzz::Cabecalho(lpNome, antes->second) + antes->second),
              "a refusal keeps the bytes of every file");
      }
    }
  }

  /// Companions of an unfinished rewrite.
  void ConfereSobras() const {
    for (const char *lpNome : {"DFVEIC.TRA", "DFVEIVS.TRA", "DFVEIVSD.TRA", "QZDATABASE_FILE_CTRL.TRA"}) {
      Exige(!m_empresa.Existe(lpNome), "no companion stays");
    }
  }

  void ConfereRegistros(CBaseVeiculos &base) const {
    const std::size_t registros = m_sRegistros.size() / sizeof(RegVeiculo);
    CArray<LONG> aPosicoes;
    CArray<RegVeiculo> aRegistros;
    ExigeCodigo(base.InternalGetRegs({}, &aPosicoes, &aRegistros), codigos::kOk, "reading all records");
    Exige(aRegistros.GetSize() == registros && aPosicoes.GetSize() == registros, "number of records");
    Exige(std::string_view(reinterpret_cast<const char *>(aRegistros.GetData()), m_sRegistros.size()) == m_sRegistros,
          "the records are the stored bytes");
    tagREG_VEICULOPS veiculo{};
    const auto lAtras = static_cast<LONG>(registros + 1);
    const HRESULT hrAtras = base.LePonteiros(1, &lAtras, &veiculo);
    Exige(hrAtras == codigos::kPosicaoAlemDoFim || (registros == 0 && hrAtras == codigos::kArquivoNaoAberto),
          "reading behind the last record");
  }

  /// Appends a vehicle, then writes another over the first record.
  void Escreve(CBaseVeiculos *pBase) {
    tagREG_VEICULOPS veiculo{};
    std::fill(std::begin(veiculo.szCodigo), std::end(veiculo.szCodigo), 'N');
    veiculo.iAno = 2025;
    RegVeiculo reg;
    CopiaParaRegistro(veiculo, &reg);
    m_sRegistros.append(reinterpret_cast<const char *>(&reg), sizeof(reg));
    LONG lPos = 0;
    ExigeCodigo(pBase->Grava(&lPos, veiculo), codigos::kOk, "an append");
    Exige(static_cast<std::size_t>(lPos) == m_sRegistros.size() / sizeof(reg), "the position of an append");

    veiculo.iAno = 2026;
    CopiaParaRegistro(veiculo, &reg);
    m_sRegistros.replace(0, sizeof(reg), reinterpret_cast<const char *>(&reg), sizeof(reg));
    lPos = 1;
    ExigeCodigo(pBase->Grava(&lPos, veiculo), codigos::kOk, "a write over the first record");
    Exige(lPos == 1, "the position of a write over a record");
  }

  /// The closed files: data behind headers that hold, the version of this program, and the lines of the list still in
  /// their places, with whatever was created behind them.
  void ConfereDisco() const {
    ConfereSobras();
    Exige(Dados(kVeiculos) == m_sRegistros, "the vehicle file");
    Exige(Dados(kVersao).substr(0, 2) == VersaoUm().substr(0, 2), "the version file");
    const std::vector<std::string> linhas =
        m_empresa.Existe(kControle) ? fuzz::LinhasDoTexto(Dados(kControle)) : std::vector<std::string>();
    const auto antes = m_antes.find(kControle);
    const std::vector<std::string> linhasAntes =
        antes != m_antes.end() ? fuzz::LinhasDoTexto(fuzz::Examina(kControle, antes->second, m_bCabecalhos).sDados)
                               : std::vector<std::string>();
    Exige(linhas.size() >= linhasAntes.size(), "the list does not lose lines");
    for (std::size_t i = 0; i < linhasAntes.size(); ++i) {
      Exige(linhas[i] == linhasAntes[i] || (linhas[i].empty() && linhasAntes[i] == kVeiculos), "lines of the list");
    }
    for (const char *lpNome : {kVeiculos, kVersao}) {
      Exige(m_antes.contains(lpNome) || std::find(linhas.begin(), linhas.end(), lpNome) != linhas.end(),
            "what was created is listed");
    }
  }

  std::string Dados(const char *lpNome) const {
    const fuzz::ArquivoExaminado exame = fuzz::Examina(lpNome, m_empresa.Le(lpNome), m_bCabecalhos);
    ExigeCodigo(exame.hr, codigos::kOk, "the header on disk");
    Exige(exame.bTemCabecalho || !m_bCabecalhos, "a header on disk");
    return exame.sDados;
  }

  const Pasta &m_antes;
  bool m_bCabecalhos;
  apoio::EmpresaTeste m_empresa;
  apoio::ChaveCabecalho m_cabecalho;
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
  std::string m_sRegistros;  ///< that the register should hold
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  fuzz::CEntrada entrada(pBytes, qtd);
  const unsigned uiEscolha = entrada.Byte();
  const bool bCabecalhos = (uiEscolha & 1) != 0;
  const Pasta pasta = PastaDaEntrada(uiEscolha, &entrada);
  Execucao(pasta, bCabecalhos).Roda();
  return 0;
}
