// What the register costs, on 1,000,000 records of 256 bytes, beside the bare operation or SQLite in the same run.

#include <benchmark/benchmark.h>

#include <memory>
#include <mutex>
#include <vector>

#include "bench/Amostra.h"
#include "bench/ComparacaoSqlite.h"
#include "bench/EmpresaBench.h"
#include "core/platform/MemoriaTarefa.h"
#include "core/platform/Plataforma.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

constexpr char kEmpresa[] = "BENCH";

/// A register over a temporary directory, filled with the sample.
class Base {
public:
  Base() {
    CQZProfilerEmpresa dono(kEmpresa, 1, 1);
    CQZDataBase_Veiculos banco;
    Exige(banco.Inicializa(dono), "Inicializa");
    CArray<RegVeiculo> aRegistros;
    aRegistros.SetSize(kRegistrosAmostra);
    for (std::uint32_t n = 1; n <= kRegistrosAmostra; ++n) {
      aRegistros[n - 1] = VeiculoDaAmostra(n);
    }
    std::uint64_t uiPosicao = 0;
    Exige(banco.m_Veiculos.GravaColecao(uiPosicao, aRegistros), "GravaColecao");
    Exige(banco.Finaliza(), "Finaliza");
    Exige(CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, REG_DF_VEICULO_VERSAO{kVersaoBaseVeiculos, {}}, "DFVEIVS.DAT"),
          "GravaSingleReg");
    Exige(m_registro.Inicializa(kEmpresa, 1, 1), "register");
  }
  ~Base() { static_cast<void>(m_registro.Finaliza()); }
  Base(const Base &) = delete;
  Base &operator=(const Base &) = delete;

  CBaseVeiculos &Registro() { return m_registro; }
  CString CaminhoSolto() const { return m_empresa.Caminho("SOLTO.DAT"); }

private:
  EmpresaBench m_empresa{kEmpresa};
  CBaseVeiculos m_registro;
};

Base &BaseUnica() {
  static Base base;
  return base;
}

void Busca(benchmark::State &estado, const tagREG_FILTRO_VEICULOSPS &filtro) {
  std::uint32_t iAchados = 0;
  BaseUnica();
  for (auto _ : estado) {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    Exige(BaseUnica().Registro().BuscaPonteiros(filtro, &resultado), "BuscaPonteiros");
    iAchados = resultado.iQtd;
    plataforma::LiberaTarefa(resultado.Ponteiros);
  }
  estado.counters["hits"] = iAchados;
  estado.SetItemsProcessed(estado.iterations() * kRegistrosAmostra);
}

void ScanFaixas(benchmark::State &estado) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  filtro.iAnoInicial = 2017;
  filtro.iAnoFinal = 2020;
  filtro.vTaraInicial = 1;
  std::copy_n("SP", 2, filtro.szUF);
  Busca(estado, filtro);
}
BENCHMARK(ScanFaixas)->Unit(benchmark::kMillisecond);

void ScanCuringa(benchmark::State &estado) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  std::copy_n("*SILO*", 6, filtro.szDescricao);
  Busca(estado, filtro);
}
BENCHMARK(ScanCuringa)->Unit(benchmark::kMillisecond);

void ScanTodos(benchmark::State &estado) {
  Busca(estado, {});
}
BENCHMARK(ScanTodos)->Unit(benchmark::kMillisecond);

void Sqlite(benchmark::State &estado, const char *lpSql) {
  static const ComparacaoSqlite banco;
  std::int64_t linhas = 0;
  for (auto _ : estado) {
    linhas = banco.Conta(lpSql);
  }
  estado.counters["hits"] = static_cast<double>(linhas);
  estado.SetItemsProcessed(estado.iterations() * kRegistrosAmostra);
}
BENCHMARK_CAPTURE(Sqlite, Faixas, "select pos from veiculo where ano between 2017 and 2020 and tara >= 1 and uf = 'SP'")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sqlite, Curinga, "select pos from veiculo where descricao like '%SILO%'")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sqlite, Todos, "select pos from veiculo")->Unit(benchmark::kMillisecond);

void LePorPosicao(benchmark::State &estado) {
  BaseUnica();
  std::uint32_t n = 1;
  tagREG_VEICULOPS veiculo;
  for (auto _ : estado) {
    n = n * 1664525U + 1013904223U;
    const auto lPos = static_cast<LONG>(n % kRegistrosAmostra + 1);
    Exige(BaseUnica().Registro().LePonteiros(1, &lPos, &veiculo), "LePonteiros");
    benchmark::DoNotOptimize(veiculo);
  }
}
BENCHMARK(LePorPosicao);

void AcessoSolto(benchmark::State &estado) {
  const std::vector<RegVeiculo> registros(kRegistrosAmostra, VeiculoDaAmostra(1));
  std::recursive_mutex mutex;
  std::uint32_t n = 1;
  RegVeiculo reg;
  for (auto _ : estado) {
    n = n * 1664525U + 1013904223U;
    const std::lock_guard<std::recursive_mutex> trava(mutex);
    reg = registros[n % kRegistrosAmostra];
    benchmark::DoNotOptimize(reg);
  }
}
BENCHMARK(AcessoSolto);

void GravaPorPosicao(benchmark::State &estado) {
  BaseUnica();
  std::uint32_t n = 1;
  tagREG_VEICULOPS veiculo{};
  for (auto _ : estado) {
    n = n * 1664525U + 1013904223U;
    auto lPos = static_cast<LONG>(n % kRegistrosAmostra + 1);
    veiculo.iAno = n;
    Exige(BaseUnica().Registro().Grava(&lPos, veiculo), "Grava");
  }
}
BENCHMARK(GravaPorPosicao);

void GravacaoSolta(benchmark::State &estado) {
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> arquivo;
  const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};
  const std::vector<RegVeiculo> registros(kRegistrosAmostra, VeiculoDaAmostra(1));
  if (Arquivos().Abre(BaseUnica().CaminhoSolto(), modo, &arquivo) ||
      arquivo->Grava(0, registros.data(), registros.size() * sizeof(RegVeiculo))) {
    estado.SkipWithError("open");
    return;
  }
  std::uint32_t n = 1;
  RegVeiculo reg{};
  for (auto _ : estado) {
    n = n * 1664525U + 1013904223U;
    reg.iAno = n;
    if (arquivo->Grava(std::uint64_t{n % kRegistrosAmostra} * sizeof(reg), &reg, sizeof(reg))) {
      estado.SkipWithError("write");
      return;
    }
  }
}
BENCHMARK(GravacaoSolta);

void Carga(benchmark::State &estado) {
  BaseUnica();
  for (auto _ : estado) {
    Exige(BaseUnica().Registro().Finaliza(), "Finaliza");
    Exige(BaseUnica().Registro().Inicializa(kEmpresa, 1, 1), "Inicializa");
  }
  estado.SetBytesProcessed(estado.iterations() * std::int64_t{kRegistrosAmostra} * 256);
}
BENCHMARK(Carga)->Unit(benchmark::kMillisecond);

void AcrescimosEmMemoria(benchmark::State &estado) {
  const RegVeiculo reg = VeiculoDaAmostra(1);
  for (auto _ : estado) {
    CQZBlocosRegistros<RegVeiculo> registros;
    for (std::uint32_t n = 0; n < kRegistrosAmostra; ++n) {
      registros.DefineTamanho(n + 1);
      registros.Copia(n, &reg, 1);
    }
    benchmark::DoNotOptimize(registros);
  }
}
BENCHMARK(AcrescimosEmMemoria)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
