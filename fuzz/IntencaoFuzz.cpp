// A data file as a process may have left it, or of any bytes, beside a note (".INT") of what it was about, or of any
// bytes, opened as a text file, with headers off or on and with or without an entry in the list of created files.
//
// Property: the file stays as it is, or header and data did not agree and it is whole afterwards, and the note has
// gone: where the note was not damaged, it is the file with the write that is noted or without it. What the note
// explains does become whole. A second opening agrees with the first, and what is written then is found again.

#include <algorithm>
#include <limits>
#include <optional>

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Empresa.h"

namespace {

using namespace fuzz;

constexpr char kNota[] = "TEXTO.INT";

/// The companion's length, as file-formats.md has it.
constexpr std::size_t kTamanhoCompanheiro = 65536;

/// What stands at the beginning of the companion, before the write's bytes.
struct RegNota {
  std::uint64_t uiSelo;
  std::uint32_t uiTipo;  ///< what is about to happen to a file, or 2: to be created
  char registro[sizeof(RegCabecalhoArquivo)];
  std::uint64_t uiCrcAntes;  ///< of the data
  std::uint64_t uiCrcDepois;
  std::uint64_t uiOnde;
  std::uint64_t cb;
  std::uint64_t cbGuardados;
  std::uint64_t uiTamanhoAntes;
  std::uint64_t uiTamanhoDepois;
};
static_assert(sizeof(RegNota) == 136);

std::uint64_t Crc(const std::string &sDados) {
  return CalculaCrc64(sDados.data(), sDados.size());
}

/// With its seal, if the write's bytes fit.
std::string Selado(std::string sCompanheiro) {
  const auto cbGuardados = CEntrada(sCompanheiro).Valor<RegNota>().cbGuardados;
  if (cbGuardados <= kTamanhoCompanheiro - sizeof(RegNota)) {
    const std::string sNotado = sCompanheiro.substr(8, sizeof(RegNota) - 8 + cbGuardados);
    sCompanheiro.replace(0, 8, BytesDe(std::max(Crc(sNotado), std::uint64_t{1})));
  }
  return sCompanheiro;
}

/// A write that a process ended in the midst of, and what is found of it.
struct Cena {
  bool bCabecalhos = true;
  Pasta antes;
  std::string sSem;  ///< the whole file without the write and with it
  std::string sCom;
  bool bPrimeira = false;     ///< the file had no content before what is noted
  bool bCriacao = false;      ///< what is noted is the file's creation
  bool bNotaInteira = false;  ///< as it was noted
  bool bSeExplica = false;    ///< the write can be completed from the note
};

class Execucao {
public:
  explicit Execucao(const Cena &cena) : m_cena(cena), m_empresa(cena.bCabecalhos, cena.antes) {}

  void Roda() {
    const HRESULT hr = AbreEFecha();
    const std::optional<std::string> sDepois = m_empresa.Bytes(kTexto);
    if (m_cena.antes.contains(kTexto)) {
      ConfereArquivo(hr, sDepois.value_or(""));
    } else {
      Exige(!sDepois, "no file is made");
      ConfereFalta(hr);
    }
    Exige(!Falhou(hr) || m_cena.bCriacao || m_empresa.Bytes(kNota) == m_cena.antes.at(kNota),
          "the note of a file that is refused");
    ExigeCodigo(AbreEFecha(), hr, "the code of a second opening");
    Exige(m_empresa.Bytes(kTexto) == sDepois, "the file after a second opening");
    if (!Falhou(hr)) {
      Acrescenta();
    }
  }

private:
  HRESULT AbreEFecha() {
    const HRESULT hr = m_banco.Inicializa(m_empresa.Dono());
    static_cast<void>(m_banco.Finaliza());
    return hr;
  }

  void ConfereFalta(HRESULT hr) const {
    const bool bListado = m_cena.antes.contains(kControle);
    Exige(hr == codigos::kOk || (bListado && hr == codigos::kArquivoDesapareceu), "the code of a missing file");
    Exige(!bListado || !m_cena.bNotaInteira || Falhou(hr) == !(m_cena.bCriacao || m_cena.bPrimeira),
          "a file is missed unless it was about to be created");
  }

  void ConfereArquivo(HRESULT hr, const std::string &sDepois) const {
    const std::string &sAntes = m_cena.antes.at(kTexto);
    const ArquivoExaminado exame = Examina(kTexto, sAntes, m_cena.bCabecalhos);
    if (hr == exame.hr) {
      const bool bGanha = m_cena.bCabecalhos && !exame.bTemCabecalho;
      Exige(sDepois == (bGanha ? Cabecalho(kTexto, sAntes) + sAntes : sAntes), "the file stays as it is");
      return Exige(!Falhou(hr) || !m_cena.bSeExplica, "a file that its note explains");
    }
    ExigeCodigo(hr, codigos::kOk, "the code of an opening");
    Exige(!Falhou(Examina(kTexto, sDepois, true).hr), "a repaired file is whole");
    Exige(CEntrada(m_cena.antes.at(kNota)).Valor<RegNota>().uiTipo == 1, "only the note of a write repairs a file");
    Exige(!m_cena.bNotaInteira || sDepois == m_cena.sSem || sDepois == m_cena.sCom, "a repaired file");
    Exige(!m_empresa.Existe(kNota), "a note that has served goes");
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

/// The note of a write and the file as its process left it.
void Interrompe(CEntrada *pEntrada, Cena *pCena, std::string *psNota, std::string *psArquivo) {
  const unsigned uiForma = pEntrada->Byte();
  const auto tem = [uiForma](unsigned uiBit) { return (uiForma & uiBit) != 0; };
  const std::string sAntes = pEntrada->Bytes(pEntrada->Ate(40));
  const std::string sNovo = pEntrada->Bytes(pEntrada->Ate(24));
  const std::size_t uiOnde = pEntrada->Ate(sAntes.size() + 2);
  std::string sDepois = sAntes;
  sDepois.resize(std::max(sAntes.size(), uiOnde + sNovo.size()));
  sDepois.replace(uiOnde, sNovo.size(), sNovo);
  if (tem(1)) {
    sDepois.resize(uiOnde + sNovo.size());
  }
  // The write may be one that is being undone.
  const std::string &sDe = tem(2) ? sDepois : sAntes;
  const std::string &sPara = tem(2) ? sAntes : sDepois;
  const std::string sBytes = sPara.substr(std::min(uiOnde, sPara.size()), sNovo.size());
  const std::string sCabecalho = Cabecalho(kTexto, sPara);
  RegNota reg{.uiSelo = 0,
              .uiTipo = pCena->bCriacao ? 2U : 1U,
              .registro = {},
              .uiCrcAntes = Crc(sDe),
              .uiCrcDepois = Crc(sPara),
              .uiOnde = kTamanhoCabecalho + uiOnde,
              .cb = sBytes.size(),
              .cbGuardados = tem(4) ? 0 : sBytes.size(),  // or too long for the note
              .uiTamanhoAntes = kTamanhoCabecalho + sDe.size(),
              .uiTamanhoDepois = kTamanhoCabecalho + sPara.size()};
  sCabecalho.copy(reg.registro, sizeof(reg.registro), kPosicaoRegCabecalho);
  *psNota = std::string(BytesDe(reg)) + sBytes.substr(0, reg.cbGuardados);

  std::string sDados = tem(8) ? sDepois : sAntes;
  const std::size_t uiRasgo = pEntrada->Ate(sNovo.size());
  if (tem(16) && uiOnde <= sDados.size()) {
    sDados.replace(uiOnde, uiRasgo,
                   (tem(8) ? sAntes : sNovo).substr(tem(8) ? std::min(uiOnde, sAntes.size()) : 0, uiRasgo));
  }
  const std::size_t uiMistura = kPosicaoRegCabecalho + (tem(32) ? pEntrada->Ate(sizeof(RegCabecalhoArquivo)) : 0);
  *psArquivo = sCabecalho.substr(0, uiMistura) + Cabecalho(kTexto, tem(64) ? sPara : sDe).substr(uiMistura) + sDados;
  pCena->sSem = Cabecalho(kTexto, sAntes) + sAntes;
  pCena->sCom = Cabecalho(kTexto, sDepois) + sDepois;
  pCena->bPrimeira = sDe.empty();
  pCena->bSeExplica = !tem(1) && !tem(4) && !pCena->bCriacao;
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
  cena.bCriacao = (uiForma & 48) == 48;
  if ((uiForma & 8) != 0) {
    const std::string sLista = BytesDasLinhas({"OUTRO.DAT", kTexto});
    cena.antes[kControle] = (cena.bCabecalhos ? Cabecalho(kControle, sLista) : "") + sLista;
  }
  std::string sCompanheiro;
  std::string sArquivo;
  Interrompe(pEntrada, &cena, &sCompanheiro, &sArquivo);
  const std::size_t uiUsados = sCompanheiro.size();
  sCompanheiro.resize(kTamanhoCompanheiro);
  const std::string sNotado = Selado(sCompanheiro);
  const std::string sDeixado = sArquivo;
  Estraga(pEntrada, uiUsados, &sCompanheiro);
  if (const std::string sSelado = Selado(sCompanheiro); sSelado != sCompanheiro && pEntrada->Ate(7) != 7) {
    sCompanheiro = sSelado;
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
  cena.bNotaInteira = sCompanheiro == sNotado;
  cena.bSeExplica = cena.bSeExplica && cena.bNotaInteira && sArquivo == sDeixado;
  return cena;
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  const Cena cena = CenaDaEntrada(pEntrada);
  Execucao(cena).Roda();
}
