// Clients of one register side by side, on 1,000,000 records: the work that two searches get done against one, and how
// long single calls take beside searches and writes. Prints a line a figure: name, value, unit.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "bench/BaseAmostra.h"
#include "core/platform/MemoriaTarefa.h"

namespace {

using Relogio = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kDuracao{1000};
constexpr int kVezes = 5;

double Mediana(std::vector<double> valores) {
  std::sort(valores.begin(), valores.end());
  return valores[valores.size() / 2];
}

void Imprime(const char *lpNome, double dValor, const char *lpUnidade) {
  std::printf("%-44s %10.2f %s\n", lpNome, dValor, lpUnidade);
}

void BuscaFaixas(CBaseVeiculos &registro) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  filtro.iAnoInicial = 2017;
  filtro.iAnoFinal = 2020;
  filtro.vTaraInicial = 1;
  std::copy_n("SP", 2, filtro.szUF);
  tagRESULTADO_BUSCA_VEICULOS resultado;
  Exige(registro.BuscaPonteiros(filtro, &resultado), "BuscaPonteiros");
  plataforma::LiberaTarefa(resultado.Ponteiros);
}

/// Threads that repeat a piece of work each until the object goes.
class Companhia {
public:
  Companhia(int iThreads, const std::function<void()> &trabalho) {
    for (int i = 0; i < iThreads; ++i) {
      m_threads.emplace_back([this, trabalho] {
        while (!m_bFim) {
          trabalho();
          ++m_iFeitos;
        }
      });
    }
  }
  ~Companhia() {
    m_bFim = true;
    for (std::thread &thread : m_threads) {
      thread.join();
    }
  }
  Companhia(const Companhia &) = delete;
  Companhia &operator=(const Companhia &) = delete;

  long Feitos() const { return m_iFeitos; }

private:
  std::atomic<bool> m_bFim{false};
  std::atomic<long> m_iFeitos{0};
  std::vector<std::thread> m_threads;
};

/// Searches done in a second.
double Trabalho(CBaseVeiculos &registro, int iThreads) {
  const Companhia companhia(iThreads, [&] { BuscaFaixas(registro); });
  const auto comeco = Relogio::now();
  std::this_thread::sleep_for(kDuracao);
  return static_cast<double>(companhia.Feitos()) / std::chrono::duration<double>(Relogio::now() - comeco).count();
}

void DoisClientes(CBaseVeiculos &registro) {
  std::vector<double> um;
  std::vector<double> dois;
  for (int i = 0; i < kVezes; ++i) {
    um.push_back(Trabalho(registro, 1));
    dois.push_back(Trabalho(registro, 2));
  }
  Imprime("two clients searching, against one", Mediana(dois) / Mediana(um), "times");
}

/// How long calls take that come one after another for a while, in microseconds: what 99 of 100 stay below, and the
/// longest.
void Demoras(const char *lpNome, const std::function<void()> &chamada) {
  std::vector<double> noventaENove;
  std::vector<double> piores;
  for (int i = 0; i < kVezes; ++i) {
    std::vector<double> demoras;
    for (const auto fim = Relogio::now() + kDuracao; Relogio::now() < fim;) {
      const auto comeco = Relogio::now();
      chamada();
      demoras.push_back(std::chrono::duration<double, std::micro>(Relogio::now() - comeco).count());
    }
    std::sort(demoras.begin(), demoras.end());
    noventaENove.push_back(demoras[demoras.size() * 99 / 100]);
    piores.push_back(demoras.back());
  }
  Imprime((std::string(lpNome) + ", 99 %").c_str(), Mediana(noventaENove), "us");
  Imprime((std::string(lpNome) + ", worst").c_str(), Mediana(piores), "us");
}

}  // namespace

int main() {
  Base base("BENCHC", kRegistrosAmostra);
  CBaseVeiculos &registro = base.Registro();
  Sorteio sorteio;
  tagREG_VEICULOPS veiculo{};
  const auto le = [&] {
    const auto lPos = static_cast<LONG>(sorteio.Ate(base.Registros()));
    Exige(registro.LePonteiros(1, &lPos, &veiculo), "LePonteiros");
  };
  const auto grava = [&, n = 0U]() mutable {
    tagREG_VEICULOPS novo{};
    auto lPos = static_cast<LONG>(base.Registros());
    std::snprintf(novo.szCodigo, sizeof(novo.szCodigo), "G%u", ++n);
    Exige(registro.Grava(&lPos, novo), "Grava");
  };
  const auto acrescenta = [&, n = 0U]() mutable {
    tagREG_VEICULOPS novo{};
    LONG lPos = 0;
    std::snprintf(novo.szCodigo, sizeof(novo.szCodigo), "A%u", ++n);
    Exige(registro.Grava(&lPos, novo), "Grava");
  };
  DoisClientes(registro);
  Demoras("read alone", le);
  {
    const Companhia busca(1, [&] { BuscaFaixas(registro); });
    Demoras("read beside a search", le);
  }
  {
    const Companhia escritor(1, acrescenta);
    Demoras("read beside an appender", le);
  }
  Demoras("write alone", grava);
  {
    const Companhia buscas(2, [&] { BuscaFaixas(registro); });
    Demoras("write beside two searches", grava);
  }
  return 0;
}
