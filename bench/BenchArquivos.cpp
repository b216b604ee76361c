// What the header of a record file costs: writes and loads with headers on beside the same with headers off, the CRC
// alone, and text files.

#include <benchmark/benchmark.h>

#include <map>
#include <vector>

#include "bench/Amostra.h"
#include "bench/EmpresaBench.h"
#include "core/qzdatabase/arquivo/QZTextFile.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "vehicles/QZDataBaseVeiculos.h"

namespace {

constexpr std::int64_t kLinhas = 100000;
constexpr std::int64_t kAcrescimos = 1000;

/// Takes effect for files that are initialised from now on.
void LigaCabecalhos(bool bLigados) {
  plataforma::RegistroMemoria::DoProcesso().DefineNumero(kChaveSuite, "QZDataBase_HabilitarCabecalho",
                                                         bLigados ? 1 : 0);
}

CString CodigoEmpresa(const char *lpPrefixo, bool bCabecalho, std::int64_t qtd) {
  return CString(lpPrefixo) + (bCabecalho ? "C" : "S") + std::to_string(qtd);
}

/// A company whose vehicle file has so many records, made once; the benchmarks that append make it longer.
class BaseRegistros {
public:
  BaseRegistros(bool bCabecalho, std::int64_t registros) : m_empresa(CodigoEmpresa("R", bCabecalho, registros)) {
    LigaCabecalhos(bCabecalho);
    CArray<RegVeiculo> aRegistros;
    aRegistros.SetSize(static_cast<std::size_t>(registros));
    for (std::uint32_t n = 1; n <= registros; ++n) {
      aRegistros[n - 1] = VeiculoDaAmostra(n);
    }
    CQZDataBase_Veiculos banco;
    Exige(banco.Inicializa(Dono()), "Inicializa");
    std::uint64_t uiPosicao = 0;
    Exige(banco.m_Veiculos.GravaColecao(uiPosicao, aRegistros), "GravaColecao");
    Exige(banco.Finaliza(), "Finaliza");
  }

  /// The one of the parameters (header, records), with the switch set for it.
  static const BaseRegistros &Do(const benchmark::State &estado) {
    static std::map<std::pair<bool, std::int64_t>, BaseRegistros> bases;
    const bool bCabecalho = estado.range(0) != 0;
    const BaseRegistros &base =
        bases.try_emplace({bCabecalho, estado.range(1)}, bCabecalho, estado.range(1)).first->second;
    LigaCabecalhos(bCabecalho);
    return base;
  }

  CQZProfilerEmpresa Dono() const { return {m_empresa.Codigo(), 1, 1}; }

private:
  EmpresaBench m_empresa;
};

/// Opens the base, writes once so that the file is open for writing, and then measures writes at the positions that
/// `posicao()` gives.
template <typename F>
void Grava(benchmark::State &estado, F &&posicao) {
  const BaseRegistros &base = BaseRegistros::Do(estado);
  CQZDataBase_Veiculos banco;
  Exige(banco.Inicializa(base.Dono()), "Inicializa");
  RegVeiculo reg = VeiculoDaAmostra(1);
  const auto grava = [&] {
    // The writes of an earlier run must not make these ones equal to what is stored.
    static std::uint32_t iAno = 3000;
    reg.iAno = ++iAno;
    std::uint64_t uiPosicao = posicao();
    Exige(banco.m_Veiculos.Grava(uiPosicao, reg), "Grava");
  };
  grava();
  for (auto _ : estado) {
    grava();
  }
  Exige(banco.Finaliza(), "Finaliza");
}

void Sobrescreve(benchmark::State &estado) {
  Grava(estado, [n = 1U, qtd = estado.range(1)]() mutable {
    n = n * 1664525U + 1013904223U;
    return static_cast<std::uint64_t>(n % qtd + 1);
  });
}
BENCHMARK(Sobrescreve)->ArgsProduct({{0, 1}, {1000, 100000, 1000000}});

void Acrescenta(benchmark::State &estado) {
  Grava(estado, [] { return std::uint64_t{0}; });
}
BENCHMARK(Acrescenta)->ArgsProduct({{0, 1}, {1000, 100000, 1000000}})->Iterations(kAcrescimos);

void Carga(benchmark::State &estado) {
  const BaseRegistros &base = BaseRegistros::Do(estado);
  for (auto _ : estado) {
    CQZDataBase_Veiculos banco;
    Exige(banco.Inicializa(base.Dono()), "Inicializa");
    Exige(banco.Finaliza(), "Finaliza");
  }
}
BENCHMARK(Carga)->ArgsProduct({{0, 1}, {1000000}})->Unit(benchmark::kMillisecond);

void Crc(benchmark::State &estado, std::uint64_t (*calcula)(const void *, std::size_t, std::uint64_t)) {
  const std::vector<char> peca(std::size_t{256} * 1024, 'x');
  for (auto _ : estado) {
    benchmark::DoNotOptimize(calcula(peca.data(), peca.size(), 0));
  }
  estado.SetBytesProcessed(estado.iterations() * static_cast<std::int64_t>(peca.size()));
}
BENCHMARK_CAPTURE(Crc, Tabela, crc64::CalculaPorTabela);

void CrcPorMultiplicacao(benchmark::State &estado) {
  if (!crc64::TemMultiplicacao()) {
    estado.SkipWithError("not on this processor");
    return;
  }
  Crc(estado, crc64::CalculaPorMultiplicacao);
}
BENCHMARK(CrcPorMultiplicacao);

/// A text file of an otherwise empty company.
struct Textos {
  explicit Textos(const CQZProfilerEmpresa &dono) { Exige(banco.Inicializa(dono), "Inicializa"); }

  CQZDataBase banco{QZ_DF};
  CQZTextFile arquivo{"TEXTOS.DAT", &banco};
};

void AcrescentaLinhas(const CQZProfilerEmpresa &dono) {
  Textos textos(dono);
  const CString sLinha(40, 'x');
  for (std::int64_t n = 0; n < kLinhas; ++n) {
    std::uint64_t uiPosicao = 0;
    Exige(textos.arquivo.Grava(uiPosicao, sLinha), "Grava");
  }
}

void LinhasAcrescentadas(benchmark::State &estado) {
  LigaCabecalhos(estado.range(0) != 0);
  for (auto _ : estado) {
    const EmpresaBench empresa(CodigoEmpresa("L", estado.range(0) != 0, kLinhas));
    AcrescentaLinhas({empresa.Codigo(), 1, 1});
  }
}
BENCHMARK(LinhasAcrescentadas)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

void CargaDeTexto(benchmark::State &estado) {
  LigaCabecalhos(estado.range(0) != 0);
  const EmpresaBench empresa(CodigoEmpresa("T", estado.range(0) != 0, kLinhas));
  const CQZProfilerEmpresa dono(empresa.Codigo(), 1, 1);
  AcrescentaLinhas(dono);
  for (auto _ : estado) {
    const Textos textos(dono);
    benchmark::DoNotOptimize(textos);
  }
}
BENCHMARK(CargaDeTexto)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
