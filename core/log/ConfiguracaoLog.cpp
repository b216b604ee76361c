#include "core/log/ConfiguracaoLog.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string_view>
#include <utility>

#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"

namespace {

constexpr char kArquivoIni[] = "log.ini";
constexpr char kSecao[] = "Log";
constexpr std::uint32_t kTimeoutPadrao = 600;
constexpr std::uint64_t kMsPorSegundo = 1000;
constexpr std::size_t kMaximoProcessos = 259;
constexpr std::string_view kTodos = "todos";
constexpr std::string_view kSeparadores = ";, ";

enum Chave : unsigned { kEntrada = 1, kSaida = 2, kTrace = 4, kPerformance = 8, kMemory = 16 };

constexpr std::pair<const char *, Chave> kChaves[] = {
    {"Entrada", kEntrada}, {"Saida", kSaida}, {"Trace", kTrace}, {"Performance", kPerformance}, {"Memory", kMemory}};

/// A text of "Processos". A replaced one is kept: a reader may still be at it, and a new one comes only when somebody
/// has edited the file, so the chain stays short. No lock, which a machine fault could leave taken.
struct TextoProcessos {
  CString texto;
  const TextoProcessos *anterior;
};

std::atomic<unsigned> g_chaves{0};
std::atomic<std::uint64_t> g_timeoutMs{kTimeoutPadrao * kMsPorSegundo};
std::atomic<const TextoProcessos *> g_processos{nullptr};  // null before the first load: all
std::atomic<std::uint64_t> g_ultimaCarga{0};

std::string_view Processos() {
  const TextoProcessos *const atual = g_processos.load();
  return atual != nullptr ? std::string_view(atual->texto) : kTodos;
}

void DefineProcessos(const CString &sTexto) {
  if (sTexto == Processos()) {
    return;
  }
  auto novo = std::make_unique<TextoProcessos>(TextoProcessos{sTexto, g_processos.load()});
  while (!g_processos.compare_exchange_weak(novo->anterior, novo.get())) {
  }
  static_cast<void>(novo.release());
}

void LeArquivo() {
  plataforma::IArquivosIni &ini = plataforma::ArquivosIni();
  const CString sInstalacao = CQZPath::DiretorioInstalacao(QZ_DF);
  // A bare file name would make the system look in its own directory instead of the current one.
  const CString sArquivo = sInstalacao.empty() ? plataforma::Informacoes().CaminhoAbsoluto(kArquivoIni)
                                               : CQZPath::Junta(sInstalacao, kArquivoIni);
  unsigned chaves = 0;
  for (const auto &[nome, chave] : kChaves) {
    chaves |= ini.LeInteiro(sArquivo, kSecao, nome, 0) == 1 ? chave : 0U;
  }
  const std::uint64_t timeout = ini.LeInteiro(sArquivo, kSecao, "TimeoutConfig", kTimeoutPadrao);
  DefineProcessos(ini.LeTexto(sArquivo, kSecao, "Processos", CString(kTodos).c_str(), kMaximoProcessos));
  g_timeoutMs = timeout * kMsPorSegundo;
  g_chaves = chaves;
}

/// The load itself, kept out of the check that every profiled operation pays for.
[[gnu::noinline, gnu::cold]] std::uint64_t Carrega(std::uint64_t ultima, std::uint64_t agora) noexcept {
  try {
    LeArquivo();
  } catch (...) {
    return ultima;  // out of memory: the settings in hand stay, and the next call tries again
  }
  g_ultimaCarga = agora;
  return agora;
}

bool Ligada(Chave chave) {
  return (g_chaves.load() & chave) != 0;
}

}  // namespace

std::uint64_t CarregaConfiguracaoLog() noexcept {
  // Taken before the ticks, so that a load by another thread in between does not look like one in the future. The ticks
  // are a 32-bit count; when it starts again the difference is huge, which only makes a load due.
  const std::uint64_t ultima = g_ultimaCarga.load();
  const std::uint64_t agora = plataforma::Relogio().Ticks();
  const bool bEmDia = ultima != 0 && agora - ultima <= g_timeoutMs.load();
  return bEmDia ? ultima : Carrega(ultima, agora);
}

bool RastreamentoHabilitado() noexcept {
  CarregaConfiguracaoLog();
  return RastreamentoLigado();
}

bool RastreamentoLigado() noexcept {
  const unsigned chaves = g_chaves.load();
  return (chaves & (kPerformance | kMemory)) != 0 && (chaves & (kEntrada | kSaida)) != 0;
}

bool ProcessoRastreado(const CString &sProcesso) noexcept {
  std::string_view sResto = Processos();
  if (sResto.find(kTodos) != std::string_view::npos) {
    return true;
  }
  while (!sResto.empty()) {
    const std::size_t fim = std::min(sResto.find_first_of(kSeparadores), sResto.size());
    const std::string_view sTrecho = sResto.substr(0, fim);
    if (!sTrecho.empty() && sProcesso.find(sTrecho) != CString::npos) {
      return true;
    }
    sResto.remove_prefix(std::min(fim + 1, sResto.size()));
  }
  return false;
}

bool LogEntrada() noexcept {
  return Ligada(kEntrada);
}

bool LogSaida() noexcept {
  return Ligada(kSaida);
}

bool LogTrace() noexcept {
  return Ligada(kTrace);
}

bool LogPerformance() noexcept {
  return Ligada(kPerformance);
}

bool LogMemory() noexcept {
  return Ligada(kMemory);
}
