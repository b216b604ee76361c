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
#include "fuzz/Empresa.h"
#include "qzdados/Exame.h"
#include "tests/qzdados/ApoioQzdados.h"

namespace {

using namespace fuzz;

Rodada Qzdados(const std::vector<std::string> &aTextos) {
  Rodada rodada(aTextos);
  Exige(!rodada.tela.m_bPassouDoFim, "the progress of a reading");
  return rodada;
}

/// The exit code of a look at a path.
int Estado(const std::string &sCaminho) {
  return Qzdados({"verifica", sCaminho}).iCodigo;
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
  explicit Execucao(const Pasta &pasta) : m_antes(pasta), m_depois(pasta), m_empresa(true, pasta) {}

  void Roda() {
    const int iEstado = Qzdados({"verifica", m_empresa.Caminho(""), "--detalhes"}).iCodigo;
    int iPior = FaltaListado() ? 2 : 0;
    bool bReparados = true;
    for (const auto &[sNome, sBytes] : m_antes) {
      const int iDoArquivo = Estado(m_empresa.Caminho(sNome));
      iPior = std::max(iPior, iDoArquivo);
      bReparados = bReparados && iDoArquivo != 2;
      Lista(sNome, iDoArquivo == 0);
      CabecalhoIdaEVolta(sNome);
      Recupera(sNome, iDoArquivo == 1);
    }
    Exige(iEstado >= iPior && iEstado <= 2, "the exit code for a directory");
    for (const auto &[sNome, sBytes] : m_antes) {
      Exige(m_empresa.Le(sNome) == sBytes, "no original changes");
    }
    if (bReparados) {
      AbreSeSa(CEmpresa(true, m_depois));
    }
  }

private:
  /// A journal may stand for the version file.
  bool FaltaListado() const {
    const ArquivoExaminado exame = Examina(kControle, m_empresa.Bytes(kControle).value_or(""), true);
    const std::vector<std::string> nomes = LinhasDoTexto(exame.sDados);
    if (Falhou(exame.hr) || BytesDasLinhas(nomes) != exame.sDados) {
      return false;
    }
    return std::any_of(nomes.begin(), nomes.end(), [this](const std::string &sNome) {
      const std::string sMaiusculo = plataforma::Maiusculas(sNome);
      return !sNome.empty() && sMaiusculo != kVersao && !m_antes.contains(sMaiusculo);
    });
  }

  void Lista(const std::string &sNome, bool bSao) const {
    for (const char *lpFormato : {"--csv", "--json", "--ate=2"}) {
      const Rodada rodada = Qzdados({"lista", m_empresa.Caminho(sNome), lpFormato});
      Exige(rodada.iCodigo == 0 || rodada.iCodigo == 3, "the exit code of a listing");
      Exige(!bSao || sNome != kVeiculos || std::string_view(lpFormato) != "--csv" ||
                rodada.Saida() == CsvDe(Examina(sNome, m_antes.at(sNome), true).sDados),
            "the records listed");
    }
  }

  void Recupera(const std::string &sNome, bool bReparavel) {
    const std::string sNovo = m_empresa.Caminho(sNome + ".novo");
    const int iCodigo = Qzdados({"recupera", m_empresa.Caminho(sNome), "--em", sNovo}).iCodigo;
    const bool bGravou = m_empresa.Existe(sNome + ".novo");
    Exige(bGravou || !bReparavel, "a repairable file is repaired");
    if (bGravou) {
      Exige(iCodigo == 0, "a repair says that it wrote");
      Exige(Qzdados({"verifica", sNovo, "--como", sNome}).iCodigo == 0, "a repaired copy is sound");
      const std::string sInteiros = m_empresa.Le(sNome + ".novo");
      const std::string sDados = Examina(IdentificaNome(sNome).sNome, sInteiros, true).sDados;
      Exige(m_antes.at(sNome).find(sDados) != std::string::npos, "a repaired copy has the bytes of the original alone");
      Exige(Qzdados({"recupera", m_empresa.Caminho(sNome), "--em", sNovo}).iCodigo == 3 &&
                m_empresa.Le(sNome + ".novo") == sInteiros,
            "nothing is written over a file");
      if (!IdentificaNome(sNome).bSobra) {
        m_depois[sNome] = sInteiros;
      }
    }
  }

  void CabecalhoIdaEVolta(const std::string &sNome) const {
    const std::string sCom = m_empresa.Caminho(sNome + ".com");
    const std::string sSem = m_empresa.Caminho(sNome + ".sem");
    const std::string &sBytes = m_antes.at(sNome);
    Qzdados({"cabecalho", "poe", m_empresa.Caminho(sNome), "--em", sCom});
    if (m_empresa.Existe(sNome + ".com")) {
      Exige(m_empresa.Le(sNome + ".com") == Cabecalho(IdentificaNome(sNome).sNome, sBytes) + sBytes,
            "a header for the data and nothing else");
      Exige(Qzdados({"cabecalho", "tira", sCom, "--em", sSem, "--como", sNome}).iCodigo == 0, "what was put is taken");
      Exige(m_empresa.Le(sNome + ".sem") == sBytes, "the data without a header");
    }
  }

  /// Of the present version alone: the conversion of an older base may drop its only file.
  static void AbreSeSa(const CEmpresa &empresa) {
    const int iEstado = Estado(empresa.Caminho(""));
    Exige(iEstado == 0 || iEstado == 2, "nothing is left to repair");
    const std::string sVersao = Examina(kVersao, empresa.Bytes(kVersao).value_or(""), true).sDados;
    if (iEstado == 0 && sVersao.substr(0, 2) == VersaoUm().substr(0, 2)) {
      CBaseVeiculos base;
      ExigeCodigo(empresa.Abre(&base), codigos::kOk, "a sound directory opens");
    }
  }

  const Pasta &m_antes;
  Pasta m_depois;  ///< with what was repaired in place of what was damaged
  CEmpresa m_empresa;
};

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  static constexpr std::array kSobras = {"", "DFVEIC.TRA", "DFVEIVSD.TRA", "DFVEIC.INT", "NOTAS.OFL", "OUTRO.DAT"};
  const unsigned uiEscolha = pEntrada->Byte();
  const std::string sSobra = kSobras[pEntrada->Ate(kSobras.size() - 1)];
  const std::string sBytesSobra = sSobra.empty() ? "" : pEntrada->Bytes(pEntrada->Byte());
  Pasta pasta = PastaDaEntrada(uiEscolha, pEntrada);
  if (!sSobra.empty()) {
    pasta[sSobra] = sBytesSobra;
  }
  Execucao(pasta).Roda();
}
