// Several processes that use one company at once: what one of them was told done is done, and nobody is refused.

#include "tests/apoio/Corrida.h"

#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

constexpr char kVazia[] = "fresh company";
constexpr char kSemCabecalhos[] = "files without headers";
constexpr char kListaDisputada[] = "files of their own, fresh list";

/// Records that a process appends in a round; its last step is a write to the single-record file.
constexpr unsigned kAcrescimos = 3;

/// Records that are there before, in a company that is not fresh.
constexpr unsigned kExistentes = 3;

/// The file of a process's step.
CString Arquivo(const std::string &sConfiguracao, unsigned uiProcesso, unsigned uiPasso) {
  return (uiPasso < kAcrescimos ? "TESTE" : "UNICO") +
         (sConfiguracao == kListaDisputada ? std::to_string(uiProcesso * 10 + uiPasso) : "") + ".DAT";
}

RegTeste RegistroDoPasso(unsigned uiRodada, unsigned uiProcesso, unsigned uiPasso) {
  return Registro((uiRodada * 10 + uiProcesso) * 10 + uiPasso, "whole");
}

HRESULT Acrescenta(const CQZProfilerEmpresa &dono, const CString &nome, const RegTeste &reg) {
  CQZDataBase banco(QZ_DF);
  CQZFile<RegTeste> arquivo(nome, &banco);
  HRESULT hr = banco.Inicializa(dono);
  std::uint64_t uiPosicao = 0;
  hr = Falhou(hr) ? hr : arquivo.Grava(uiPosicao, reg);
  return Falhou(hr) ? hr : banco.Finaliza();
}

int Participa(const std::vector<std::string> &argumentos) {
  const CQZProfilerEmpresa dono(argumentos[0], 7, 42);
  const auto uiProcesso = static_cast<unsigned>(std::stoul(argumentos[2]));
  return apoio::Corrida::Corre(argumentos, [&](unsigned uiRodada, unsigned *puiFeitos) {
    HRESULT hr = codigos::kOk;
    for (; !Falhou(hr) && *puiFeitos <= kAcrescimos; *puiFeitos += Falhou(hr) ? 0U : 1U) {
      const RegTeste reg = RegistroDoPasso(uiRodada, uiProcesso, *puiFeitos);
      const CString nome = Arquivo(argumentos[3], uiProcesso, *puiFeitos);
      hr = *puiFeitos < kAcrescimos ? Acrescenta(dono, nome, reg)
                                    : CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, reg, nome);
    }
    return hr;
  });
}
const apoio::RegistraFilha kFilha("corrida-de-gravacoes", Participa);

class CorridaDeGravacoes : public testing::TestWithParam<std::string> {
protected:
  void Confere(apoio::Corrida &corrida, const std::vector<unsigned> &feitos) {
    std::map<CString, std::multiset<std::string>> confirmados;  // by file
    for (unsigned i = 1; GetParam() == kSemCabecalhos && i <= kExistentes; ++i) {
      confirmados["TESTE.DAT"].insert(Bytes(i, i));
    }
    for (unsigned uiProcesso = 0; uiProcesso < feitos.size(); ++uiProcesso) {
      for (unsigned uiPasso = 0; uiPasso < feitos[uiProcesso]; ++uiPasso) {
        confirmados[Arquivo(GetParam(), uiProcesso, uiPasso)].insert(
            Bytes(RegistroDoPasso(corrida.Rodada(), uiProcesso, uiPasso)));
      }
    }
    std::vector<CString> listados;
    for (auto &[nome, registros] : confirmados) {
      const std::string dados = corrida.Dados(nome);
      if (nome.starts_with("UNICO") && registros.contains(dados)) {
        registros = {dados};  // of several writers one is the last
      }
      corrida.ConfereRegistros(nome, sizeof(RegTeste), registros);
      listados.push_back(nome);
      CQZDataBase banco(QZ_DF);
      const CQZFile<RegTeste> arquivo(nome, &banco);
      EXPECT_EQ(banco.Inicializa(m_empresa.Dono()), codigos::kOk);
    }
    corrida.ConferePasta(listados);
  }

  apoio::EmpresaComBase m_empresa;
};

TEST_P(CorridaDeGravacoes, OQueFoiConfirmadoEstaLa) {
  for (const unsigned uiProcessos : {2U, 4U}) {
    apoio::Corrida corrida("corrida-de-gravacoes", m_empresa, uiProcessos, GetParam());
    while (corrida.Proxima()) {
      if (GetParam() == kSemCabecalhos) {
        m_empresa.Escreve("TESTE.DAT", Bytes(1, kExistentes));
        m_empresa.Escreve("UNICO.DAT", Bytes(9, 9));
        m_empresa.Escreve(kArquivoControle, Linhas({"TESTE.DAT", "UNICO.DAT"}));
      }
      Confere(corrida, corrida.Roda());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Configuracoes, CorridaDeGravacoes, testing::Values(kVazia, kSemCabecalhos, kListaDisputada));

}  // namespace
