#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "core/conx/DadosInstalacao.h"

namespace {

constexpr HRESULT kRecusa = CodigoResultado(0x810809DA);

/// Writes down under which identity it is opened and closed.
class Rotina final : public CQZInicializador {
public:
  ~Rotina() override { FinalizaNoDestrutor(); }

  std::vector<std::string> m_diario;
  HRESULT m_hrAbre = 0;
  bool m_bFechaLanca = false;

private:
  HRESULT OnInicializa() override {
    Anota("abre ");
    return m_hrAbre;
  }
  HRESULT OnFinaliza() override {
    Anota("fecha ");
    return m_bFechaLanca ? throw std::runtime_error("x") : 0;
  }
  void Anota(const std::string &sQue) {
    m_diario.push_back(sQue + GetEmpresa() + " " + std::to_string(GetUsuario()) + " " +
                       std::to_string(GetNumeroSessao()));
  }
};

TEST(QZInicializador, FechaComAIdentidadeComQueAbriu) {
  Rotina rotina;
  EXPECT_EQ(rotina.Inicializa("A", 1, 2), 0);
  EXPECT_EQ(rotina.Inicializa(CQZProfilerEmpresa("B", 3, 0xFFFFFFFF)), 0);
  rotina.m_hrAbre = kRecusa;
  EXPECT_EQ(rotina.Inicializa("C", 4, 5), kRecusa);
  EXPECT_FALSE(rotina.EstaInicializado());
  EXPECT_EQ(rotina.Finaliza(), 0);
  EXPECT_EQ(rotina.m_diario,
            (std::vector<std::string>{"abre A 1 2", "fecha A 1 2", "abre B 3 -1", "fecha B 3 -1", "abre C 4 5"}));
  // An exception at the end must not leave the destructor.
  rotina.m_hrAbre = 0;
  rotina.m_bFechaLanca = true;
  EXPECT_EQ(rotina.Inicializa("D", 1, 2), 0);
}

TEST(QZInicializador, DadosDaInstalacaoQueNaoSeLeem) {
  const LeitorDadosInstalacao anterior =
      DefineLeitorDadosInstalacao([](const CQZBaseParaRotinas &, CQZDadosInstalacao *) { return kRecusa; });
  CQZDadosInstalacao dados{7};
  EXPECT_EQ(LeDadosInstalacao(CQZBaseParaRotinas(), &dados), kRecusa);
  EXPECT_EQ(dados.uiCodigo, 0U);
  DefineLeitorDadosInstalacao(anterior);
}

TEST(QZUltimoErro, UltimoErroDeUmaRotina) {
  CQZBaseParaRotinas rotina;
  rotina.SetErro(kRecusa, 3, -4, "%s %d%%", CString(5000, 'x').c_str(), 7);
  EXPECT_EQ(rotina.GetErro().sMensagem, CString(5000, 'x') + " 7%");
  EXPECT_EQ(rotina.GetErro().lComplemento, -4);
  EXPECT_EQ(rotina.GetNumeroServidorUltimoHR(), 3);
  rotina.SetErro(kRecusa, 2, 5);
  EXPECT_EQ(rotina.GetErro().sMensagem, "") << "that of the error before";
  // A routine's lifecycle leaves its last error alone: it is read after the routine has ended.
  EXPECT_EQ(rotina.Inicializa("EMP1", 1, 2), 0);
  EXPECT_EQ(rotina.Finaliza(), 0);
  EXPECT_EQ(rotina.GetUltimoHR(), kRecusa);
}

}  // namespace
