// A company's register of vehicles through any run of operations of two objects that share it, some of them on a disk
// that fails, with headers off or on.
//
// Property: every answer is the one of a plain list of the records, which only writes that succeed have changed; what
// stands on disk whenever all objects are closed is that list, behind a header that holds, and nothing is left beside
// it.

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "client/QZVeiculosCampos.h"
#include "core/platform/MemoriaTarefa.h"
#include "core/platform/Textos.h"
#include "fuzz/Empresa.h"
#include "tests/apoio/ArquivosComFalha.h"

namespace {

using namespace fuzz;
using Filtro = tagREG_FILTRO_VEICULOSPS;
using Veiculo = tagREG_VEICULOPS;

constexpr int kMaximoOperacoes = 32;
constexpr std::size_t kMaisLidos = 150;
/// More than a block of records in memory holds.
constexpr std::size_t kMuitos = kRegistrosPorBloco + 90;

/// Calls `f` for each number of a vehicle and its two bounds in a filter.
template <typename F>
void CadaFaixa(const Veiculo &v, Filtro *pFiltro, F f) {
  f(v.vTara, &pFiltro->vTaraInicial, &pFiltro->vTaraFinal);
  f(v.vCapacidadeKg, &pFiltro->vCapacidadeKgInicial, &pFiltro->vCapacidadeKgFinal);
  f(v.vCapacidadeM3, &pFiltro->vCapacidadeM3Inicial, &pFiltro->vCapacidadeM3Final);
  f(v.iAno, &pFiltro->iAnoInicial, &pFiltro->iAnoFinal);
}

/// Calls `f` for each text of a vehicle that a pattern is held against and its criterion, in the order of a search.
template <typename F>
void CadaTexto(const Veiculo &v, Filtro *pFiltro, F f) {
  f(v.szDescricao, &pFiltro->szDescricao);
  f(v.szCodigoANTT, &pFiltro->szCodigoANTT);
  f(v.szCodigo, &pFiltro->szCodigo);
  f(v.szRENAVAM, &pFiltro->szRENAVAM);
  f(v.szPlaca, &pFiltro->szPlaca);
}

template <std::size_t N>
void Preenche(std::string_view sTexto, char (*pCampo)[N]) {
  std::memset(pCampo, 0, N);
  sTexto.copy(*pCampo, N);
}

/// Texts that meet each other: some fill a field, are a pattern or differ in letter case alone.
std::string Texto(CEntrada *pEntrada) {
  static constexpr char kLetras[] = {'A', 'a', 'B', '*', '?', '\xE3', '\xC3', ';', '.', '\0'};
  const auto uiTamanho = pEntrada->PickValueInArray<std::size_t>({0, 1, 1, 2, 8, 9, 12, 13, 14});
  return std::string(uiTamanho, pEntrada->PickValueInArray(kLetras)) +
         std::string(pEntrada->Ate(1), pEntrada->PickValueInArray(kLetras));
}

/// Any bytes, or a vehicle that resembles others.
Veiculo VeiculoDaEntrada(CEntrada *pEntrada) {
  const unsigned uiForma = pEntrada->Byte();
  if (uiForma % 4 == 0) {
    return Valor<Veiculo>(pEntrada->ConsumeBytesAsString(sizeof(Veiculo)));
  }
  Veiculo v{};
  Preenche(Texto(pEntrada), &v.szCodigo);
  Preenche(Texto(pEntrada), &v.szPlaca);
  Preenche(Texto(pEntrada), &v.szDescricao);
  Preenche((uiForma & 4) != 0 ? "SP" : "RJX", &v.szUF);
  v.iAno = (uiForma & 8) != 0 ? UINT32_MAX : 2000 + (uiForma >> 6);
  v.iPonteiroCliente = uiForma % 4;
  v.vTara = uiForma >> 4;
  v.vCapacidadeKg = uiForma >> 5;
  return v;
}

/// What is kept of a vehicle: texts up to their first zero byte, and nothing of what is no field.
Veiculo Guardado(Veiculo v) {
  const auto corta = [](auto &...campos) { (Preenche(LeCampo(campos), &campos), ...); };
  corta(v.szDescricao, v.szCodigoANTT, v.szCodigo, v.szRENAVAM, v.szPlaca, v.szUF);
  v.iFiller = 0;
  v.lPosicao = 0;
  std::memset(v.cFiller, 0, sizeof(v.cFiller));
  return v;
}

/// A few criteria, mostly by what a vehicle itself has, or hardly any would pass.
Filtro FiltroDaEntrada(CEntrada *pEntrada, const Veiculo &v) {
  Filtro filtro{};
  std::uint32_t uiQuais = 1U << pEntrada->Ate(31) | 1U << pEntrada->Ate(31);
  const auto esta = [&] { return (std::exchange(uiQuais, uiQuais >> 1) & 1) != 0; };
  CadaFaixa(v, &filtro, [&]<typename T>(auto valor, T *pInicial, T *pFinal) {
    for (T *const pLimite : {pInicial, pFinal}) {
      if (esta()) {
        const std::uint64_t uiPerto = static_cast<std::uint64_t>(valor) + pEntrada->Ate(2) - 1;
        *pLimite = pEntrada->Ate(3) == 3 ? pEntrada->ConsumeIntegral<T>() : static_cast<T>(uiPerto);
      }
    }
  });
  const auto texto = [&](const auto &campo, auto *pCriterio) {
    if (esta()) {
      std::string sTexto = pEntrada->ConsumeBool() ? Texto(pEntrada) : LeCampo(campo);
      for (std::size_t trocas = pEntrada->Ate(3); trocas > 0 && !sTexto.empty(); --trocas) {
        const std::size_t uiOnde = pEntrada->Ate(sTexto.size() - 1);
        sTexto.replace(uiOnde, pEntrada->Ate(3), pEntrada->PickValueInArray({"", "*", "?", "*"}));
      }
      Preenche(sTexto, pCriterio);
    }
  };
  CadaTexto(v, &filtro, texto);
  texto(v.szUF, &filtro.szUF);
  filtro.iPonteiroCliente = esta() ? v.iPonteiroCliente : std::uint16_t{0};
  for (std::uint8_t *const pMascara :
       {&filtro.iTipoCarroceria, &filtro.iTipoRodado, &filtro.iTipoVeiculo, &filtro.iTipoTransporte}) {
    *pMascara = esta() ? pEntrada->Byte() : std::uint8_t{0};
  }
  filtro.lPosicao = esta() ? 1 : 0;  // no criterion
  return filtro;
}

bool NaMascara(unsigned uiMascara, unsigned uiTipo, unsigned uiMaior) {
  return uiMascara == 0 || uiTipo > uiMaior || (uiMascara >> uiTipo & 1) != 0;
}

/// What a search filter is by its description: the criteria examined one by one in their order, the first pattern among
/// the texts giving the verdict.
bool Passa(const Veiculo &v, Filtro filtro) {
  bool bPassa = filtro.iPonteiroCliente == 0 || v.iPonteiroCliente == filtro.iPonteiroCliente;
  CadaFaixa(v, &filtro, [&](std::int64_t valor, const auto *pInicial, const auto *pFinal) {
    bPassa = bPassa && (*pInicial <= 0 || valor >= *pInicial) && (*pFinal <= 0 || valor <= *pFinal);
  });
  bool bDecidido = !bPassa;
  CadaTexto(v, &filtro, [&](const auto &campo, const auto *pCriterio) {
    const std::string sCriterio = LeCampo(*pCriterio);
    const bool bPadrao = sCriterio.find_first_of("*?") != std::string::npos;
    if (!bDecidido && !sCriterio.empty()) {
      bPassa =
          bPadrao ? plataforma::CasaCuringa(LeCampo(campo).c_str(), sCriterio.c_str()) : LeCampo(campo) == sCriterio;
      bDecidido = bPadrao || !bPassa;
    }
  });
  const std::string sUF = LeCampo(filtro.szUF);
  return bDecidido
             ? bPassa
             : (sUF.empty() || sUF == LeCampo(v.szUF)) && NaMascara(filtro.iTipoCarroceria, v.iTipoCarroceria, 5) &&
                   NaMascara(filtro.iTipoRodado, v.iTipoRodado - 1U, 5) &&
                   NaMascara(filtro.iTipoVeiculo, std::min<unsigned>(v.iTipoVeiculo, 1), 1) &&
                   NaMascara(filtro.iTipoTransporte, std::min<unsigned>(v.iTipoTransporte, 1), 1);
}

class Execucao {
public:
  explicit Execucao(bool bCabecalhos) : m_empresa(bCabecalhos) { AbreTodos(); }

  void Roda(CEntrada *pEntrada) {
    for (int i = 0; i < kMaximoOperacoes && pEntrada->remaining_bytes() > 0; ++i) {
      Opera(pEntrada);
    }
    Recarrega({});
  }

private:
  void AbreTodos() {
    for (CBaseVeiculos &base : m_bases) {
      ExigeCodigo(m_empresa.Abre(&base), codigos::kOk, "opening");
    }
  }

  void Opera(CEntrada *pEntrada) {
    CBaseVeiculos &base = m_bases[pEntrada->Ate(1)];
    const Veiculo algum = m_modelo.empty() ? Veiculo{} : m_modelo[pEntrada->Ate(m_modelo.size() - 1)];
    switch (pEntrada->Ate(7)) {
      case 0:
      case 1:
        return Grava(&base, pEntrada);
      case 2:
        return LeMuitos(&base, pEntrada);
      case 3:
        return Procura(&base, pEntrada->PickValueInArray(
                                  {Texto(pEntrada), LeCampo(algum.szCodigo), LeCampo(algum.szPlaca) + "?"}));
      case 4:
      case 5:
        return Busca(&base, FiltroDaEntrada(pEntrada, algum));
      case 6:
        ExigeCodigo(base.Finaliza(), codigos::kOk, "closing one of two");
        return ExigeCodigo(m_empresa.Abre(&base), codigos::kOk, "opening one of two");
      default:
        return Recarrega(pEntrada->Ate(7) == 7 ? VeiculoDaEntrada(pEntrada) : std::optional<Veiculo>());
    }
  }

  /// A position: mostly of a record that is there, or next to one.
  LONG Posicao(CEntrada *pEntrada) const {
    return pEntrada->Ate(15) == 15 ? pEntrada->ConsumeIntegral<LONG>()
                                   : pEntrada->ConsumeIntegralInRange<LONG>(0, static_cast<LONG>(m_modelo.size()) + 1);
  }
  bool Existe(LONG lPos) const { return lPos > 0 && static_cast<std::size_t>(lPos) <= m_modelo.size(); }

  /// Whatever the disk does, a write has happened or it has not, as its code says.
  void Grava(CBaseVeiculos *pBase, CEntrada *pEntrada) {
    apoio::PlanoFalha plano{.operacoes = pEntrada->PickValueInArray<unsigned>(
                                {0, apoio::kOpGrava, apoio::kOpTodas & ~apoio::kOpDescarrega}),
                            .trecho = pEntrada->PickValueInArray({"", kVeiculos}),
                            .enesima = 1 + pEntrada->Ate(7),
                            .bPersistente = pEntrada->ConsumeBool()};
    if (pEntrada->ConsumeBool()) {
      plano.gravaAntes = pEntrada->Byte();
    }
    if (pEntrada->Ate(3) == 3) {
      plano.morte = 0;
    }
    const LONG lPedida = Posicao(pEntrada);
    const Veiculo v = VeiculoDaEntrada(pEntrada);
    LONG lPos = lPedida;
    m_falhas.Arma(plano);
    const HRESULT hr = pBase->Grava(&lPos, v);
    m_falhas.Desarma();
    m_bCompanheirosFalharam = m_bCompanheirosFalharam || (plano.trecho.empty() && m_falhas.Disparou());
    if (Falhou(hr)) {
      const bool bAlemDoFim = lPedida != 0 && !Existe(lPedida) && hr == codigos::kGravacaoAlemDoFim;
      Exige(lPos == lPedida && (bAlemDoFim || m_falhas.Disparou()), "a write that fails");
    } else {
      Exige(lPos == lPedida ? Existe(lPos) : lPedida == 0 && lPos == static_cast<LONG>(m_modelo.size() + 1),
            "the position of a write");
      m_modelo.resize(std::max(m_modelo.size(), static_cast<std::size_t>(lPos)));
      m_modelo[static_cast<std::size_t>(lPos - 1)] = Guardado(v);
    }
    std::uint32_t iQtd = 0;
    ExigeCodigo(pBase->GetQuantidadeRegistros(&iQtd), codigos::kOk, "the number of records");
    Exige(iQtd == m_modelo.size(), "as many records as were written");
  }

  /// A vehicle of zeros where there is none.
  Veiculo VeiculoEm(LONG lPos) const { return Existe(lPos) ? m_modelo[static_cast<std::size_t>(lPos - 1)] : Veiculo{}; }

  /// Up to the first bad position.
  void LeMuitos(CBaseVeiculos *pBase, CEntrada *pEntrada) {
    std::vector<LONG> posicoes(pEntrada->Ate(kMaisLidos));
    const std::size_t uiIguais = 1 + pEntrada->Ate(40);
    for (std::size_t i = 0; i < posicoes.size(); ++i) {
      posicoes[i] = i % uiIguais == 0 ? Posicao(pEntrada) : posicoes[i - 1];
    }
    std::vector<Veiculo> lidos(posicoes.size(), Valor<Veiculo>(std::string(sizeof(Veiculo), 'x')));
    const HRESULT hr = pBase->LePonteiros(static_cast<std::uint32_t>(posicoes.size()), posicoes.data(), lidos.data());
    const auto ruim = std::find_if_not(posicoes.begin(), posicoes.end(), [this](LONG lPos) { return Existe(lPos); });
    if (ruim == posicoes.end()) {
      ExigeCodigo(hr, codigos::kOk, "reading");
    } else if (m_modelo.empty() && *ruim != 0) {
      Exige(hr == codigos::kArquivoNaoAberto || hr == codigos::kPosicaoAlemDoFim, "reading where there is nothing");
    } else {
      ExigeCodigo(hr, *ruim == 0 ? codigos::kPosicaoZero : codigos::kPosicaoAlemDoFim, "reading a bad position");
    }
    std::fill(ruim, posicoes.end(), 0);
    for (std::size_t i = 0; i < lidos.size(); ++i) {
      Exige(BytesDe(lidos[i]) == BytesDe(VeiculoEm(posicoes[i])), "the vehicles read");
    }
  }

  std::vector<LONG> QuemPassa(const Filtro &filtro, std::size_t uiMaximo) const {
    std::vector<LONG> posicoes;
    for (std::size_t i = 0; i < m_modelo.size() && posicoes.size() < uiMaximo; ++i) {
      if (Passa(m_modelo[i], filtro)) {
        posicoes.push_back(static_cast<LONG>(i + 1));
      }
    }
    return posicoes;
  }

  void Procura(CBaseVeiculos *pBase, const std::string &sTexto) const {
    Filtro porCodigo{};
    Filtro porPlaca{};
    Preenche(sTexto.c_str(), &porCodigo.szCodigo);
    Preenche(sTexto.c_str(), &porPlaca.szPlaca);
    std::vector<LONG> esperadas = QuemPassa(porCodigo, 1);
    if (esperadas.empty()) {
      esperadas = QuemPassa(porPlaca, 1);
    }
    std::uint32_t iPos = 77;
    auto v = Valor<Veiculo>(std::string(sizeof(Veiculo), 'x'));
    ExigeCodigo(pBase->Existe(sTexto.c_str(), &iPos, &v), codigos::kOk, "looking for a code or a plate");
    const auto lPos = static_cast<LONG>(iPos);
    Exige(lPos == (esperadas.empty() ? 0 : esperadas[0]), "the first with a code, or else with a plate");
    Exige(BytesDe(v) == BytesDe(VeiculoEm(lPos)), "the vehicle found");
  }

  void Busca(CBaseVeiculos *pBase, const Filtro &filtro) const {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    ExigeCodigo(pBase->BuscaPonteiros(filtro, &resultado), codigos::kOk, "a search");
    const std::vector<LONG> achadas(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
    Exige((resultado.Ponteiros == nullptr) == achadas.empty() && resultado.pFiller == nullptr, "a search's result");
    plataforma::LiberaTarefa(resultado.Ponteiros);
    Exige(achadas == QuemPassa(filtro, m_modelo.size()), "the vehicles that a search finds");
  }

  std::string BytesDosRegistros() const {
    std::string sBytes;
    for (const Veiculo &v : m_modelo) {
      RegVeiculo reg;
      CopiaParaRegistro(v, &reg);
      sBytes += BytesDe(reg);
    }
    return sBytes;
  }

  /// Closes both, looks at the disk, adds one vehicle in many years to the file if that is wanted, and opens it again.
  void Recarrega(const std::optional<Veiculo> &mais) {
    for (CBaseVeiculos &base : m_bases) {
      ExigeCodigo(base.Finaliza(), codigos::kOk, "closing");
    }
    Exige(!m_empresa.Existe("DFVEIC.INT") || m_modelo.empty() || m_bCompanheirosFalharam,
          "no note but that of a creation stays");
    Exige(!m_empresa.Existe("DFVEIC.TRA") || m_bCompanheirosFalharam, "no unfinished copy stays");
    Exige(m_empresa.Dados(kVeiculos) == BytesDosRegistros(), "the records on disk");
    if (mais && m_modelo.size() < kMuitos / 2) {
      for (std::uint32_t i = 0; i < kMuitos; ++i) {
        m_modelo.push_back(Guardado(*mais));
        m_modelo.back().iAno += i;
      }
      const std::string sRegistros = BytesDosRegistros();
      m_empresa.Escreve(kVeiculos, (m_empresa.m_bCabecalhos ? Cabecalho(kVeiculos, sRegistros) : "") + sRegistros);
    }
    AbreTodos();
  }

  CEmpresa m_empresa;
  apoio::ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  apoio::ServicosTrocados m_servicos{&m_falhas};
  std::array<CBaseVeiculos, 2> m_bases;
  std::vector<Veiculo> m_modelo;
  bool m_bCompanheirosFalharam = false;  ///< what is beside the data file may not have been deleted
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  const bool bCabecalhos = entrada.ConsumeBool();
  Execucao(bCabecalhos).Roda(&entrada);
  return 0;
}
