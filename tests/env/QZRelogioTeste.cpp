#include "core/env/QZRelogio.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "core/env/CalendarioCivil.h"
#include "core/env/QZException.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

using plataforma::CamposData;

class Relogio : public ::testing::Test {
protected:
  static CString Agora() {
    const CamposData c = QZRelogio::GetCurrentTime_LocalTime();
    char texto[64];
    std::snprintf(texto, sizeof(texto), "%d-%02d-%02d(%d) %02d:%02d:%02d.%03d", c.ano, c.mes, c.dia, c.diaSemana,
                  c.hora, c.minuto, c.segundo, c.milissegundo);
    return texto;
  }
  static CString Excecao(const std::function<void()> &acao) {
    try {
      acao();
    } catch (CQZException *pEx) {
      const CString texto =
          pEx->GetMensagem() + "|" + std::to_string(pEx->GetSistema()) + "|" + std::to_string(pEx->GetErroSO());
      pEx->Delete();
      return texto;
    }
    return "none";
  }

  apoio::RegistroFalso m_registro;
  CString &m_valor =
      m_registro.m_textos[{"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", "QZ_DATETIME"}];
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, &m_registro, &m_relogio};
};

TEST_F(Relogio, DeslocamentoQueAndaComAHoraReal) {
  const char *const kReal = "2025-11-21(5) 09:05:07.042";
  const std::pair<const char *, const char *> casos[] = {
      {"", kReal},
      {"0;01/01/2020;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;01/01/2020;00:00:00:000;21/11/2025;09:05:07", kReal},
      {"1;01/13/2020;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;29/02/2023;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      // Numbers that would name a date if only their low bits counted: 8, 16 or 32 of them.
      {"1;257/01/2020;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;01/257/2020;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;01/01/67556;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;4294967297/01/2020;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      // One past the last hour and millisecond, one year outside the calendar on either side.
      {"1;01/01/2020;24:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;01/01/2020;00:00:00:1000;21/11/2025;09:05:07:042", kReal},
      {"1;31/12/1600;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;01/01/30828;00:00:00:000;21/11/2025;09:05:07:042", kReal},
      {"1;05/01/2020;00:00:00:000;21/11/2025;09:05:07:042", "2020-01-05(0) 00:00:00.000"},
      {"7;01/01/2020;00:00:00:000;21/11/2025;09:05:06:000", "2020-01-01(3) 00:00:01.042"},
      {"1;29/2/2024;23:59:59:999;21/11/2025;9:5:7:41", "2024-03-01(5) 00:00:00.000"},
  };
  for (const auto &[valor, esperado] : casos) {
    m_valor = valor;
    EXPECT_EQ(Agora(), esperado) << valor;
  }
  m_registro.m_textos.clear();
  EXPECT_EQ(Agora(), kReal) << "no value";
}

TEST_F(Relogio, Utc) {
  const CamposData utc = QZRelogio::GetCurrentTime_SystemTime();
  EXPECT_EQ(utc.hora, 12);
  EXPECT_EQ(QZRelogio::GetCurrentTime_SystemTimeAsFileTime(),
            QZRelogio::Helper_SystemTimeToFileTime({2025, 11, 5, 21, 12, 5, 7, 42}));
}

TEST_F(Relogio, FalhasLancam) {
  m_relogio.m_bLocalParaUtc = false;
  EXPECT_EQ(Excecao([] { QZRelogio::GetCurrentTime_SystemTime(); }),
            "GetCurrentTime_SystemTimeAsFileTime: LocalFileTimeToFileTime|1|87");
  EXPECT_EQ(Excecao([] {
              QZRelogio::Helper_SystemTimeToFileTime({2023, 2, 0, 29, 0, 0, 0, 0});
            }),
            "Helper_SystemTimeToFileTime: SystemTimeToFileTime|1|87");
  m_valor = "1;01/01/1601;00:00:00:000;21/11/2030;00:00:00:000";
  EXPECT_EQ(Excecao([] { QZRelogio::GetCurrentTime_LocalTime(); }),
            "GetCurrentTime_LocalTime: FileTimeToSystemTime|1|87")
      << "before 1601";
}

TEST_F(Relogio, Textos) {
  m_relogio.m_horaLocal.ano = 2009;
  EXPECT_EQ(QZRelogio::TextoData(true), "21/11/2009");
  EXPECT_EQ(QZRelogio::TextoDataHora(false), "21/11/09 " + QZRelogio::TextoHora(9 * 3600 + 5 * 60 + 7));
  EXPECT_EQ(QZRelogio::SegundosDesdeMeiaNoite(), 9U * 3600 + 5 * 60 + 7);
  int h = 0;
  int m = 0;
  int s = 0;
  EXPECT_EQ(QZRelogio::TextoHora(3725, &h, &m, &s), "01:02:05");
  EXPECT_EQ(h * 10000 + m * 100 + s, 10205);
  EXPECT_EQ(QZRelogio::TextoHora(13), "00:00:12") << "the truncation of the suite";
}

TEST(CalendarioCivil, IdaEVolta) {
  std::uint64_t ticks = 0;
  ASSERT_TRUE(calendario::ParaTicks({1970, 1, 0, 1, 0, 0, 0, 0}, &ticks));
  EXPECT_EQ(ticks, 116444736000000000U);
  for (std::uint64_t t = 0; t < 0x7FFFFFFFFFFFFFFF - 30000000000000000; t += 29876543210987654) {
    const std::uint64_t inteiro = t / 10000 * 10000;
    CamposData campos;
    ASSERT_TRUE(calendario::ParaCampos(inteiro, &campos));
    ASSERT_TRUE(calendario::ParaTicks(campos, &ticks)) << campos.ano;
    ASSERT_EQ(ticks, inteiro);
  }
  CamposData campos;
  EXPECT_FALSE(calendario::ParaCampos(0x8000000000000000, &campos));
}

}  // namespace
