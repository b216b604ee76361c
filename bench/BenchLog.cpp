// What the log costs: a profiled operation with every switch off, and the records when they are written.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>

#include "core/env/QZPath.h"
#include "core/log/EscopoProfiler.h"
#include "core/log/RegistroLog.h"
#include "core/platform/posix/RegistroMemoria.h"

namespace {

/// An installation without "log.ini": every switch is off, error records go to its directory.
class Instalacao {
public:
  Instalacao() : m_pasta(std::filesystem::temp_directory_path() / ("kalvo-bench-log-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(m_pasta);
    plataforma::RegistroMemoria::DoProcesso().DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path",
                                                          m_pasta.string());
  }
  ~Instalacao() { std::filesystem::remove_all(m_pasta); }
  Instalacao(const Instalacao &) = delete;
  Instalacao &operator=(const Instalacao &) = delete;

private:
  std::filesystem::path m_pasta;
};
const Instalacao g_instalacao;

void EscopoDesligado(benchmark::State &estado) {
  const CQZProfilerEmpresa profiler("0001", 7, 42);
  std::uint32_t n = 0;
  for (auto _ : estado) {
    const CQZEscopoProfiler escopo(&profiler, {"CQZDF_Veiculos::Le"}, [&n] {
      return ParametrosEscopo{{"lPos", std::to_string(n)}};
    });
    benchmark::DoNotOptimize(++n);
  }
}
BENCHMARK(EscopoDesligado);

void RegistroDeErro(benchmark::State &estado) {
  const CQZProfilerEmpresa profiler;
  for (auto _ : estado) {
    GravaRegistroErro(&profiler, "CQZFile<struct RegVeiculo>::Le", "QZFile.h", 118, "hr = ((HRESULT)0x810809D9L)");
  }
}
BENCHMARK(RegistroDeErro);

}  // namespace

BENCHMARK_MAIN();
