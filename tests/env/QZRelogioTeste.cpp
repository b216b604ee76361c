#include "core/env/QZRelogio.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/env/QZException.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

class Relogio : public ::testing::Test {
protected:
  static CString Agora() {
    const plataforma::CamposData c = QZRelogio::GetCurrentTime_LocalTime();
    char texto[64];
    std::snprintf(texto, sizeof(texto), "%d-%02d-%02d(%d) %02d:%02d:%02d.%03d", c.ano, c.mes, c.dia, c.diaSemana,
                  c.hora, c.minuto, c.segundo, c.milissegundo);
    return texto;
  }

  apoio::RegistroFalso m_registro;
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
  EXPECT_EQ(Agora(), kReal) << "no value";
  for (const auto &[lpValor, lpEsperado] : casos) {
    m_registro.m_textos[{"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", "QZ_DATETIME"}] = lpValor;
    EXPECT_EQ(Agora(), lpEsperado) << lpValor;
  }
}

TEST_F(Relogio, UtcOuOErroDoSistema) {
  EXPECT_EQ(QZRelogio::GetCurrentTime_SystemTimeAsFileTime(), 134082003070420000U);
  m_relogio.m_bLocalParaUtc = false;
  try {
    QZRelogio::GetCurrentTime_SystemTime();
    FAIL() << "no exception";
  } catch (CQZException *pEx) {
    EXPECT_EQ(pEx->GetErroSO(), 87U);
    pEx->Delete();
  }
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

}  // namespace
