// What the register costs, on 1,000 and on 1,000,000 records of 256 bytes, beside the bare operation or SQLite in the
// same run.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include "bench/Amostra.h"
#include "bench/BaseAmostra.h"
#include "bench/ComparacaoSqlite.h"
#include "core/platform/MemoriaTarefa.h"
#include "core/platform/Plataforma.h"

namespace {

constexpr std::uint32_t kPoucos = 1000;

/// The sample with accents in the descriptions of 30 %.
RegVeiculo VeiculoAcentuado(std::uint32_t n) {
  RegVeiculo reg = VeiculoDaAmostra(n);
  if (n % 10 < 3) {
    reg.szDescricao[6] = '\xC3';
  }
  return reg;
}

Base &BaseUnica() {
  static Base base("BENCH", kRegistrosAmostra);
  return base;
}

Base &BasePequena() {
  static Base base("BENCHP", kPoucos);
  return base;
}

Base &BaseAcentuada() {
  static Base base("BENCHA", kRegistrosAmostra, VeiculoAcentuado);
  return base;
}

/// The one with as many records as the benchmark's parameter says.
Base &BaseDe(const benchmark::State &estado) {
  return estado.range(0) == kPoucos ? BasePequena() : BaseUnica();
}

void Busca(benchmark::State &estado, Base &base, const tagREG_FILTRO_VEICULOSPS &filtro) {
  std::uint32_t iAchados = 0;
  for (auto _ : estado) {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    Exige(base.Registro().BuscaPonteiros(filtro, &resultado), "BuscaPonteiros");
    iAchados = resultado.iQtd;
    plataforma::LiberaTarefa(resultado.Ponteiros);
  }
  estado.counters["hits"] = iAchados;
  estado.SetItemsProcessed(estado.iterations() * base.Registros());
}

tagREG_FILTRO_VEICULOSPS FiltroDescricao(const char *lpPadrao) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  std::copy_n(lpPadrao, std::strlen(lpPadrao), filtro.szDescricao);
  return filtro;
}

void ScanFaixas(benchmark::State &estado) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  filtro.iAnoInicial = 2017;
  filtro.iAnoFinal = 2020;
  filtro.vTaraInicial = 1;
  std::copy_n("SP", 2, filtro.szUF);
  Busca(estado, BaseDe(estado), filtro);
}
BENCHMARK(ScanFaixas)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Unit(benchmark::kMicrosecond);

void ScanCuringa(benchmark::State &estado) {
  Busca(estado, BaseDe(estado), FiltroDescricao("*SILO*"));
}
BENCHMARK(ScanCuringa)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Unit(benchmark::kMicrosecond);

void ScanInterrogacao(benchmark::State &estado) {
  Busca(estado, BaseDe(estado), FiltroDescricao("*NUMERO ?7*"));
}
BENCHMARK(ScanInterrogacao)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Unit(benchmark::kMicrosecond);

void ScanAcentos(benchmark::State &estado) {
  Busca(estado, BaseAcentuada(), FiltroDescricao("*SILO*"));
}
BENCHMARK(ScanAcentos)->Unit(benchmark::kMicrosecond);

void ScanTodos(benchmark::State &estado) {
  Busca(estado, BaseDe(estado), {});
}
BENCHMARK(ScanTodos)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Unit(benchmark::kMicrosecond);

void BuscaCodigo(benchmark::State &estado) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  std::copy_n("V0000777", 8, filtro.szCodigo);
  Busca(estado, BaseDe(estado), filtro);
}
BENCHMARK(BuscaCodigo)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Unit(benchmark::kMicrosecond);

/// What only the first question after a load costs is measured by itself.
void PrimeiraPergunta(Base *pBase) {
  std::uint32_t iPos = 0;
  tagREG_VEICULOPS veiculo;
  Exige(pBase->Registro().Existe("N", &iPos, &veiculo), "Existe");
}

/// `texto(n)` of a vehicle drawn from the sample; `bAcha` when it is one that exists.
template <typename F>
void Existe(benchmark::State &estado, bool bAcha, F &&texto) {
  Base &base = BaseDe(estado);
  Sorteio sorteio;
  PrimeiraPergunta(&base);
  for (auto _ : estado) {
    const RegVeiculo reg = texto(sorteio.Ate(base.Registros()));
    std::uint32_t iPos = 0;
    tagREG_VEICULOPS veiculo;
    Exige(base.Registro().Existe(reg.szCodigo, &iPos, &veiculo), "Existe");
    if ((iPos != 0) != bAcha) {
      estado.SkipWithError("answer");
      return;
    }
  }
}

RegVeiculo SoCodigo(const char *lpForma, std::uint32_t n) {
  RegVeiculo reg;
  std::snprintf(reg.szCodigo, sizeof(reg.szCodigo), lpForma, n);
  return reg;
}

void ExisteCodigo(benchmark::State &estado) {
  Existe(estado, true, [](std::uint32_t n) { return SoCodigo("V%07u", n); });
}
BENCHMARK(ExisteCodigo)->Arg(kPoucos)->Arg(kRegistrosAmostra);

void ExistePlaca(benchmark::State &estado) {
  Existe(estado, true, [](std::uint32_t n) { return SoCodigo("ABC%04u", n % 10000); });
}
BENCHMARK(ExistePlaca)->Arg(kPoucos)->Arg(kRegistrosAmostra);

void ExisteNenhum(benchmark::State &estado) {
  Existe(estado, false, [](std::uint32_t n) { return SoCodigo("N%07u", n); });
}
BENCHMARK(ExisteNenhum)->Arg(kPoucos)->Arg(kRegistrosAmostra);

std::size_t MemoriaEmUso() {
  const struct mallinfo2 uso = mallinfo2();
  return uso.uordblks + uso.hblkhd;
}

/// The first question after a load, and what memory is in use beside each record then: digests and both indexes.
void PrimeiroExiste(benchmark::State &estado) {
  Base &base = BaseDe(estado);
  const std::size_t uiBlocos = (base.Registros() + kRegistrosPorBloco - 1) / kRegistrosPorBloco;
  const std::size_t uiRegistros = uiBlocos * kRegistrosPorBloco * sizeof(RegVeiculo);
  std::size_t uiUso = 0;
  for (auto _ : estado) {
    estado.PauseTiming();
    base.Fecha();
    const std::size_t uiAntes = MemoriaEmUso();
    base.Abre();
    estado.ResumeTiming();
    PrimeiraPergunta(&base);
    estado.PauseTiming();
    uiUso = MemoriaEmUso() - uiAntes - uiRegistros;
    estado.ResumeTiming();
  }
  estado.counters["bytes/record"] = static_cast<double>(uiUso) / base.Registros();
}
BENCHMARK(PrimeiroExiste)->Arg(kPoucos)->Arg(kRegistrosAmostra)->Iterations(5)->Unit(benchmark::kMicrosecond);

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
BENCHMARK_CAPTURE(Sqlite, Codigo, "select * from veiculo where codigo = 'V0500000'");

void LePorPosicao(benchmark::State &estado) {
  Base &base = BaseDe(estado);
  Sorteio sorteio;
  tagREG_VEICULOPS veiculo;
  for (auto _ : estado) {
    const auto lPos = static_cast<LONG>(sorteio.Ate(base.Registros()));
    Exige(base.Registro().LePonteiros(1, &lPos, &veiculo), "LePonteiros");
    benchmark::DoNotOptimize(veiculo);
  }
}
BENCHMARK(LePorPosicao)->Arg(kPoucos)->Arg(kRegistrosAmostra);

/// 1,000 positions in one call.
void LeMilPosicoes(benchmark::State &estado) {
  constexpr std::size_t kPosicoes = 1000;
  Base &base = BaseDe(estado);
  Sorteio sorteio;
  std::vector<LONG> posicoes(kPosicoes);
  std::vector<tagREG_VEICULOPS> veiculos(kPosicoes);
  for (auto _ : estado) {
    for (LONG &lPos : posicoes) {
      lPos = static_cast<LONG>(sorteio.Ate(base.Registros()));
    }
    Exige(base.Registro().LePonteiros(kPosicoes, posicoes.data(), veiculos.data()), "LePonteiros");
    benchmark::DoNotOptimize(veiculos);
  }
  estado.SetItemsProcessed(estado.iterations() * static_cast<std::int64_t>(kPosicoes));
}
BENCHMARK(LeMilPosicoes)->Arg(kPoucos)->Arg(kRegistrosAmostra);

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

constexpr benchmark::IterationCount kGravacoes = 20000;
constexpr int kVezes = 5;

/// A file that came about as a register's does, for writes that pass the register: what the system keeps of a file in
/// memory, and what a write into it costs, depends on how the file was filled.
class ArquivoSolto {
public:
  ArquivoSolto(const char *lpEmpresa, std::uint32_t iRegistros) : m_base(lpEmpresa, iRegistros, VeiculoAcentuado) {
    m_base.Fecha();
    const plataforma::ModoAbertura modo{plataforma::Acesso::LeituraEscrita, plataforma::Compartilhamento::Exclusivo,
                                        plataforma::Criacao::SoExistente};
    Confere(plataforma::Arquivos().Abre(m_base.Caminho(kArquivoVeiculos), modo, &m_arquivo));
  }
  void Grava(LONG lPos, const RegVeiculo &reg) {
    Confere(m_arquivo->Grava((static_cast<std::uint64_t>(lPos) - 1) * sizeof(reg), &reg, sizeof(reg)));
  }

private:
  static void Confere(const plataforma::FalhaArquivo &falha) {
    if (falha) {
      std::fprintf(stderr, "bare write: error %u\n", falha.erroSO);
      std::exit(1);
    }
  }

  Base m_base;
  std::unique_ptr<plataforma::IArquivoAberto> m_arquivo;
};

/// Writes that change the code, once somebody has asked for codes, in turns with bare writes to the same places: most
/// of either is the system's, and varies with what else it has to store. Counter "bare": nanoseconds of a bare write.
void GravaPorPosicao(benchmark::State &estado) {
  using Relogio = std::chrono::steady_clock;
  static Base pequena("BENCHG", kPoucos);
  static ArquivoSolto soltoPequeno("BENCHH", kPoucos);
  static ArquivoSolto solto("BENCHS", kRegistrosAmostra);
  const bool bPequena = estado.range(0) == kPoucos;
  Base &base = bPequena ? pequena : BaseAcentuada();
  ArquivoSolto &par = bPequena ? soltoPequeno : solto;
  Sorteio sorteio;
  // The writes of an earlier run must not make these ones equal to what is stored.
  static std::uint32_t iVez = 0;
  tagREG_VEICULOPS veiculo{};
  RegVeiculo reg{};
  Relogio::duration soltas{};
  PrimeiraPergunta(&base);
  ::sync();
  for (auto _ : estado) {
    auto lPos = static_cast<LONG>(sorteio.Ate(base.Registros()));
    std::snprintf(veiculo.szCodigo, sizeof(veiculo.szCodigo), "G%u", ++iVez);
    std::copy(std::begin(veiculo.szCodigo), std::end(veiculo.szCodigo), reg.szCodigo);
    const Relogio::time_point inicio = Relogio::now();
    par.Grava(lPos, reg);
    const Relogio::time_point meio = Relogio::now();
    Exige(base.Registro().Grava(&lPos, veiculo), "Grava");
    estado.SetIterationTime(std::chrono::duration<double>(Relogio::now() - meio).count());
    soltas += meio - inicio;
  }
  estado.counters["bare"] = std::chrono::duration<double, std::nano>(soltas).count() / kGravacoes;
}
BENCHMARK(GravaPorPosicao)
    ->Arg(kPoucos)
    ->Arg(kRegistrosAmostra)
    ->Iterations(kGravacoes)
    ->Repetitions(kVezes)
    ->UseManualTime();

void Carga(benchmark::State &estado) {
  BaseUnica();
  for (auto _ : estado) {
    BaseUnica().Fecha();
    BaseUnica().Abre();
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
