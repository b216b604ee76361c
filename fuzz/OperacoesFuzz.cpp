// A company's register of vehicles through any run of operations of two objects that share it, some of them on a disk
// that fails, with headers off or on.
//
// Property: every answer is the one of a plain list of the records, which only writes that succeed have changed; what
// stands on disk whenever all objects are closed is that list, behind a header that holds, and nothing is left beside
// it.

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

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

template <std::size_t N>
void Preenche(std::string_view sTexto, char (&campo)[N]) {
  std::memset(campo, 0, N);
  sTexto.copy(campo, N);
}

/// The stored record of an interface record, or the other way round, field by field: texts end at their first zero
/// byte, and everything that has no field is zero.
template <typename Para, typename De>
Para Copia(const De &de) {
  Para para;
  std::memset(&para, 0, sizeof(para));
  const auto texto = [](const auto &origem, auto *pDestino) {
    Preenche(std::string_view(origem, strnlen(origem, sizeof(origem))), *pDestino);
  };
  texto(de.szCodigo, &para.szCodigo);
  texto(de.szPlaca, &para.szPlaca);
  texto(de.szUF, &para.szUF);
  texto(de.szDescricao, &para.szDescricao);
  texto(de.szCodigoANTT, &para.szCodigoANTT);
  texto(de.szRENAVAM, &para.szRENAVAM);
  para.iAno = de.iAno;
  para.vTara = de.vTara;
  para.vCapacidadeKg = de.vCapacidadeKg;
  para.vCapacidadeM3 = de.vCapacidadeM3;
  para.iPonteiroCliente = de.iPonteiroCliente;
  para.iTipoCarroceria = de.iTipoCarroceria;
  para.iTipoRodado = de.iTipoRodado;
  para.iTipoVeiculo = de.iTipoVeiculo;
  para.iTipoTransporte = de.iTipoTransporte;
  return para;
}

/// Texts that meet each other: some fill a field, look like a pattern or differ in letter case alone.
std::string Texto(CEntrada *pEntrada) {
  static const char *const kTextos[] = {"",
                                        "A",
                                        "a",
                                        "B",
                                        "AB",
                                        "A*",
                                        "*",
                                        "?",
                                        "B?",
                                        "AB\xE3",
                                        "SILO S\xC3O",
                                        "silo s\xE3o",
                                        "123456789",
                                        "1234567890",
                                        "123456789012",
                                        "1234567890123",
                                        "*s\xE3o*",
                                        "*.*",
                                        "*A;*SILO*",
                                        "12345678901234"};
  const std::size_t uiEscolha = pEntrada->Ate(std::size(kTextos));
  return uiEscolha < std::size(kTextos) ? kTextos[uiEscolha] : pEntrada->Bytes(pEntrada->Ate(20));
}

/// Any bytes, or a vehicle that resembles others.
Veiculo VeiculoDaEntrada(CEntrada *pEntrada) {
  const unsigned uiForma = pEntrada->Byte();
  if (uiForma % 4 == 0) {
    return pEntrada->Valor<Veiculo>();
  }
  Veiculo v{};
  Preenche(Texto(pEntrada), v.szCodigo);
  Preenche(Texto(pEntrada), v.szPlaca);
  Preenche(Texto(pEntrada), v.szDescricao);
  Preenche((uiForma & 4) != 0 ? "SP" : "RJX", v.szUF);
  v.iAno = (uiForma & 8) != 0 ? std::numeric_limits<std::uint32_t>::max() : 2000 + (uiForma >> 6);
  v.vTara = uiForma >> 4;
  return v;
}

template <std::size_t N>
std::string TextoDe(const char (&campo)[N]) {
  return AteOZero({campo, N});
}

/// A text criterion: a piece of the record's own text, with a wildcard planted now and then, or any bytes.
template <auto kDoRegistro, auto kDoFiltro>
void DefineTexto(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  constexpr std::size_t kLargura = sizeof(reg.*kDoRegistro);
  const unsigned uiEscolha = pEntrada->Byte();
  std::string sTexto = TextoDe(reg.*kDoRegistro);
  if ((uiEscolha & 1) != 0) {
    sTexto = pEntrada->Bytes(pEntrada->Ate(kLargura));
  }
  if ((uiEscolha & 2) != 0) {
    sTexto.resize(std::min(sTexto.size(), pEntrada->Ate(kLargura)));
  }
  for (unsigned uiPlanta = uiEscolha >> 4; uiPlanta != 0 && !sTexto.empty(); uiPlanta >>= 1) {
    const std::size_t uiOnde = pEntrada->Ate(sTexto.size() - 1);
    sTexto.replace(uiOnde, pEntrada->Ate(3), (uiPlanta & 1) != 0 ? "*" : "?");
  }
  std::memset(pFiltro->*kDoFiltro, 0, kLargura);
  sTexto.copy(pFiltro->*kDoFiltro, kLargura);
}

/// A bound at the record's value or beside it, or anywhere.
template <auto kDoRegistro, auto kDoFiltro>
void DefineLimite(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  const unsigned uiEscolha = pEntrada->Byte();
  const std::uint64_t uiPerto = static_cast<std::uint64_t>(reg.*kDoRegistro) + uiEscolha % 4 - 1;
  const std::uint64_t uiBits = uiEscolha % 4 == 3 ? pEntrada->Valor<std::uint64_t>() : uiPerto;
  auto &limite = pFiltro->*kDoFiltro;
  limite = static_cast<std::remove_reference_t<decltype(limite)>>(uiBits);
}

template <auto kDoFiltro>
void DefineMascara(CEntrada *pEntrada, const RegVeiculo & /*reg*/, Filtro *pFiltro) {
  pFiltro->*kDoFiltro = pEntrada->Byte();
}

/// What no criterion reads.
void DefineResto(CEntrada *pEntrada, const RegVeiculo & /*reg*/, Filtro *pFiltro) {
  std::memset(pFiltro->cFiller, pEntrada->Byte(), sizeof(pFiltro->cFiller));
  pFiltro->lPosicao = pEntrada->Byte();
}

using Reg = RegVeiculo;
constexpr void (*kCriterios[])(CEntrada *, const RegVeiculo &, Filtro *) = {
    DefineTexto<&Reg::szDescricao, &Filtro::szDescricao>,
    DefineTexto<&Reg::szCodigoANTT, &Filtro::szCodigoANTT>,
    DefineTexto<&Reg::szCodigo, &Filtro::szCodigo>,
    DefineTexto<&Reg::szRENAVAM, &Filtro::szRENAVAM>,
    DefineTexto<&Reg::szPlaca, &Filtro::szPlaca>,
    DefineTexto<&Reg::szUF, &Filtro::szUF>,
    DefineLimite<&Reg::vTara, &Filtro::vTaraInicial>,
    DefineLimite<&Reg::vTara, &Filtro::vTaraFinal>,
    DefineLimite<&Reg::vCapacidadeKg, &Filtro::vCapacidadeKgInicial>,
    DefineLimite<&Reg::vCapacidadeKg, &Filtro::vCapacidadeKgFinal>,
    DefineLimite<&Reg::vCapacidadeM3, &Filtro::vCapacidadeM3Inicial>,
    DefineLimite<&Reg::vCapacidadeM3, &Filtro::vCapacidadeM3Final>,
    DefineLimite<&Reg::iAno, &Filtro::iAnoInicial>,
    DefineLimite<&Reg::iAno, &Filtro::iAnoFinal>,
    DefineLimite<&Reg::iPonteiroCliente, &Filtro::iPonteiroCliente>,
    DefineMascara<&Filtro::iTipoCarroceria>,
    DefineMascara<&Filtro::iTipoRodado>,
    DefineMascara<&Filtro::iTipoVeiculo>,
    DefineMascara<&Filtro::iTipoTransporte>,
    DefineResto,
};

bool NaFaixa(std::int64_t v, std::int64_t vInicial, std::int64_t vFinal) {
  return !(vInicial > 0 && v < vInicial) && !(vFinal > 0 && v > vFinal);
}

bool NaMascara(unsigned uiMascara, bool bTemBit, unsigned uiBit) {
  return uiMascara == 0 || !bTemBit || (uiMascara & (1U << uiBit)) != 0;
}

/// Sets one criterion of a filter, mostly by what the record itself has, or hardly any record would pass.
void DefineCriterio(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  kCriterios[pEntrada->Ate(std::size(kCriterios) - 1)](pEntrada, reg, pFiltro);
}

/// What a search filter is by its description: the criteria examined one by one in their order, the first pattern among
/// the texts giving the verdict.
bool PassaPorTodos(const RegVeiculo &reg, const Filtro &filtro) {
  if (!NaFaixa(reg.vTara, filtro.vTaraInicial, filtro.vTaraFinal) ||
      !NaFaixa(reg.vCapacidadeKg, filtro.vCapacidadeKgInicial, filtro.vCapacidadeKgFinal) ||
      !NaFaixa(reg.vCapacidadeM3, filtro.vCapacidadeM3Inicial, filtro.vCapacidadeM3Final) ||
      !NaFaixa(reg.iAno, filtro.iAnoInicial, filtro.iAnoFinal) ||
      (filtro.iPonteiroCliente != 0 && reg.iPonteiroCliente != filtro.iPonteiroCliente)) {
    return false;
  }
  const std::pair<std::string, std::string> textos[] = {{TextoDe(reg.szDescricao), TextoDe(filtro.szDescricao)},
                                                        {TextoDe(reg.szCodigoANTT), TextoDe(filtro.szCodigoANTT)},
                                                        {TextoDe(reg.szCodigo), TextoDe(filtro.szCodigo)},
                                                        {TextoDe(reg.szRENAVAM), TextoDe(filtro.szRENAVAM)},
                                                        {TextoDe(reg.szPlaca), TextoDe(filtro.szPlaca)}};
  for (const auto &[sCampo, sCriterio] : textos) {
    if (sCriterio.find_first_of("*?") != std::string::npos) {
      return plataforma::CasaCuringa(sCampo.c_str(), sCriterio.c_str());
    }
    if (!sCriterio.empty() && sCampo != sCriterio) {
      return false;
    }
  }
  const std::string sUF = TextoDe(filtro.szUF);
  return (sUF.empty() || sUF == TextoDe(reg.szUF)) &&
         NaMascara(filtro.iTipoCarroceria, reg.iTipoCarroceria <= 5, reg.iTipoCarroceria) &&
         NaMascara(filtro.iTipoRodado, reg.iTipoRodado >= 1 && reg.iTipoRodado <= 6, reg.iTipoRodado - 1U) &&
         NaMascara(filtro.iTipoVeiculo, true, reg.iTipoVeiculo == 0 ? 0 : 1) &&
         NaMascara(filtro.iTipoTransporte, true, reg.iTipoTransporte == 0 ? 0 : 1);
}

class Execucao {
public:
  explicit Execucao(bool bCabecalhos) : m_empresa(bCabecalhos) { AbreTodos(); }

  void Roda(CEntrada *pEntrada) {
    for (int i = 0; i < kMaximoOperacoes && !pEntrada->Acabou(); ++i) {
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
    const unsigned uiEscolha = pEntrada->Byte();
    CBaseVeiculos &base = m_bases[uiEscolha % m_bases.size()];
    switch (uiEscolha / m_bases.size() % 12) {
      case 0:
      case 1:
      case 2:
        return Grava(&base, pEntrada);
      case 3:
      case 4:
        return GravaComFalha(&base, pEntrada);
      case 5:
        return LeMuitos(&base, pEntrada);
      case 6:
      case 7:
        return Procura(&base, Texto(pEntrada));
      case 8:
      case 9:
        return Busca(&base, FiltroDaEntrada(pEntrada));
      case 10:
        ExigeCodigo(base.Finaliza(), codigos::kOk, "closing one of two");
        return ExigeCodigo(m_empresa.Abre(&base), codigos::kOk, "opening one of two");
      default:
        return Recarrega(m_modelo.size() < kMuitos / 2 && pEntrada->Ate(3) == 0 ? Muitos(pEntrada)
                                                                                : std::vector<RegVeiculo>());
    }
  }

  /// A position: of a record or of none, mostly one that is there.
  LONG Posicao(CEntrada *pEntrada) const {
    const auto lQtd = static_cast<LONG>(m_modelo.size());
    const LONG outras[] = {
        0, lQtd + 1, lQtd + 2, -1, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()};
    const std::size_t uiEscolha = pEntrada->Ate(31);
    return uiEscolha < std::size(outras) ? outras[uiEscolha] : lQtd == 0 ? 0 : 1 + pEntrada->Byte() % lQtd;
  }
  bool Existe(LONG lPos) const { return lPos > 0 && static_cast<std::size_t>(lPos) <= m_modelo.size(); }

  /// A write that succeeded.
  void Anota(LONG lPedida, LONG lPos, const Veiculo &v) {
    Exige(lPos == (lPedida != 0 ? lPedida : static_cast<LONG>(m_modelo.size() + 1)), "the position of a write");
    m_modelo.resize(std::max(m_modelo.size(), static_cast<std::size_t>(lPos)));
    m_modelo[static_cast<std::size_t>(lPos - 1)] = Copia<RegVeiculo>(v);
  }

  void Grava(CBaseVeiculos *pBase, CEntrada *pEntrada) {
    const LONG lPedida = Posicao(pEntrada);
    const Veiculo v = VeiculoDaEntrada(pEntrada);
    LONG lPos = lPedida;
    const HRESULT hr = pBase->Grava(&lPos, v);
    if (lPedida != 0 && !Existe(lPedida)) {
      ExigeCodigo(hr, codigos::kGravacaoAlemDoFim, "a write to no record");
      return Exige(lPos == lPedida, "its position");
    }
    ExigeCodigo(hr, codigos::kOk, "a write");
    Anota(lPedida, lPos, v);
  }

  /// Whatever the disk does, a write has happened or it has not, as its code says.
  void GravaComFalha(CBaseVeiculos *pBase, CEntrada *pEntrada) {
    const unsigned uiForma = pEntrada->Byte();
    apoio::PlanoFalha plano{.trecho = (uiForma & 1) != 0 ? "DFVEIC.DAT" : ""};
    plano.operacoes = (uiForma & 2) != 0 ? apoio::kOpGrava : apoio::kOpTodas & ~apoio::kOpDescarrega;
    plano.enesima = 1 + pEntrada->Ate(7);
    plano.bPersistente = (uiForma & 4) != 0;
    if ((uiForma & 8) != 0) {
      plano.gravaAntes = pEntrada->Byte();
    }
    if ((uiForma & 48) == 48) {
      plano.morte = 0;
    }
    const LONG lPedida = Existe(1) && (uiForma & 64) != 0 ? static_cast<LONG>(m_modelo.size()) : 0;
    const Veiculo v = VeiculoDaEntrada(pEntrada);
    LONG lPos = lPedida;
    m_falhas.Arma(plano);
    const HRESULT hr = pBase->Grava(&lPos, v);
    m_falhas.Desarma();
    m_bCompanheirosFalharam = m_bCompanheirosFalharam || (plano.trecho.empty() && m_falhas.Disparou());
    if (Falhou(hr)) {
      Exige(m_falhas.Disparou() && lPos == lPedida, "a write that fails");
    } else {
      Anota(lPedida, lPos, v);
    }
    std::uint32_t iQtd = 0;
    ExigeCodigo(pBase->GetQuantidadeRegistros(&iQtd), codigos::kOk, "the number of records");
    Exige(iQtd == m_modelo.size(), "as many records as were written");
  }

  /// Up to the first bad position.
  void LeMuitos(CBaseVeiculos *pBase, CEntrada *pEntrada) {
    std::vector<LONG> posicoes(pEntrada->Ate(kMaisLidos));
    const std::size_t uiIguais = 1 + pEntrada->Ate(40);
    for (std::size_t i = 0; i < posicoes.size(); ++i) {
      posicoes[i] = i % uiIguais == 0 ? Posicao(pEntrada) : posicoes[i - 1];
    }
    const Veiculo antes = VeiculoDaEntrada(pEntrada);
    std::vector<Veiculo> lidos(posicoes.size(), antes);
    const HRESULT hr = pBase->LePonteiros(static_cast<std::uint32_t>(posicoes.size()), posicoes.data(), lidos.data());
    const auto ruim = std::find_if_not(posicoes.begin(), posicoes.end(), [this](LONG lPos) { return Existe(lPos); });
    if (ruim == posicoes.end()) {
      ExigeCodigo(hr, codigos::kOk, "reading");
    } else if (m_modelo.empty() && *ruim != 0) {
      Exige(hr == codigos::kArquivoNaoAberto || hr == codigos::kPosicaoAlemDoFim, "reading where there is nothing");
    } else {
      ExigeCodigo(hr, *ruim == 0 ? codigos::kPosicaoZero : codigos::kPosicaoAlemDoFim, "reading a bad position");
    }
    const auto uiBons = static_cast<std::size_t>(ruim - posicoes.begin());
    for (std::size_t i = 0; i < lidos.size(); ++i) {
      const Veiculo esperado =
          i < uiBons ? Copia<Veiculo>(m_modelo[static_cast<std::size_t>(posicoes[i] - 1)]) : Veiculo{};
      Exige(BytesDe(lidos[i]) == BytesDe(esperado), "the vehicles read");
    }
  }

  /// The first that passes, from 1; 0 for none.
  std::size_t Primeiro(const Filtro &filtro) const {
    const auto achado = std::find_if(m_modelo.begin(), m_modelo.end(),
                                     [&](const RegVeiculo &reg) { return PassaPorTodos(reg, filtro); });
    return achado == m_modelo.end() ? 0 : static_cast<std::size_t>(achado - m_modelo.begin()) + 1;
  }

  void Procura(CBaseVeiculos *pBase, const std::string &sTexto) const {
    Filtro porCodigo{};
    Filtro porPlaca{};
    Preenche(sTexto.c_str(), porCodigo.szCodigo);
    Preenche(sTexto.c_str(), porPlaca.szPlaca);
    const std::size_t uiPorCodigo = Primeiro(porCodigo);
    const std::size_t uiEsperada = uiPorCodigo != 0 ? uiPorCodigo : Primeiro(porPlaca);
    std::uint32_t iPos = 77;
    Veiculo v{};
    std::memset(&v, 'x', sizeof(v));
    ExigeCodigo(pBase->Existe(sTexto.c_str(), &iPos, &v), codigos::kOk, "looking for a code or a plate");
    Exige(iPos == uiEsperada, "the first with a code, or else with a plate");
    Exige(BytesDe(v) == BytesDe(iPos != 0 ? Copia<Veiculo>(m_modelo[iPos - 1]) : Veiculo{}), "the vehicle found");
  }

  /// Criteria for a record that is there.
  Filtro FiltroDaEntrada(CEntrada *pEntrada) const {
    Filtro filtro{};
    const RegVeiculo reg = m_modelo.empty() ? RegVeiculo{} : m_modelo[pEntrada->Byte() % m_modelo.size()];
    for (std::size_t criterios = pEntrada->Ate(3); criterios > 0; --criterios) {
      DefineCriterio(pEntrada, reg, &filtro);
    }
    return filtro;
  }

  void Busca(CBaseVeiculos *pBase, const Filtro &filtro) const {
    std::vector<LONG> esperadas;
    for (std::size_t i = 0; i < m_modelo.size(); ++i) {
      if (PassaPorTodos(m_modelo[i], filtro)) {
        esperadas.push_back(static_cast<LONG>(i + 1));
      }
    }
    tagRESULTADO_BUSCA_VEICULOS resultado;
    ExigeCodigo(pBase->BuscaPonteiros(filtro, &resultado), codigos::kOk, "a search");
    const std::vector<LONG> achadas(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
    Exige((resultado.Ponteiros == nullptr) == achadas.empty() && resultado.pFiller == nullptr, "a search's result");
    plataforma::LiberaTarefa(resultado.Ponteiros);
    Exige(achadas == esperadas, "the vehicles that a search finds");
  }

  /// Vehicles in number, with years that rise.
  static std::vector<RegVeiculo> Muitos(CEntrada *pEntrada) {
    std::vector<RegVeiculo> registros(kMuitos, Copia<RegVeiculo>(VeiculoDaEntrada(pEntrada)));
    for (std::size_t i = 0; i < kMuitos; ++i) {
      registros[i].iAno += static_cast<std::uint32_t>(i);
    }
    return registros;
  }

  /// Closes both, looks at the disk, adds records to the file and opens it again.
  void Recarrega(const std::vector<RegVeiculo> &mais) {
    for (CBaseVeiculos &base : m_bases) {
      ExigeCodigo(base.Finaliza(), codigos::kOk, "closing");
    }
    Exige(!m_empresa.Existe("DFVEIC.INT") || m_modelo.empty() || m_bCompanheirosFalharam,
          "no note but that of a creation stays");
    Exige(!m_empresa.Existe("DFVEIC.TRA") || m_bCompanheirosFalharam, "no unfinished copy stays");
    Exige(m_empresa.Dados(kVeiculos) == BytesDe(m_modelo.data(), m_modelo.size()), "the records on disk");
    if (!mais.empty()) {
      m_modelo.insert(m_modelo.end(), mais.begin(), mais.end());
      const std::string sRegistros(BytesDe(m_modelo.data(), m_modelo.size()));
      m_empresa.Escreve(kVeiculos, (m_empresa.m_bCabecalhos ? Cabecalho(kVeiculos, sRegistros) : "") + sRegistros);
    }
    AbreTodos();
  }

  CEmpresa m_empresa;
  apoio::ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  apoio::ServicosTrocados m_servicos{&m_falhas};
  std::array<CBaseVeiculos, 2> m_bases;
  std::vector<RegVeiculo> m_modelo;
  bool m_bCompanheirosFalharam = false;  ///< what is beside the data file may not have been deleted
};

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  const bool bCabecalhos = pEntrada->Ate(1) != 0;
  Execucao(bCabecalhos).Roda(pEntrada);
}
