// A data file as a process may have left it, or of any bytes, beside a note (".INT") of what it was about, or of any
// bytes, opened as a text file, with headers off or on and with or without an entry in the list of created files.
//
// Property: the file stays as it is, unless header and data do not agree and what the note says makes a whole file of
// it: the write finished, completed from the note, or cut to the length before. Then it is that file, and the note has
// gone. A second opening agrees with the first, and what is written then is found again.

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Empresa.h"

namespace {

using namespace fuzz;

constexpr char kNota[] = "TEXTO.INT";

/// The companion's length, as file-formats.md has it, and that of a header record, which ends with two CRCs: of the
/// data and its own.
constexpr std::size_t kTamanhoCompanheiro = 65536;
constexpr std::size_t kTamanhoRegCabecalho = 68;
constexpr std::size_t kLugarDoCrc = 52;

/// What stands at the beginning of the companion, before the write's bytes.
struct RegNota {
  std::uint64_t uiSelo;
  std::uint32_t uiTipo;  ///< what is about to happen to a file, or 2: to be created
  char registro[kTamanhoRegCabecalho];
  std::uint64_t uiCrcAntes;  ///< of the data
  std::uint64_t uiCrcDepois;
  std::uint64_t uiOnde;
  std::uint64_t cb;
  std::uint64_t cbGuardados;
  std::uint64_t uiTamanhoAntes;
  std::uint64_t uiTamanhoDepois;
};
static_assert(sizeof(RegNota) == 136);

struct Nota {
  RegNota reg{};
  std::string sBytes;

  /// The file's header record over data with this CRC.
  std::string RegCabecalho(std::uint64_t uiCrc) const {
    const std::string sReg = std::string(reg.registro, kLugarDoCrc) + std::string(BytesDe(uiCrc));
    return sReg + std::string(BytesDe(CalculaCrc64(sReg.data(), sReg.size())));
  }
  std::string Antes() const { return RegCabecalho(reg.uiCrcAntes); }
  std::string Depois() const { return RegCabecalho(reg.uiCrcDepois); }
};

std::uint64_t Crc(const std::string &sDados) {
  return CalculaCrc64(sDados.data(), sDados.size());
}

/// Nothing for a note whose bytes do not fit.
std::optional<std::uint64_t> Selo(const std::string &sCompanheiro) {
  const auto cbGuardados = CEntrada(sCompanheiro).Valor<RegNota>().cbGuardados;
  if (cbGuardados > kTamanhoCompanheiro - sizeof(RegNota)) {
    return std::nullopt;
  }
  return std::max(Crc(sCompanheiro.substr(8, sizeof(RegNota) - 8 + cbGuardados)), std::uint64_t{1});
}

/// Nothing where nothing is noted for this file.
std::optional<Nota> LeNota(const std::string &sCompanheiro) {
  CEntrada entrada(sCompanheiro);
  Nota nota;
  nota.reg = entrada.Valor<RegNota>();
  nota.sBytes = entrada.Bytes(nota.reg.cbGuardados);
  const bool bVale = sCompanheiro.size() >= kTamanhoCompanheiro && nota.reg.uiSelo == Selo(sCompanheiro) &&
                     (nota.reg.cbGuardados == 0 || nota.reg.cbGuardados == nota.reg.cb) &&
                     (nota.reg.uiTipo == 1 || nota.reg.uiTipo == 2) && AteOZero({nota.reg.registro + 6, 40}) == kTexto;
  return bVale ? std::optional(nota) : std::nullopt;
}

/// The whole file that a note makes of one, if it does.
std::optional<std::string> Reparado(const std::string &sArquivo, const Nota &nota) {
  const RegNota &reg = nota.reg;
  if (reg.uiTipo != 1 || sArquivo.size() < kTamanhoCabecalho ||
      std::min({reg.uiOnde, reg.uiTamanhoAntes, reg.uiTamanhoDepois}) < kTamanhoCabecalho ||
      reg.cb > std::numeric_limits<std::uint64_t>::max() - reg.uiOnde) {
    return std::nullopt;
  }
  const std::string sAntes = nota.Antes();
  const std::string sDepois = nota.Depois();
  for (std::size_t i = 0; i < kTamanhoRegCabecalho; ++i) {
    const char c = sArquivo[kPosicaoRegCabecalho + i];
    if (c != sAntes[i] && c != sDepois[i]) {
      return std::nullopt;
    }
  }
  const auto inteiro = [](std::string sBytes, std::uint64_t uiTamanho, const std::string &sCabecalho) {
    const bool bChega = uiTamanho <= sBytes.size();
    sBytes.resize(bChega ? uiTamanho : sBytes.size());
    sBytes.replace(kPosicaoRegCabecalho, kTamanhoRegCabecalho, sCabecalho);
    const bool bInteiro = bChega && !Falhou(Examina(kTexto, sBytes, true).hr);
    return bInteiro ? std::optional(sBytes) : std::nullopt;
  };
  std::optional<std::string> sReparado = inteiro(sArquivo, reg.uiTamanhoDepois, sDepois);
  if (!sReparado && reg.uiOnde <= sArquivo.size() && reg.cb == reg.cbGuardados &&
      reg.uiOnde + reg.cb <= reg.uiTamanhoDepois) {
    std::string sCompletado = sArquivo;
    sCompletado.replace(reg.uiOnde, nota.sBytes.size(), nota.sBytes);
    sReparado = inteiro(sCompletado, reg.uiTamanhoDepois, sDepois);
  }
  return sReparado ? sReparado : inteiro(sArquivo, reg.uiTamanhoAntes, sAntes);
}

/// What is found, and what it should come to.
struct Cena {
  bool bCabecalhos = true;
  Pasta antes;

  HRESULT hr = codigos::kOk;
  std::optional<std::string> sDepois;  ///< the file
  bool bReparado = false;
  bool bNasceu = false;  ///< what is noted is the file's creation, which is over once it has content

  void Preve() {
    const std::optional<Nota> nota = LeNota(antes[kNota]);
    bNasceu = nota && nota->reg.uiTipo == 2;
    if (!antes.contains(kTexto)) {
      const bool bPrimeira = nota && nota->reg.uiTamanhoAntes == kTamanhoCabecalho;
      hr = antes.contains(kControle) && !bNasceu && !bPrimeira ? codigos::kArquivoDesapareceu : codigos::kOk;
      return;
    }
    const std::string &sArquivo = antes[kTexto];
    sDepois = sArquivo;
    const ArquivoExaminado exame = Examina(kTexto, sArquivo, bCabecalhos);
    hr = exame.hr;
    if (bCabecalhos && !exame.bTemCabecalho) {
      sDepois = Cabecalho(kTexto, sArquivo) + sArquivo;
    } else if (Falhou(hr) && hr != codigos::kCabecalhoVersaoDesconhecida && nota) {
      const std::optional<std::string> sReparado = Reparado(sArquivo, *nota);
      bReparado = sReparado.has_value();
      hr = bReparado ? codigos::kOk : hr;
      sDepois = bReparado ? sReparado : sDepois;
    }
  }
};

class Execucao {
public:
  explicit Execucao(const Cena &cena) : m_cena(cena), m_empresa(cena.bCabecalhos, cena.antes) {}

  void Roda() {
    AbreEConfere("the code of an opening");
    Exige(!m_cena.bReparado || !m_empresa.Existe(kNota), "a note that has served goes");
    AbreEConfere("the code of a second opening");
    if (!Falhou(m_cena.hr)) {
      Acrescenta();
    }
  }

private:
  void AbreEConfere(const char *lpOque) {
    ExigeCodigo(m_banco.Inicializa(m_empresa.Dono()), m_cena.hr, lpOque);
    static_cast<void>(m_banco.Finaliza());
    Exige(m_empresa.Bytes(kTexto) == m_cena.sDepois, "the file");
    Exige(!Falhou(m_cena.hr) || m_cena.bNasceu || m_empresa.Bytes(kNota) == m_cena.antes.at(kNota),
          "the note of a file that is refused");
  }

  void Acrescenta() {
    std::vector<std::string> linhas = LinhasDoTexto(m_empresa.Dados(kTexto));
    linhas.emplace_back("fim");
    std::uint64_t uiPosicao = 0;
    ExigeCodigo(m_banco.Inicializa(m_empresa.Dono()), codigos::kOk, "opening to write");
    ExigeCodigo(m_banco.m_Texto.Grava(uiPosicao, "fim"), codigos::kOk, "an append");
    ExigeCodigo(m_banco.Finaliza(), codigos::kOk, "closing");
    Exige(LinhasDoTexto(m_empresa.Dados(kTexto)) == linhas, "the lines on disk");
    Exige(!m_cena.bCabecalhos || !m_empresa.Existe(kNota), "no note stays");
  }

  const Cena &m_cena;
  CEmpresa m_empresa;
  CBancoTexto m_banco;
};

/// A file and its note when a process ends in the middle of a write.
void Interrompe(CEntrada *pEntrada, Nota *pNota, std::string *psArquivo) {
  const unsigned uiForma = pEntrada->Byte();
  const std::string sAntes = pEntrada->Bytes(pEntrada->Ate(40));
  const std::string sNovo = pEntrada->Bytes(pEntrada->Ate(24));
  const std::size_t uiOnde = pEntrada->Ate(sAntes.size() + 2);
  std::string sDepois = sAntes;
  sDepois.resize(std::max(sAntes.size(), uiOnde + sNovo.size()));
  sDepois.replace(uiOnde, sNovo.size(), sNovo);
  if ((uiForma & 1) != 0) {
    sDepois.resize(uiOnde + sNovo.size());
  }
  RegNota &reg = pNota->reg;
  reg.uiCrcAntes = Crc(sAntes);
  reg.uiCrcDepois = Crc(sDepois);
  reg.uiOnde = kTamanhoCabecalho + uiOnde;
  reg.uiTamanhoAntes = kTamanhoCabecalho + sAntes.size();
  reg.uiTamanhoDepois = kTamanhoCabecalho + sDepois.size();
  pNota->sBytes = sNovo;
  if ((uiForma & 2) != 0) {  // the write is being undone
    std::swap(reg.uiCrcAntes, reg.uiCrcDepois);
    std::swap(reg.uiTamanhoAntes, reg.uiTamanhoDepois);
    pNota->sBytes = uiOnde < sAntes.size() ? sAntes.substr(uiOnde, sNovo.size()) : "";
  }
  reg.cb = pNota->sBytes.size();
  if ((uiForma & 4) != 0) {  // as one that is too long for the note
    pNota->sBytes.clear();
  }
  reg.cbGuardados = pNota->sBytes.size();
  const std::string sCabecalho = Cabecalho(kTexto, (uiForma & 2) != 0 ? sAntes : sDepois);
  sCabecalho.copy(reg.registro, kTamanhoRegCabecalho, kPosicaoRegCabecalho);

  std::string sDados = (uiForma & 8) != 0 ? sDepois : sAntes;
  const std::size_t uiRasgo = pEntrada->Ate(sNovo.size());
  if ((uiForma & 16) != 0 && uiOnde <= sDados.size()) {
    sDados.replace(
        uiOnde, uiRasgo,
        (uiForma & 8) != 0 ? sAntes.substr(std::min(uiOnde, sAntes.size()), uiRasgo) : sNovo.substr(0, uiRasgo));
  }
  const std::size_t uiMistura = (uiForma & 32) != 0 ? pEntrada->Ate(kTamanhoRegCabecalho) : 0;
  const std::string sResto = (uiForma & 64) != 0 ? pNota->Depois() : pNota->Antes();
  *psArquivo = sCabecalho.substr(0, kPosicaoRegCabecalho + uiMistura) + sResto.substr(uiMistura) + sDados;
}

/// A few bytes or a number of the note changed.
void Estraga(CEntrada *pEntrada, std::size_t uiAte, std::string *psBytes) {
  static constexpr std::size_t kNumeros[] = {8, 80, 88, 96, 104, 112, 120, 128};
  for (std::size_t vezes = pEntrada->Ate(3); vezes > 0 && !psBytes->empty(); --vezes) {
    const std::size_t uiEscolha = pEntrada->Ate(2 * std::size(kNumeros) - 1);
    if (uiEscolha < std::size(kNumeros) && psBytes->size() >= sizeof(RegNota)) {
      const unsigned uiForma = pEntrada->Byte();
      std::uint64_t uiNumero = uiForma >> 1;
      if (uiForma % 8 == 1) {
        uiNumero = pEntrada->Valor<std::uint64_t>();
      } else if (uiForma % 8 == 3) {
        uiNumero = std::numeric_limits<std::uint64_t>::max() - uiNumero;
      }
      psBytes->replace(kNumeros[uiEscolha], sizeof(uiNumero), BytesDe(uiNumero));
    } else {
      const std::size_t uiOnde = pEntrada->Valor<std::uint16_t>() % std::min(uiAte, psBytes->size());
      (*psBytes)[uiOnde] = static_cast<char>((*psBytes)[uiOnde] ^ pEntrada->Byte());
    }
  }
}

Cena CenaDaEntrada(CEntrada *pEntrada) {
  const unsigned uiForma = pEntrada->Byte();
  Cena cena;
  cena.bCabecalhos = uiForma % 8 != 0;
  if ((uiForma & 8) != 0) {
    const std::string sLista = BytesDasLinhas({"OUTRO.DAT", kTexto});
    cena.antes[kControle] = (cena.bCabecalhos ? Cabecalho(kControle, sLista) : "") + sLista;
  }
  Nota nota;
  std::string sArquivo;
  Interrompe(pEntrada, &nota, &sArquivo);
  nota.reg.uiTipo = (uiForma & 48) == 48 ? 2 : 1;
  std::string sCompanheiro = std::string(BytesDe(nota.reg)) + nota.sBytes;
  const std::size_t uiUsados = sCompanheiro.size();
  sCompanheiro.resize(kTamanhoCompanheiro);
  Estraga(pEntrada, uiUsados, &sCompanheiro);
  if (const auto uiSelo = Selo(sCompanheiro); uiSelo && pEntrada->Ate(7) != 7) {
    sCompanheiro.replace(0, sizeof(*uiSelo), BytesDe(*uiSelo));
  }
  if (pEntrada->Ate(7) == 7) {
    sArquivo = pEntrada->Bytes(pEntrada->Byte());
  }
  if (pEntrada->Ate(7) == 7) {
    sCompanheiro.resize(pEntrada->Ate(1) == 0 ? kTamanhoCompanheiro - 1 : pEntrada->Byte());
  }
  if (pEntrada->Ate(3) == 3) {
    const auto uiOnde = pEntrada->Byte();
    const auto uiTroca = pEntrada->Byte();
    if (uiOnde < sArquivo.size()) {
      sArquivo[uiOnde] = static_cast<char>(sArquivo[uiOnde] ^ uiTroca);
    }
  }
  if ((uiForma & 192) != 192) {
    cena.antes[kTexto] = sArquivo;
  }
  cena.antes[kNota] = sCompanheiro;
  cena.Preve();
  return cena;
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  const Cena cena = CenaDaEntrada(pEntrada);
  Execucao(cena).Roda();
}
