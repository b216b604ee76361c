#include "core/log/EscopoProfiler.h"

#include <optional>
#include <stdexcept>

#include "tests/log/LogTeste.h"

namespace {

const std::string kInicio = "21/11/2025|09:05:07.042|kalvo.exe|operador|CQZDF_Veiculos::Le|";
const std::string kGuid = "{6F9619FF-8B86-D011-B42D-00C04FC964FF}|";
const std::string kIdentidade = "E0001|U007|S00000042|T00004660|";
const std::string kMaquina = "8589934592|17179869184|";

class EscopoProfiler : public LogTeste {
protected:
  /// What a new log holds after one operation that takes `ms` and makes the process grow by `bytes`.
  std::vector<std::string> Opera(std::int64_t ms, std::int64_t bytes) {
    static_cast<void>(plataforma::Arquivos().Apaga(m_instalacao / kArquivoProfiler));
    {
      const CQZEscopoProfiler escopo(&m_profiler, {"CQZDF_Veiculos::Le"}, [] {
        return ParametrosEscopo{{"lPos", std::to_string(1)}};
      });
      m_relogio.m_ticks += static_cast<std::uint32_t>(ms);
      m_informacoes.m_uiMemoriaProcesso += static_cast<std::uint64_t>(bytes);
    }
    return Profiler();
  }
};

TEST_F(EscopoProfiler, ParByteAByte) {
  Configura("Entrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1");
  const std::vector<std::string> esperadas = {
      kCabecalhoProfilerEsperado,
      kInicio + kGuid + kIdentidade + "ENTROU|" + kMaquina + "3276800|0|0|lPos = 1|",
      kInicio + kGuid + kIdentidade + "SAIU|" + kMaquina + "3280896|15|4096|",
  };
  EXPECT_EQ(Opera(15, 4096), esperadas);
}

TEST_F(EscopoProfiler, OQueCadaChaveLiga) {
  const std::string entrou = kIdentidade + "ENTROU|" + kMaquina;
  const std::string saiu = kIdentidade + "SAIU|" + kMaquina;
  const struct {
    const char *ini;
    std::int64_t ms;
    std::int64_t bytes;
    std::string linha;
  } casos[] = {
      {"Entrada=1\r\nSaida=1", 5, 5, ""},
      {"Performance=1\r\nMemory=1", 5, 5, ""},
      {"Entrada=1\r\nPerformance=1", 5, 5, kInicio + entrou + "0|0|0|lPos = 1|"},
      {"Saida=1\r\nPerformance=1", 5, 5, kInicio + saiu + "0|5|0|"},
      {"Saida=1\r\nPerformance=1", -5, 5, kInicio + saiu + "0|0|0|"},
      {"Saida=1\r\nMemory=1", 5, 5, kInicio + saiu + "1005|0|5|"},
      {"Saida=1\r\nMemory=1", 5, -5, kInicio + saiu + "995|0|0|"},
      {"Entrada=1\r\nSaida=1\r\nMemory=1\r\nProcessos=outro", 5, 5, ""},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.ini);
    Configura(caso.ini);
    m_relogio.m_ticks += 1000;
    m_informacoes.m_uiMemoriaProcesso = 1000;
    const std::vector<std::string> linhas = Opera(caso.ms, caso.bytes);
    EXPECT_EQ(linhas.size(), caso.linha.empty() ? 0U : 2U);
    EXPECT_EQ(linhas.empty() ? "" : linhas.back(), caso.linha);
  }
}

TEST_F(EscopoProfiler, ParametrosNaOrdemSoQuandoEscritos) {
  int pedidos = 0;
  const auto opera = [&] {
    const CQZEscopoProfiler escopo(&m_profiler, {"C", "D", "::F"}, [&] {
      ++pedidos;
      return ParametrosEscopo{{"a", "1"},          {"b", ""},  {"c", "x\r\ny\nz"}, {"d", "4"}, {"e", "5"},
                              {"f", "%s%n\tseis"}, {"g", "7"}, {"h", "8"},         {"i", "9"}, {"j", "10"}};
    });
  };
  opera();
  Configura("Saida=1\r\nPerformance=1");
  opera();
  EXPECT_EQ(pedidos, 0);
  Configura("Entrada=1\r\nPerformance=1");
  opera();
  EXPECT_EQ(pedidos, 1);
  const std::string esperado = "|CD::F|" + kIdentidade + "ENTROU|" + kMaquina +
                               "0|0|0|a = 1|b = |c = xyz|d = 4|e = 5|f = %s%n|seis|g = 7|h = 8|i = 9|";
  EXPECT_TRUE(Profiler().back().ends_with(esperado)) << Profiler().back();
}

TEST_F(EscopoProfiler, ExcecoesNoEscopoENaFormatacao) {
  Configura("Entrada=1\r\nSaida=1\r\nPerformance=1");
  const auto opera = [&] {
    const CQZEscopoProfiler escopo(&m_profiler, {"C::F"}, []() -> ParametrosEscopo { throw std::bad_alloc(); });
    throw std::runtime_error("x");
  };
  EXPECT_THROW(opera(), std::runtime_error) << "not the one of the parameters";
  ASSERT_EQ(Profiler().size(), 2U);
  EXPECT_NE(Profiler()[1].find("SAIU"), std::string::npos);
}

TEST_F(EscopoProfiler, ChavesQueMudamDuranteAOperacao) {
  std::optional<CQZEscopoProfiler> escopo;
  escopo.emplace(&m_profiler, NomeFuncao{"C::F"});
  Configura("Saida=1\r\nPerformance=1");
  escopo.reset();
  EXPECT_TRUE(Profiler().empty()) << "opened while off";
  for (const char *const lpDepois : {"Saida=1", "Saida=1\r\nPerformance=1\r\nProcessos=outro"}) {
    Configura("Saida=1\r\nPerformance=1");
    escopo.emplace(&m_profiler, NomeFuncao{"C::F"});
    Configura(lpDepois);
    escopo.reset();
    EXPECT_TRUE(Profiler().empty()) << "switched off meanwhile: " << lpDepois;
  }
  Configura("Saida=1\r\nPerformance=1");
  escopo.emplace(&m_profiler, NomeFuncao{"C::F"});
  EscreveIni("");
  m_relogio.m_ticks += 700000;
  escopo.reset();
  EXPECT_EQ(Profiler().size(), 2U) << "the end reads nothing anew";
  m_informacoes.m_processo.clear();
  Configura("Saida=1\r\nPerformance=1");
  escopo.emplace(&m_profiler, NomeFuncao{"C::F"});
  escopo.reset();
  EXPECT_EQ(Profiler().size(), 2U) << "no process name";
}

TEST_F(EscopoProfiler, IdentidadeDaEntradaESemProfiler) {
  Configura("Saida=1\r\nPerformance=1");
  std::optional<CQZProfilerEmpresa> profiler(std::in_place, "0002", kUsuarioInterno, 0xFFFFFFFF);
  std::optional<CQZEscopoProfiler> escopo(std::in_place, &*profiler, NomeFuncao{"C::F"});
  profiler.reset();
  escopo.reset();
  EXPECT_NE(Profiler().back().find("|C::F|E0002|U65535|S-0000001|T00004660|SAIU|"), std::string::npos);
  { const CQZEscopoProfiler semProfiler(nullptr, {"C::F"}); }
  EXPECT_NE(Profiler().back().find("|C::F|||||SAIU|"), std::string::npos);
}

}  // namespace
