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

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/arquivo/QZTextFile.h"
#include "core/qzdatabase/banco/QZDataBase.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"
#include "fuzz/PastaDaEntrada.h"
#include "fuzz/Referencia.h"
#include "tests/apoio/ChaveCabecalho.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/RelogioFalso.h"

namespace {

using fuzz::CEntrada;
using fuzz::Exige;
using fuzz::ExigeCodigo;

constexpr char kNome[] = "TEXTO.DAT";
constexpr char kNota[] = "TEXTO.INT";

/// The companion's length and that of the note in it, without the write's bytes, as file-formats.md has them.
constexpr std::size_t kTamanhoCompanheiro = 65536;
constexpr std::size_t kTamanhoNota = 136;
constexpr std::size_t kTamanhoRegCabecalho = 68;
constexpr std::size_t kLugarDoCrc = 52;  ///< of the data, in the header record; its own follows it

/// What is about to happen to a file, or to be created.
struct Nota {
  std::uint32_t uiTipo = 1;
  std::string sAntes;  ///< header records that differ in their CRCs only
  std::string sDepois;
  std::uint64_t uiOnde = 0;
  std::uint64_t cb = 0;
  std::uint64_t cbGuardados = 0;
  std::uint64_t uiTamanhoAntes = 0;
  std::uint64_t uiTamanhoDepois = 0;
  std::string sBytes;
};

template <typename T>
std::string BytesDe(const T &valor) {
  return {reinterpret_cast<const char *>(&valor), sizeof(valor)};
}

template <typename T = std::uint64_t>
T NumeroEm(const std::string &sBytes, std::size_t uiOnde) {
  T uiNumero = 0;
  std::memcpy(&uiNumero, sBytes.data() + uiOnde, sizeof(uiNumero));
  return uiNumero;
}

std::string RegCabecalhoDe(const std::string &sDados) {
  return fuzz::Cabecalho(kNome, sDados).substr(kPosicaoRegCabecalho);
}

/// The companion that holds a note, not sealed.
std::string Companheiro(const Nota &nota) {
  std::string sBytes = std::string(8, '\0') + BytesDe(nota.uiTipo) + nota.sDepois + nota.sAntes.substr(kLugarDoCrc, 8) +
                       nota.sDepois.substr(kLugarDoCrc, 8);
  for (const std::uint64_t uiNumero :
       {nota.uiOnde, nota.cb, nota.cbGuardados, nota.uiTamanhoAntes, nota.uiTamanhoDepois}) {
    sBytes += BytesDe(uiNumero);
  }
  sBytes += nota.sBytes;
  sBytes.resize(kTamanhoCompanheiro);
  return sBytes;
}

std::uint64_t Selo(const std::string &sCompanheiro, std::uint64_t cbGuardados) {
  const std::uint64_t uiCrc =
      CalculaCrc64(sCompanheiro.data() + 8, kTamanhoNota - 8 + static_cast<std::size_t>(cbGuardados));
  return uiCrc != 0 ? uiCrc : 1;
}

/// A header record over data with the CRC that stands at a place of the companion.
std::string RegCabecalhoCom(const std::string &sCompanheiro, std::size_t uiLugarDoCrc) {
  const std::string sReg = sCompanheiro.substr(12, kLugarDoCrc) + sCompanheiro.substr(uiLugarDoCrc, 8);
  return sReg + BytesDe(CalculaCrc64(sReg.data(), sReg.size()));
}

/// Nothing where nothing is noted for this file.
std::optional<Nota> LeNota(const std::string &sCompanheiro) {
  if (sCompanheiro.size() < kTamanhoCompanheiro) {
    return std::nullopt;
  }
  Nota nota;
  nota.uiTipo = NumeroEm<std::uint32_t>(sCompanheiro, 8);
  nota.sAntes = RegCabecalhoCom(sCompanheiro, 80);
  nota.sDepois = RegCabecalhoCom(sCompanheiro, 88);
  nota.uiOnde = NumeroEm(sCompanheiro, 96);
  nota.cb = NumeroEm(sCompanheiro, 104);
  nota.cbGuardados = NumeroEm(sCompanheiro, 112);
  nota.uiTamanhoAntes = NumeroEm(sCompanheiro, 120);
  nota.uiTamanhoDepois = NumeroEm(sCompanheiro, 128);
  const bool bCabe = nota.cbGuardados <= kTamanhoCompanheiro - kTamanhoNota;
  if (!bCabe || (nota.cbGuardados != 0 && nota.cbGuardados != nota.cb) || nota.uiTipo < 1 || nota.uiTipo > 2 ||
      NumeroEm(sCompanheiro, 0) != Selo(sCompanheiro, nota.cbGuardados)) {
    return std::nullopt;
  }
  const std::string sNome = nota.sDepois.substr(6, 40);
  if (sNome.substr(0, sNome.find('\0')) != kNome) {
    return std::nullopt;
  }
  nota.sBytes = sCompanheiro.substr(kTamanhoNota, static_cast<std::size_t>(nota.cbGuardados));
  return nota;
}

/// The whole file that a note makes of one, if it does.
std::optional<std::string> Reparado(const std::string &sArquivo, const Nota &nota) {
  if (nota.uiTipo != 1 || sArquivo.size() < kTamanhoCabecalho ||
      std::min({nota.uiOnde, nota.uiTamanhoAntes, nota.uiTamanhoDepois}) < kTamanhoCabecalho ||
      nota.cb > std::numeric_limits<std::uint64_t>::max() - nota.uiOnde) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < kTamanhoRegCabecalho; ++i) {
    const char c = sArquivo[kPosicaoRegCabecalho + i];
    if (c != nota.sAntes[i] && c != nota.sDepois[i]) {
      return std::nullopt;
    }
  }
  const auto inteiro = [](std::string sBytes, std::uint64_t uiTamanho, const std::string &sCabecalho) {
    if (uiTamanho > sBytes.size()) {
      return std::optional<std::string>();
    }
    sBytes.resize(static_cast<std::size_t>(uiTamanho));
    sBytes.replace(kPosicaoRegCabecalho, kTamanhoRegCabecalho, sCabecalho);
    const bool bInteiro = !Falhou(fuzz::Examina(kNome, sBytes, true).hr);
    return bInteiro ? std::optional(sBytes) : std::nullopt;
  };
  std::optional<std::string> sReparado = inteiro(sArquivo, nota.uiTamanhoDepois, nota.sDepois);
  if (!sReparado && nota.uiOnde <= sArquivo.size() && nota.cb == nota.cbGuardados &&
      nota.uiOnde + nota.cb <= nota.uiTamanhoDepois) {
    std::string sCompletado = sArquivo;
    const auto uiOnde = static_cast<std::size_t>(nota.uiOnde);
    sCompletado.replace(uiOnde, nota.sBytes.size(), nota.sBytes);
    sReparado = inteiro(sCompletado, nota.uiTamanhoDepois, nota.sDepois);
  }
  return sReparado ? sReparado : inteiro(sArquivo, nota.uiTamanhoAntes, nota.sAntes);
}

/// What is found, and what it should come to.
struct Cena {
  bool bCabecalhos = true;
  bool bListado = false;
  std::optional<std::string> sArquivo;
  std::string sCompanheiro;

  HRESULT hr = codigos::kOk;
  std::optional<std::string> sDepois;  ///< the file
  bool bReparado = false;
  bool bNasceu = false;  ///< what is noted is the file's creation, which is over once it has content

  void Preve() {
    const std::optional<Nota> nota = LeNota(sCompanheiro);
    sDepois = sArquivo;
    bNasceu = nota && nota->uiTipo == 2;
    if (!sArquivo) {
      const bool bPrimeira = nota && nota->uiTamanhoAntes == kTamanhoCabecalho;
      hr = bListado && !bNasceu && !bPrimeira ? codigos::kArquivoDesapareceu : codigos::kOk;
      return;
    }
    const fuzz::ArquivoExaminado exame = fuzz::Examina(kNome, *sArquivo, bCabecalhos);
    hr = exame.hr;
    if (bCabecalhos && !exame.bTemCabecalho) {
      sDepois = fuzz::Cabecalho(kNome, *sArquivo) + *sArquivo;
    } else if (Falhou(hr) && hr != codigos::kCabecalhoVersaoDesconhecida && nota) {
      const std::optional<std::string> sReparado = Reparado(*sArquivo, *nota);
      bReparado = sReparado.has_value();
      hr = bReparado ? codigos::kOk : hr;
      sDepois = bReparado ? sReparado : sDepois;
    }
  }
};

class BancoTexto : public CQZDataBase {
public:
  BancoTexto() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~BancoTexto() override { FinalizaNoDestrutor(); }

  CQZTextFile m_Texto{kNome, this};
};

class Execucao {
public:
  explicit Execucao(const Cena &cena) : m_cena(cena), m_cabecalho(cena.bCabecalhos) {
    if (m_cena.bListado) {
      const std::string sLista = fuzz::BytesDasLinhas({"OUTRO.DAT", kNome});
      m_empresa.Escreve(fuzz::kControle, (m_cena.bCabecalhos ? fuzz::Cabecalho(fuzz::kControle, sLista) : "") + sLista);
    }
    if (m_cena.sArquivo) {
      m_empresa.Escreve(kNome, *m_cena.sArquivo);
    }
    m_empresa.Escreve(kNota, m_cena.sCompanheiro);
  }

  void Roda() {
    Abre("the code of an opening");
    ConfereDisco();
    if (m_cena.bReparado) {
      Exige(!m_empresa.Existe(kNota), "a note that has served goes");
    }
    Abre("the code of a second opening");
    ConfereDisco();
    if (!Falhou(m_cena.hr)) {
      Acrescenta();
    }
  }

private:
  std::optional<std::string> NoDisco(const char *lpNome) const {
    return m_empresa.Existe(lpNome) ? std::optional(m_empresa.Le(lpNome)) : std::nullopt;
  }
  fuzz::ArquivoExaminado Exame() const { return fuzz::Examina(kNome, m_empresa.Le(kNome), m_cena.bCabecalhos); }
  std::vector<std::string> Linhas() const {
    return m_empresa.Existe(kNome) ? fuzz::LinhasDoTexto(Exame().sDados) : std::vector<std::string>();
  }

  void Abre(const char *lpOque) {
    ExigeCodigo(m_banco.Inicializa(m_empresa.Dono()), m_cena.hr, lpOque);
    static_cast<void>(m_banco.Finaliza());
  }
  void ConfereDisco() const {
    Exige(NoDisco(kNome) == m_cena.sDepois, "the file");
    Exige(!Falhou(m_cena.hr) || m_cena.bNasceu || NoDisco(kNota) == m_cena.sCompanheiro,
          "the note of a file that is refused");
  }

  void Acrescenta() {
    std::vector<std::string> linhas = Linhas();
    std::uint64_t uiPosicao = 0;
    ExigeCodigo(m_banco.Inicializa(m_empresa.Dono()), codigos::kOk, "opening to write");
    ExigeCodigo(m_banco.m_Texto.Grava(uiPosicao, "fim"), codigos::kOk, "an append");
    ExigeCodigo(m_banco.Finaliza(), codigos::kOk, "closing");
    linhas.emplace_back("fim");
    ExigeCodigo(Exame().hr, codigos::kOk, "the header on disk");
    Exige(Linhas() == linhas, "the lines on disk");
    Exige(!m_cena.bCabecalhos || !m_empresa.Existe(kNota), "no note stays");
  }

  const Cena &m_cena;
  apoio::EmpresaTeste m_empresa;
  apoio::ChaveCabecalho m_cabecalho;
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
  BancoTexto m_banco;
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
  pNota->sAntes = RegCabecalhoDe(sAntes);
  pNota->sDepois = RegCabecalhoDe(sDepois);
  pNota->uiOnde = kTamanhoCabecalho + uiOnde;
  pNota->sBytes = sNovo;
  pNota->uiTamanhoAntes = kTamanhoCabecalho + sAntes.size();
  pNota->uiTamanhoDepois = kTamanhoCabecalho + sDepois.size();
  if ((uiForma & 2) != 0) {  // the write is being undone
    std::swap(pNota->sAntes, pNota->sDepois);
    std::swap(pNota->uiTamanhoAntes, pNota->uiTamanhoDepois);
    pNota->sBytes = uiOnde < sAntes.size() ? sAntes.substr(uiOnde, sNovo.size()) : "";
  }
  pNota->cb = pNota->sBytes.size();
  if ((uiForma & 4) != 0) {  // as one that is too long for the note
    pNota->sBytes.clear();
  }
  pNota->cbGuardados = pNota->sBytes.size();

  std::string sDados = (uiForma & 8) != 0 ? sDepois : sAntes;
  const std::size_t uiRasgo = pEntrada->Ate(sNovo.size());
  if ((uiForma & 16) != 0 && uiOnde <= sDados.size()) {
    sDados.replace(
        uiOnde, uiRasgo,
        (uiForma & 8) != 0 ? sAntes.substr(std::min(uiOnde, sAntes.size()), uiRasgo) : sNovo.substr(0, uiRasgo));
  }
  const std::size_t uiMistura = (uiForma & 32) != 0 ? pEntrada->Ate(kTamanhoRegCabecalho) : 0;
  const std::string &sResto = (uiForma & 64) != 0 ? pNota->sDepois : pNota->sAntes;
  *psArquivo = fuzz::Cabecalho(kNome, "").substr(0, kPosicaoRegCabecalho) + pNota->sDepois.substr(0, uiMistura) +
               sResto.substr(uiMistura) + sDados;
}

/// A few bytes or a number of the note changed.
void Estraga(CEntrada *pEntrada, std::size_t uiAte, std::string *psBytes) {
  static constexpr std::size_t kNumeros[] = {8, 80, 88, 96, 104, 112, 120, 128};
  for (std::size_t vezes = pEntrada->Ate(3); vezes > 0 && !psBytes->empty(); --vezes) {
    const std::size_t uiEscolha = pEntrada->Ate(2 * std::size(kNumeros) - 1);
    if (uiEscolha < std::size(kNumeros) && psBytes->size() >= kTamanhoNota) {
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
  cena.bListado = (uiForma & 8) != 0;
  Nota nota;
  std::string sArquivo;
  Interrompe(pEntrada, &nota, &sArquivo);
  nota.uiTipo = (uiForma & 48) == 48 ? 2 : 1;
  std::string sCompanheiro = Companheiro(nota);
  Estraga(pEntrada, kTamanhoNota + nota.sBytes.size(), &sCompanheiro);
  const std::uint64_t cbGuardados = NumeroEm(sCompanheiro, 112);
  if (cbGuardados <= kTamanhoCompanheiro - kTamanhoNota && pEntrada->Ate(7) != 7) {
    sCompanheiro.replace(0, 8, BytesDe(Selo(sCompanheiro, cbGuardados)));
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
    cena.sArquivo = sArquivo;
  }
  cena.sCompanheiro = sCompanheiro;
  cena.Preve();
  return cena;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  const Cena cena = CenaDaEntrada(&entrada);
  Execucao(cena).Roda();
  return 0;
}
