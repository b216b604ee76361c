// A company's directory in which one of the data files holds any bytes, and others may be leftovers: for the offline
// tool, and opened as a register of vehicles with headers off or on.
//
// Property: every command of the tool comes to one of its exit codes and no original changes; what "recupera"
// writes is sound and has nothing but bytes of the original behind its header; a directory is no better than any of its
// files; and one that is found sound, or is after every repairable file was replaced by its repaired copy, opens as a
// register.
//
// The next attempt to open gives the code of the first. A refusal leaves every file as it was, or, with headers on and
// no version record that holds in front of it, behind one new header. After a success all records are the stored ones
// (a base without a version loses its first, which was no vehicle), and a new register finds them and what was written.
// A file that a write left half way is whole again, with the write or without it, or refused where its note has
// changed.

#include "vehicles/BaseVeiculos.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/qzdatabase/disco/IntencaoGravacao.h"
#include "fuzz/Empresa.h"
#include "qzdados/Exame.h"
#include "tests/qzdados/ApoioQzdados.h"

namespace {

using namespace fuzz;

constexpr std::array kArquivos = {kVeiculos, kVersao, kControle};
constexpr std::size_t kTamanhoVersao = 16;

/// The note of a write, and the lengths of its seal, of its kind behind that, and of all that stands before the write's
/// bytes.
constexpr char kNota[] = "DFVEIC.INT";
constexpr std::size_t kTamanhoSelo = 8;
constexpr std::size_t kTamanhoTipo = 4;
constexpr std::size_t kTamanhoNota = 136;

/// The bytes of a version file of the present version.
std::string VersaoUm() {
  return '\1' + std::string(kTamanhoVersao - 1, '\0');
}

std::string Conteudo(CEntrada *pEntrada, const std::string &sNome) {
  const unsigned uiForma = pEntrada->Byte();
  const std::uint8_t uiTroca = (uiForma & 8) != 0 ? pEntrada->Byte() : std::uint8_t{0};
  const auto uiOnde = pEntrada->ConsumeIntegral<std::uint16_t>();
  const auto iVersao = (uiForma & 48) == 48 ? pEntrada->ConsumeIntegral<std::uint16_t>() : std::uint16_t{1};
  std::string sDados = pEntrada->ConsumeRemainingBytesAsString();
  if ((uiForma & 1) != 0) {
    const std::size_t uiUnidade = sNome == kVersao ? kTamanhoVersao : sizeof(RegVeiculo);
    sDados.resize((sDados.size() + uiUnidade - 1) / uiUnidade * uiUnidade);
  }
  if ((uiForma & 2) != 0) {
    const std::string sCabecalho = Cabecalho((uiForma & 128) != 0 ? kControle : sNome, sDados, iVersao);
    sDados.insert(0, sCabecalho.substr(0, (uiForma & 4) != 0 ? kPosicaoRegCabecalho : kTamanhoCabecalho));
  }
  if (!sDados.empty()) {
    sDados[uiOnde % sDados.size()] = static_cast<char>(sDados[uiOnde % sDados.size()] ^ uiTroca);
  }
  return sDados;
}

/// A company's directory in which one of the three data files holds any bytes, often filled up to whole records, in a
/// fitting header, or with one byte changed afterwards. The bits of `uiEscolha` say which, and which others are there.
Pasta PastaDaEntrada(unsigned uiEscolha, CEntrada *pEntrada) {
  const std::string sNome = kArquivos[(uiEscolha >> 1) % kArquivos.size()];
  Pasta pasta;
  if ((uiEscolha & 16) != 0) {
    pasta[kVersao] = VersaoUm();
  }
  if ((uiEscolha & 32) != 0) {
    pasta[kVeiculos] = std::string(pEntrada->Ate(3) * sizeof(RegVeiculo), 'v');
  }
  if ((uiEscolha & 64) != 0) {
    pasta[kControle] = BytesDasLinhas({kVersao, kVeiculos});
  }
  pasta[sNome] = Conteudo(pEntrada, sNome);
  return pasta;
}

/// The exit code of a look at a path.
int Estado(const std::string &sCaminho) {
  return Rodada({"verifica", sCaminho}).iCodigo;
}

/// The directory as it is, opened as a register.
class Registro {
public:
  Registro(const Pasta &pasta, bool bCabecalhos) : m_antes(pasta), m_empresa(bCabecalhos, pasta) {}

  void Roda() {
    const bool bVersaoUm = Antes(kVersao).sDados.substr(0, 2) == VersaoUm().substr(0, 2);
    m_sRegistros = Antes(kVeiculos).sDados;
    {
      CBaseVeiculos base;
      if (const HRESULT hr = m_empresa.Abre(&base); Falhou(hr)) {
        ExigeCodigo(m_empresa.Abre(&base), hr, "the code of a second attempt");
        // What a conversion has rightly done before the refusal stays.
        return bVersaoUm || m_sRegistros.size() % sizeof(RegVeiculo) != 0 ? ConfereRecusa() : void();
      }
      for (const char *lpNome : kArquivos) {
        Exige(!Falhou(Antes(lpNome).hr), "a header that does not hold is refused");
      }
      m_sRegistros.erase(0, bVersaoUm ? 0 : sizeof(RegVeiculo));
      ConfereRegistros(&base);
      tagREG_VEICULOPS veiculo{};
      veiculo.iAno = 2026;
      RegVeiculo reg;
      CopiaParaRegistro(veiculo, &reg);
      m_sRegistros += BytesDe(reg);
      LONG lPos = 0;
      ExigeCodigo(base.Grava(&lPos, veiculo), codigos::kOk, "a write");
    }
    Exige(m_empresa.Dados(kVeiculos) == m_sRegistros, "the vehicle file");
    CBaseVeiculos base;
    ExigeCodigo(m_empresa.Abre(&base), codigos::kOk, "the code of a new register");
    ConfereRegistros(&base);
  }

private:
  ArquivoExaminado Antes(const char *lpNome) const {
    const auto achado = m_antes.find(lpNome);
    return Examina(lpNome, achado != m_antes.end() ? achado->second : "", m_empresa.m_bCabecalhos);
  }

  void ConfereRecusa() const {
    for (const char *lpNome : kArquivos) {
      const auto antes = m_antes.find(lpNome);
      const std::optional<std::string> sDepois = m_empresa.Bytes(lpNome);
      Exige(sDepois.has_value() == (antes != m_antes.end()), "a refusal neither makes nor deletes a file");
      const bool bPodeGanhar = m_empresa.m_bCabecalhos && !Antes(lpNome).bTemCabecalho;
      Exige(!sDepois || sDepois == antes->second ||
                (bPodeGanhar && sDepois == Cabecalho(lpNome, antes->second) + antes->second),
            "a refusal keeps the bytes of every file");
    }
  }

  void ConfereRegistros(CBaseVeiculos *pBase) const {
    CArray<LONG> aPosicoes;
    CArray<RegVeiculo> aRegistros;
    ExigeCodigo(pBase->InternalGetRegs({}, &aPosicoes, &aRegistros), codigos::kOk, "reading all records");
    Exige(aPosicoes.GetSize() == aRegistros.GetSize() &&
              BytesDe(aRegistros.GetData(), aRegistros.GetSize()) == m_sRegistros,
          "the records are the stored bytes");
  }

  const Pasta &m_antes;
  CEmpresa m_empresa;
  std::string m_sRegistros;  ///< that the register should hold
};

/// A register whose process ended in the midst of a write over one record or behind the last, found with the note of it
/// (".INT"), in which a byte may have changed.
void ConfereInterrompido(CEntrada *pEntrada) {
  const std::string sAntes(pEntrada->Ate(3) * sizeof(RegVeiculo), 'v');
  const std::string sNovo(sizeof(RegVeiculo), static_cast<char>(pEntrada->Byte()));
  const std::size_t uiOnde = pEntrada->Ate(sAntes.size() / sizeof(RegVeiculo)) * sizeof(RegVeiculo);
  const std::string sDepois = std::string(sAntes).replace(uiOnde, sNovo.size(), sNovo);
  const std::size_t uiFeitos = pEntrada->ConsumeIntegral<std::uint16_t>() % (sNovo.size() + 1);
  const std::size_t uiMistura = kPosicaoRegCabecalho + pEntrada->Ate(sizeof(RegCabecalhoArquivo));
  const std::string sDeixado = Cabecalho(kVeiculos, sDepois).substr(0, uiMistura) +
                               Cabecalho(kVeiculos, sAntes).substr(uiMistura) +
                               std::string(sAntes).replace(uiOnde, uiFeitos, sNovo, 0, uiFeitos);
  const CEmpresa empresa(true, {{kVeiculos, sDeixado}, {kVersao, VersaoUm()}});
  {
    CQZIntencaoGravacao nota;
    nota.Define(empresa.Caminho(kVeiculos));
    nota.Prepara();
    nota.Anuncia({MontaRegCabecalho(0, kVeiculos, 0), Crc(sAntes), Crc(sDepois), kTamanhoCabecalho + uiOnde,
                  sNovo.data(), sNovo.size(), kTamanhoCabecalho + sAntes.size(), kTamanhoCabecalho + sDepois.size()});
  }
  const std::string sInteira = empresa.Le(kNota);
  std::string sNota = sInteira;
  const std::size_t uiTroca = kTamanhoSelo + pEntrada->Ate(kTamanhoNota - kTamanhoSelo - 1);
  sNota[uiTroca] = static_cast<char>(sNota[uiTroca] ^ pEntrada->Byte());
  if (pEntrada->Ate(3) != 3) {
    sNota.replace(0, kTamanhoSelo,
                  BytesDe(Crc(sNota.substr(kTamanhoSelo, kTamanhoNota - kTamanhoSelo + sNovo.size()))));
  }
  empresa.Escreve(kNota, sNota);
  CBaseVeiculos base;
  if (Falhou(empresa.Abre(&base))) {
    Exige(sNota != sInteira, "what the note explains opens");
    return Exige(empresa.Le(kVeiculos) == sDeixado && empresa.Le(kNota) == sNota, "a refusal leaves file and note");
  }
  static_cast<void>(base.Finaliza());
  Exige(empresa.Dados(kVeiculos) == sAntes || empresa.Dados(kVeiculos) == sDepois, "with the write or without it");
  if (empresa.Le(kVeiculos) != sDeixado) {
    Exige(!empresa.Existe(kNota), "a note that has served goes");
    Exige(sNota.substr(kTamanhoSelo, kTamanhoTipo) == sInteira.substr(kTamanhoSelo, kTamanhoTipo),
          "only the note of a write repairs a file");
  }
}

/// The tool on it.
class Ferramenta {
public:
  explicit Ferramenta(const Pasta &pasta) : m_antes(pasta), m_depois(pasta), m_empresa(true, pasta) {}

  void Roda() {
    const int iEstado = Rodada({"verifica", m_empresa.Caminho(""), "--detalhes"}).iCodigo;
    int iPior = 0;
    bool bReparados = true;
    for (const auto &[sNome, sBytes] : m_antes) {
      const int iDoArquivo = Estado(m_empresa.Caminho(sNome));
      iPior = std::max(iPior, iDoArquivo);
      bReparados = bReparados && iDoArquivo != 2;
      Lista(sNome);
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
  void Lista(const std::string &sNome) const {
    for (const char *lpFormato : {"--csv", "--json", "--ate=2"}) {
      const int iCodigo = Rodada({"lista", m_empresa.Caminho(sNome), lpFormato}).iCodigo;
      Exige(iCodigo == 0 || iCodigo == 3, "the exit code of a listing");
    }
  }

  void Recupera(const std::string &sNome, bool bReparavel) {
    const std::string sNovo = m_empresa.Caminho(sNome + ".novo");
    const int iCodigo = Rodada({"recupera", m_empresa.Caminho(sNome), "--em", sNovo}).iCodigo;
    const bool bGravou = m_empresa.Existe(sNome + ".novo");
    Exige(bGravou || !bReparavel, "a repairable file is repaired");
    if (bGravou) {
      Exige(iCodigo == 0, "a repair says that it wrote");
      Exige(Rodada({"verifica", sNovo, "--como", sNome}).iCodigo == 0, "a repaired copy is sound");
      const std::string sInteiros = m_empresa.Le(sNome + ".novo");
      const std::string sDados = Examina(IdentificaNome(sNome).sNome, sInteiros, true).sDados;
      Exige(m_antes.at(sNome).find(sDados) != std::string::npos, "a repaired copy has the bytes of the original alone");
      if (!IdentificaNome(sNome).bSobra) {
        m_depois[sNome] = sInteiros;
      }
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  const unsigned uiEscolha = entrada.Byte();
  const std::string sSobra =
      entrada.PickValueInArray({"", "DFVEIC.TRA", "DFVEIVSD.TRA", kNota, "NOTAS.OFL", "OUTRO.DAT"});
  const std::string sBytesSobra = sSobra.empty() ? "" : entrada.ConsumeBytesAsString(entrada.Byte());
  Pasta pasta = PastaDaEntrada(uiEscolha, &entrada);
  if (sSobra.empty()) {
    Registro(pasta, (uiEscolha & 1) != 0).Roda();
  } else {
    CEntrada sobra(sBytesSobra);
    ConfereInterrompido(&sobra);
    pasta[sSobra] = sBytesSobra;
  }
  Ferramenta(pasta).Roda();
  return 0;
}
