// The offline tool on a company's directory in which one of the data files holds any bytes, and others may be
// leftovers.
//
// Property: every command comes to one of its exit codes and no original changes; what "recupera" and "cabecalho" write
// is sound, keeps the whole records and is undone by the opposite command; a sound file is listed as its records; a
// directory is no better than any of its files, or than a list that names a missing one; and one that is found sound,
// or is after every repairable file was replaced by its repaired copy, opens as a register of vehicles.

#include <algorithm>
#include <cstring>
#include <vector>

#include "client/Saida.h"
#include "core/platform/Textos.h"
#include "fuzz/Exige.h"
#include "fuzz/PastaDaEntrada.h"
#include "fuzz/Referencia.h"
#include "qzdados/Comandos.h"
#include "qzdados/Exame.h"
#include "tests/apoio/ChaveCabecalho.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/RelogioFalso.h"
#include "vehicles/BaseVeiculos.h"

namespace {

using namespace fuzz;

class TelaMuda final : public ITela {
public:
  void Escreve(std::string_view sTexto) override { m_sTexto += sTexto; }
  void SaidaEmBytes() override {}
  void EscreveErro(std::string_view /*sTexto*/) override {}
  bool SaidaVisivel() const override { return false; }
  void Progresso(std::uint64_t uiFeito, std::uint64_t uiTotal) override {
    Exige(uiFeito <= uiTotal, "the progress of a reading");
  }

  std::string m_sTexto;
};

int Roda(const std::vector<std::string> &aTextos, std::string *psSaida = nullptr) {
  TelaMuda tela;
  const int iCodigo = ExecutaQzdados(aTextos, tela);
  if (psSaida != nullptr) {
    *psSaida = tela.m_sTexto;
  }
  return iCodigo;
}

/// The CSV listing of vehicles.
std::string CsvDe(const std::string &sRegistros) {
  std::string sCsv = TituloCsv() + "\n";
  for (std::size_t i = 0; i < sRegistros.size() / sizeof(RegVeiculo); ++i) {
    RegVeiculo reg;
    std::memcpy(&reg, sRegistros.data() + i * sizeof(reg), sizeof(reg));
    tagREG_VEICULOPS veiculo;
    CopiaParaInterface(reg, &veiculo);
    sCsv += LinhaCsv(static_cast<std::int64_t>(i + 1), veiculo) + "\n";
  }
  return sCsv;
}

class Execucao {
public:
  explicit Execucao(const Pasta &pasta) : m_antes(pasta) {
    for (const auto &[sNome, sBytes] : pasta) {
      m_empresa.Escreve(sNome, sBytes);
    }
  }

  void Roda() {
    const int iEstado = ::Roda({"verifica", m_empresa.Caminho(""), "--detalhes"});
    Exige(iEstado >= PiorArquivo() && iEstado <= 2, "the exit code for a directory");
    bool bReparados = true;
    for (const auto &[sNome, sBytes] : m_antes) {
      Lista(sNome);
      CabecalhoIdaEVolta(sNome);
      bReparados = Recupera(sNome) && bReparados;
    }
    for (const auto &[sNome, sBytes] : m_antes) {
      Exige(m_empresa.Le(sNome) == sBytes, "no original changes");
    }
    if (bReparados) {
      TrocaReparados();
      AbreSeSa();
    }
  }

private:
  /// The worst of the files alone, or that of a list which does not agree with the directory.
  int PiorArquivo() const {
    int iPior = FaltaListado() ? 2 : 0;
    for (const auto &[sNome, sBytes] : m_antes) {
      iPior = std::max(iPior, ::Roda({"verifica", m_empresa.Caminho(sNome)}));
    }
    return iPior;
  }
  /// A journal may stand for the version file.
  bool FaltaListado() const {
    const auto lista = m_antes.find(kControle);
    const ArquivoExaminado exame =
        lista != m_antes.end() ? Examina(kControle, lista->second, true) : ArquivoExaminado();
    const std::vector<std::string> nomes = LinhasDoTexto(exame.sDados);
    if (Falhou(exame.hr) || BytesDasLinhas(nomes) != exame.sDados) {
      return false;
    }
    return std::any_of(nomes.begin(), nomes.end(), [this](const std::string &sNome) {
      const std::string sMaiusculo = plataforma::Maiusculas(sNome);
      return !sNome.empty() && sMaiusculo != kVersao && !m_antes.contains(sMaiusculo);
    });
  }

  void Lista(const std::string &sNome) const {
    for (const char *lpFormato : {"--csv", "--json", "--ate=2"}) {
      std::string sSaida;
      const int iCodigo = ::Roda({"lista", m_empresa.Caminho(sNome), lpFormato}, &sSaida);
      Exige(iCodigo == 0 || iCodigo == 3, "the exit code of a listing");
      const bool bCsv = std::string_view(lpFormato) == "--csv";
      if (bCsv && sNome == kVeiculos && ::Roda({"verifica", m_empresa.Caminho(sNome)}) == 0) {
        Exige(iCodigo == 0 && sSaida == CsvDe(Examina(sNome, m_antes.at(sNome), true).sDados), "the records listed");
      }
    }
  }

  /// False for a file that is damaged beyond repair.
  bool Recupera(const std::string &sNome) {
    const std::string sNovo = m_empresa.Caminho(sNome + ".novo");
    const int iEstado = ::Roda({"verifica", m_empresa.Caminho(sNome)});
    const int iCodigo = ::Roda({"recupera", m_empresa.Caminho(sNome), "--em", sNovo});
    const bool bGravou = m_empresa.Existe(sNome + ".novo");
    if (bGravou) {
      Exige(iCodigo == 0, "a repair says that it wrote");
      Exige(::Roda({"verifica", sNovo, "--como", sNome}) == 0, "a repaired copy is sound");
      const std::string sInteiros = m_empresa.Le(sNome + ".novo");
      const std::string sDados = Examina(IdentificaNome(sNome).sNome, sInteiros, true).sDados;
      Exige(m_antes.at(sNome).find(sDados) != std::string::npos, "a repaired copy has the bytes of the original alone");
      Exige(::Roda({"recupera", m_empresa.Caminho(sNome), "--em", sNovo}) == 3 &&
                m_empresa.Le(sNome + ".novo") == sInteiros,
            "nothing is written over a file");
      m_reparados.push_back(sNome);
    }
    Exige(iEstado != 1 || bGravou, "a repairable file is repaired");
    return iEstado != 2;
  }

  void CabecalhoIdaEVolta(const std::string &sNome) const {
    const std::string sCom = m_empresa.Caminho(sNome + ".com");
    const std::string sSem = m_empresa.Caminho(sNome + ".sem");
    ::Roda({"cabecalho", "poe", m_empresa.Caminho(sNome), "--em", sCom});
    if (m_empresa.Existe(sNome + ".com")) {
      Exige(
          m_empresa.Le(sNome + ".com") == Cabecalho(IdentificaNome(sNome).sNome, m_antes.at(sNome)) + m_antes.at(sNome),
          "a header for the data and nothing else");
      Exige(::Roda({"cabecalho", "tira", sCom, "--em", sSem, "--como", sNome}) == 0, "what was put is taken");
      Exige(m_empresa.Le(sNome + ".sem") == m_antes.at(sNome), "the data without a header");
    }
  }

  /// And takes away what else was written: by its own name it may be anything.
  void TrocaReparados() const {
    for (const std::string &sNome : m_reparados) {
      if (!IdentificaNome(sNome).bSobra) {
        m_empresa.Escreve(sNome, m_empresa.Le(sNome + ".novo"));
      }
    }
    for (const auto &[sNome, sBytes] : m_antes) {
      for (const char *lpFim : {".novo", ".com", ".sem"}) {
        static_cast<void>(plataforma::Arquivos().Apaga(m_empresa.Caminho(sNome + lpFim)));
      }
    }
  }

  /// Of the present version alone: the conversion of an older base may drop its only file.
  void AbreSeSa() const {
    const int iEstado = ::Roda({"verifica", m_empresa.Caminho("")});
    Exige(iEstado == 0 || iEstado == 2, "nothing is left to repair");
    if (iEstado != 0 || !m_empresa.Existe(kVersao) ||
        Examina(kVersao, m_empresa.Le(kVersao), true).sDados.substr(0, 2) != VersaoUm().substr(0, 2)) {
      return;
    }
    const apoio::ChaveCabecalho cabecalho(true);
    CBaseVeiculos base;
    ExigeCodigo(base.Inicializa(m_empresa.Codigo(), 7, 42), codigos::kOk, "a sound directory opens");
  }

  const Pasta &m_antes;
  apoio::EmpresaTeste m_empresa;
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
  std::vector<std::string> m_reparados;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  static constexpr std::array kSobras = {"", "DFVEIC.TRA", "DFVEIVSD.TRA", "DFVEIC.INT", "NOTAS.OFL", "OUTRO.DAT"};
  CEntrada entrada(pBytes, qtd);
  const unsigned uiEscolha = entrada.Byte();
  const std::string sSobra = kSobras[entrada.Ate(kSobras.size() - 1)];
  const std::string sBytesSobra = sSobra.empty() ? "" : entrada.Bytes(entrada.Byte());
  Pasta pasta = PastaDaEntrada(uiEscolha, &entrada);
  if (!sSobra.empty()) {
    pasta[sSobra] = sBytesSobra;
  }
  Execucao(pasta).Roda();
  return 0;
}
