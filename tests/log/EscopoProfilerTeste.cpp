#include "core/log/EscopoProfiler.h"

#include <optional>
#include <stdexcept>

#include "tests/log/LogTeste.h"

namespace {

constexpr char kSaidas[] = "Saida=1\r\nPerformance=1";
const std::string kInicio = "21/11/2025|09:05:07.042|kalvo.exe|operador|CQZDF_Veiculos::Le|";
const std::string kGuid = "{6F9619FF-8B86-D011-B42D-00C04FC964FF}|";
const std::string kIdentidade = "E0001|U007|S00000042|T00004660|";
const std::string kMaquina = "8589934592|17179869184|";

using EscopoProfiler = LogTeste;

TEST_F(EscopoProfiler, OQueCadaChaveLiga) {
  using Linhas = std::vector<std::string>;
  const std::string entrou = kIdentidade + "ENTROU|" + kMaquina;
  const std::string saiu = kIdentidade + "SAIU|" + kMaquina;
  const struct {
    const char *ini;
    int ms;
    int bytes;
    Linhas linhas;  ///< behind the header
  } casos[] = {
      {"Entrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1",
       15,
       4096,
       {kInicio + kGuid + entrou + "3276800|0|0|lPos = 1|", kInicio + kGuid + saiu + "3280896|15|4096|"}},
      {"Entrada=1\r\nSaida=1", 5, 5, {}},
      {"Performance=1\r\nMemory=1", 5, 5, {}},
      {"Entrada=1\r\nPerformance=1", 5, 5, {kInicio + entrou + "0|0|0|lPos = 1|"}},
      {kSaidas, 5, 5, {kInicio + saiu + "0|5|0|"}},
      {kSaidas, -5, 5, {kInicio + saiu + "0|0|0|"}},
      {"Saida=1\r\nMemory=1", 5, 5, {kInicio + saiu + "3276805|0|5|"}},
      {"Saida=1\r\nMemory=1", 5, -5, {kInicio + saiu + "3276795|0|0|"}},
      {"Entrada=1\r\nSaida=1\r\nMemory=1\r\nProcessos=outro", 5, 5, {}},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.ini);
    Configura(caso.ini);
    static_cast<void>(plataforma::Arquivos().Apaga(m_instalacao / kArquivoProfiler));
    m_informacoes.m_uiMemoriaProcesso = 3276800;
    {
      const CQZEscopoProfiler escopo(&m_profiler, {"CQZDF_Veiculos::Le"}, [] {
        return ParametrosEscopo{{"lPos", "1"}};
      });
      m_relogio.m_ticks += static_cast<std::uint32_t>(caso.ms);
      m_informacoes.m_uiMemoriaProcesso += static_cast<std::uint64_t>(caso.bytes);
    }
    Linhas esperadas = caso.linhas;
    if (!esperadas.empty()) {
      esperadas.insert(esperadas.begin(), kCabecalhoProfilerEsperado);
    }
    EXPECT_EQ(Profiler(), esperadas);
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
  Configura(kSaidas);
  opera();
  EXPECT_EQ(pedidos, 0);
  Configura("Entrada=1\r\nPerformance=1");
  opera();
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

TEST_F(EscopoProfiler, OQueMudaDuranteAOperacao) {
  const std::string saidas = kSaidas;
  std::optional<CQZEscopoProfiler> escopo;
  for (const auto &[antes, depois] : {std::pair<std::string, std::string>{"", saidas},
                                      {saidas, "Saida=1"},
                                      {saidas, saidas + "\r\nProcessos=outro"}}) {
    Configura(antes);
    escopo.emplace(&m_profiler, NomeFuncao{"C::F"});
    Configura(depois);
    escopo.reset();
    EXPECT_TRUE(Profiler().empty()) << antes << ", then " << depois;
  }
  // The end reads nothing anew, and tells who began.
  Configura(saidas);
  std::optional<CQZProfilerEmpresa> profiler(std::in_place, "0002", kUsuarioInterno, 0xFFFFFFFF);
  escopo.emplace(&*profiler, NomeFuncao{"C::F"});
  EscreveIni("");
  m_relogio.m_ticks += 700000;
  profiler.reset();
  escopo.reset();
  ASSERT_EQ(Profiler().size(), 2U);
  EXPECT_NE(Profiler().back().find("|C::F|E0002|U65535|S-0000001|T00004660|SAIU|"), std::string::npos);
}

}  // namespace
