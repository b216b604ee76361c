// A company's directory in which one of the three data files holds any bytes, opened as a register of vehicles.
//
// Property: the code of the initialisation is the one that the format gives for the damage, and the next attempt gives
// it again. A refusal leaves every file as it was, or, with headers on and no version record that holds in front of it,
// behind one new header. After a success all records are the stored ones (a base without a version loses its first,
// which was no vehicle), an append and a write over the first record work, and a new register finds everything.

#include "vehicles/BaseVeiculos.h"

#include <algorithm>

#include "fuzz/Empresa.h"

namespace {

using namespace fuzz;
using Nomes = std::vector<std::string>;

/// What the initialisation should answer, and the records that it should find.
struct Esperado {
  HRESULT hr = codigos::kOk;
  std::string sRegistros;
  bool bConverte = false;  ///< the base has no version and its vehicle file can be converted
};

class Execucao {
public:
  Execucao(const Pasta &pasta, bool bCabecalhos) : m_antes(pasta), m_empresa(bCabecalhos, pasta) {}

  void Roda() {
    const Esperado esperado = Preve();
    {
      CBaseVeiculos base;
      ExigeCodigo(m_empresa.Abre(&base), esperado.hr, "the code of the initialisation");
      if (Falhou(esperado.hr)) {
        ConfereRecusa(esperado);
        ExigeCodigo(m_empresa.Abre(&base), esperado.hr, "the code of a second attempt");
        return ConfereRecusa(esperado);
      }
      m_sRegistros = esperado.sRegistros;
      ConfereRegistros(&base);
      Escreve(&base, 2025, 0);
      Escreve(&base, 2026, 1);
      ConfereRegistros(&base);
    }
    ConfereDisco();
    CBaseVeiculos base;
    ExigeCodigo(m_empresa.Abre(&base), codigos::kOk, "the code of a new register");
    ConfereRegistros(&base);
  }

private:
  ArquivoExaminado Antes(const char *lpNome) const {
    const auto achado = m_antes.find(lpNome);
    return Examina(lpNome, achado != m_antes.end() ? achado->second : "", m_empresa.m_bCabecalhos);
  }

  /// The files are looked at in the order in which they are opened; the first thing wrong with one counts.
  Esperado Preve() const {
    Esperado esperado;
    const auto exige = [&](bool bVale, HRESULT hr) { esperado.hr = bVale || Falhou(esperado.hr) ? esperado.hr : hr; };
    Nomes lista;
    const auto dados = [&](const char *lpNome) {
      const ArquivoExaminado exame = Antes(lpNome);
      exige(m_antes.contains(lpNome) || std::count(lista.begin(), lista.end(), lpNome) == 0,
            codigos::kArquivoDesapareceu);
      exige(!Falhou(exame.hr), exame.hr);
      return exame.sDados;
    };
    lista = LinhasDoTexto(dados(kControle));
    const std::string sVersao = dados(kVersao);
    exige(sVersao.size() == kTamanhoVersao || !m_antes.contains(kVersao), codigos::kTamanhoDiferente);
    const auto iVersao = CEntrada(sVersao).Valor<std::uint16_t>();
    exige(iVersao <= 1, codigos::kBaseMaisNova);
    esperado.sRegistros = dados(kVeiculos);
    exige(esperado.sRegistros.size() % sizeof(RegVeiculo) == 0, codigos::kTamanhoNaoMultiplo);
    esperado.bConverte = iVersao == 0 && !Falhou(esperado.hr);
    if (esperado.bConverte) {
      esperado.sRegistros.erase(0, sizeof(RegVeiculo));
      // The file whose only record goes is deleted and its entry in the list emptied. A second entry, which the system
      // never makes, then has no file.
      exige(!esperado.sRegistros.empty() || std::count(lista.begin(), lista.end(), kVeiculos) <= 1,
            codigos::kArquivoDesapareceu);
    }
    return esperado;
  }

  /// Every file as it was, or behind one new header. What a conversion has rightly done before the refusal stays.
  void ConfereRecusa(const Esperado &esperado) const {
    ConfereSobras();
    if (esperado.bConverte) {
      return;
    }
    for (const char *lpNome : kArquivos) {
      const auto antes = m_antes.find(lpNome);
      const std::optional<std::string> sDepois = m_empresa.Bytes(lpNome);
      Exige(sDepois.has_value() == (antes != m_antes.end()), "a refusal neither makes nor deletes a file");
      const bool bPodeGanhar = m_empresa.m_bCabecalhos && !Antes(lpNome).bTemCabecalho;
      Exige(!sDepois || sDepois == antes->second ||
                (bPodeGanhar && sDepois == Cabecalho(lpNome, antes->second) + antes->second),
            "a refusal keeps the bytes of every file");
    }
  }

  /// Companions of an unfinished rewrite.
  void ConfereSobras() const {
    for (const char *lpNome : {"DFVEIC.TRA", "DFVEIVS.TRA", "DFVEIVSD.TRA", "QZDATABASE_FILE_CTRL.TRA"}) {
      Exige(!m_empresa.Existe(lpNome), "no companion stays");
    }
  }

  void ConfereRegistros(CBaseVeiculos *pBase) const {
    const std::size_t registros = m_sRegistros.size() / sizeof(RegVeiculo);
    CArray<LONG> aPosicoes;
    CArray<RegVeiculo> aRegistros;
    ExigeCodigo(pBase->InternalGetRegs({}, &aPosicoes, &aRegistros), codigos::kOk, "reading all records");
    Exige(aRegistros.GetSize() == registros && aPosicoes.GetSize() == registros, "number of records");
    Exige(BytesDe(aRegistros.GetData(), registros) == m_sRegistros, "the records are the stored bytes");
    tagREG_VEICULOPS veiculo{};
    const auto lAtras = static_cast<LONG>(registros + 1);
    const HRESULT hrAtras = pBase->LePonteiros(1, &lAtras, &veiculo);
    Exige(hrAtras == codigos::kPosicaoAlemDoFim || (registros == 0 && hrAtras == codigos::kArquivoNaoAberto),
          "reading behind the last record");
  }

  /// Writes a vehicle over a record, or appends it at 0.
  void Escreve(CBaseVeiculos *pBase, std::uint32_t iAno, LONG lPedida) {
    tagREG_VEICULOPS veiculo{};
    std::fill(std::begin(veiculo.szCodigo), std::end(veiculo.szCodigo), 'N');
    veiculo.iAno = iAno;
    RegVeiculo reg;
    CopiaParaRegistro(veiculo, &reg);
    const std::size_t uiOnde = lPedida == 0 ? m_sRegistros.size() : 0;
    m_sRegistros.replace(uiOnde, sizeof(reg), BytesDe(reg));
    LONG lPos = lPedida;
    ExigeCodigo(pBase->Grava(&lPos, veiculo), codigos::kOk, "a write");
    Exige(static_cast<std::size_t>(lPos) == uiOnde / sizeof(reg) + 1, "the position of a write");
  }

  /// The closed files: data behind headers that hold, the version of this program, and the lines of the list still in
  /// their places, with whatever was created behind them.
  void ConfereDisco() const {
    ConfereSobras();
    Exige(m_empresa.Dados(kVeiculos) == m_sRegistros, "the vehicle file");
    Exige(m_empresa.Dados(kVersao).substr(0, 2) == VersaoUm().substr(0, 2), "the version file");
    const Nomes linhas = LinhasDoTexto(m_empresa.Dados(kControle));
    const Nomes linhasAntes = LinhasDoTexto(Antes(kControle).sDados);
    Exige(linhas.size() >= linhasAntes.size(), "the list does not lose lines");
    for (std::size_t i = 0; i < linhasAntes.size(); ++i) {
      Exige(linhas[i] == linhasAntes[i] || (linhas[i].empty() && linhasAntes[i] == kVeiculos), "lines of the list");
    }
    for (const char *lpNome : {kVeiculos, kVersao}) {
      Exige(m_antes.contains(lpNome) || std::count(linhas.begin(), linhas.end(), lpNome) != 0,
            "what was created is listed");
    }
  }

  const Pasta &m_antes;
  CEmpresa m_empresa;
  std::string m_sRegistros;  ///< that the register should hold
};

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  const unsigned uiEscolha = pEntrada->Byte();
  Execucao(PastaDaEntrada(uiEscolha, pEntrada), (uiEscolha & 1) != 0).Roda();
}
