// A text file of any bytes, and writes to it.
//
// Property: any bytes load, and as the lines that the format gives; memory follows a simple model of the writes; what a
// reader of the bytes finds on disk afterwards, and what the next initialisation loads, are the lines of memory.
//
// Two habits of the format show in the model: a line ends at its first zero byte when it is loaded, not before, and
// with headers on the place recorded for an appended line counts the header twice, so that the file is loaded anew
// before it is written over.

#include "core/qzdatabase/arquivo/QZTextFile.h"

#include <algorithm>

#include "core/qzdatabase/banco/QZDataBase.h"
#include "fuzz/Empresa.h"

namespace {

using namespace fuzz;
using Textos = std::vector<std::string>;

constexpr int kMaximoOperacoes = 16;
constexpr char kTexto[] = "TEXTO.DAT";

/// A database of one text file.
class CBancoTexto : public CQZDataBase {
public:
  CBancoTexto() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~CBancoTexto() override { FinalizaNoDestrutor(); }

  CQZTextFile m_Texto{kTexto, this};
};

/// What stands before the first zero byte.
std::string AteOZero(const std::string &sTexto) {
  return sTexto.c_str();
}

/// The lines of a text file; one whose length reaches past the end ends there.
Textos LinhasInteiras(std::string_view sDados) {
  Textos textos;
  while (sDados.size() >= sizeof(std::uint32_t)) {
    textos.emplace_back(sDados.substr(sizeof(std::uint32_t), Valor<std::uint32_t>(sDados)));
    sDados.remove_prefix(sizeof(std::uint32_t) + textos.back().size());
  }
  return textos;
}

/// The lines that memory and the disk should hold. A line on disk is longer where it goes on behind a zero byte.
struct Modelo {
  explicit Modelo(const std::string &sDados)
      : memoria(LinhasInteiras(sDados)), disco(memoria), bInteiro(BytesDasLinhas(disco) == sDados) {
    std::transform(memoria.begin(), memoria.end(), memoria.begin(), AteOZero);
  }

  Textos memoria;
  Textos disco;
  bool bInteiro;  ///< no line of the file as it was loaded reached past its end

  /// Takes a write and returns the position that it should hand back.
  std::uint64_t Grava(std::uint64_t uiPosicao, const Textos &textos) {
    const std::size_t linhas = memoria.size();
    const std::size_t inicio = uiPosicao != 0 ? uiPosicao - 1 : linhas;
    const std::size_t fim = inicio + textos.size();
    bool bMaior = false;
    bool bMenor = false;
    bool bIguais = fim <= linhas;
    for (std::size_t idx = inicio; idx < std::min(fim, linhas); ++idx) {
      const std::string &sNovo = textos[idx - inicio];
      bMaior = bMaior || sNovo.size() > memoria[idx].size();
      bMenor = bMenor || sNovo.size() < memoria[idx].size() || disco[idx].size() != memoria[idx].size();
      bIguais = bIguais && sNovo == memoria[idx];
    }
    const bool bNoFinal = uiPosicao == 0 || (bMaior && fim <= linhas);
    if (bNoFinal || !bIguais) {
      for (Textos *pLinhas : {&memoria, &disco}) {
        const std::size_t onde = bNoFinal ? linhas : inicio;
        pLinhas->resize(std::max(linhas, onde + textos.size()));
        std::copy(textos.begin(), textos.end(), pLinhas->begin() + static_cast<std::ptrdiff_t>(onde));
      }
    }
    if (bMenor && !bNoFinal && !bIguais) {
      disco = memoria;  // all lines are written anew
    }
    return bNoFinal ? memoria.size() : uiPosicao;
  }
};

class Execucao {
public:
  explicit Execucao(bool bCabecalhos) : m_empresa(bCabecalhos) {}

  void Roda(const std::string &sArquivo, CEntrada *pEntrada) {
    m_empresa.Escreve(kTexto, sArquivo);
    const ArquivoExaminado exame = Examina(kTexto, sArquivo, m_empresa.m_bCabecalhos);
    ExigeCodigo(Inicia(), exame.hr, "the code of the first initialisation");
    if (Falhou(exame.hr)) {
      return Exige(m_empresa.Le(kTexto) == sArquivo, "a refused file stays as it is");
    }
    Modelo modelo(exame.sDados);
    ConfereMemoria(modelo);
    for (int i = 0; i < kMaximoOperacoes && pEntrada->remaining_bytes() > 0; ++i) {
      const bool bNoFinal = Grava(pEntrada, &modelo);
      ConfereMemoria(modelo);
      if ((bNoFinal && m_empresa.m_bCabecalhos) || pEntrada->Ate(7) == 0) {
        Recarrega(&modelo);
      }
    }
    Recarrega(&modelo);
  }

private:
  HRESULT Inicia() { return m_banco.Inicializa(m_empresa.Dono()); }

  static Textos TextosDaEntrada(CEntrada *pEntrada, const Modelo &modelo, std::uint64_t uiPosicao) {
    Textos textos(pEntrada->Ate(3));
    for (std::size_t t = 0; t < textos.size(); ++t) {
      const std::size_t idx = uiPosicao + t - 1;
      // Lengths that are kept are the interesting ones, and rarely come by themselves.
      const std::size_t uiEscolha = pEntrada->Ate(7);
      const std::size_t uiTamanho =
          uiEscolha < 4 && idx < modelo.memoria.size() ? modelo.memoria[idx].size() : uiEscolha;
      textos[t] = pEntrada->ConsumeBytesAsString(uiTamanho);
    }
    return textos;
  }

  /// One write; true when its lines went to the end.
  bool Grava(CEntrada *pEntrada, Modelo *pModelo) {
    const std::size_t linhas = pModelo->memoria.size();
    const auto uiPosicao = static_cast<std::uint64_t>(pEntrada->Byte()) % (linhas + 2);
    const Textos textos = TextosDaEntrada(pEntrada, *pModelo, uiPosicao);
    std::uint64_t uiDepois = uiPosicao;
    if (textos.size() == 1 && textos[0].empty() && pEntrada->Ate(1) == 0) {
      ExigeCodigo(m_banco.m_Texto.Grava(uiDepois, textos[0]), codigos::kOk, "one empty line writes nothing");
      Exige(uiDepois == 0, "its position");
      return false;
    }
    CStringArray aRegistros;
    for (const std::string &sTexto : textos) {
      aRegistros.Add(sTexto);
    }
    const HRESULT hr = m_banco.m_Texto.GravaColecao(uiDepois, aRegistros);
    if (textos.empty() || uiPosicao > linhas) {
      ExigeCodigo(hr, textos.empty() ? codigos::kOk : codigos::kGravacaoAlemDoFim, "a write of nothing or to nowhere");
      Exige(uiDepois == uiPosicao, "its position");
      return false;
    }
    ExigeCodigo(hr, codigos::kOk, "a write");
    Exige(uiDepois == pModelo->Grava(uiPosicao, textos), "the position of a write");
    return uiDepois == pModelo->memoria.size();
  }

  void ConfereMemoria(const Modelo &modelo) {
    const CArray<CQZDataBaseTextPair> &aLinhas = *m_banco.m_Texto.GetPtrArrayRegistros();
    Exige(aLinhas.GetSize() == modelo.memoria.size(), "number of lines in memory");
    CString sTexto;
    for (std::size_t idx = 0; idx < aLinhas.GetSize(); ++idx) {
      ExigeCodigo(m_banco.m_Texto.Le(idx + 1, sTexto), codigos::kOk, "reading a line");
      Exige(sTexto == modelo.memoria[idx], "lines in memory");
    }
    ExigeCodigo(m_banco.m_Texto.Le(modelo.memoria.size() + 1, sTexto), codigos::kPosicaoAlemDoFim,
                "reading behind the last line");
  }

  /// Finishes, reads the disk, loads again; the model goes on from what is loaded.
  void Recarrega(Modelo *pModelo) {
    ExigeCodigo(m_banco.Finaliza(), codigos::kOk, "finishing");
    const Modelo doDisco(m_empresa.Dados(kTexto));
    Textos &memoria = pModelo->memoria;
    std::transform(memoria.begin(), memoria.end(), memoria.begin(), AteOZero);
    Exige(doDisco.memoria == memoria, "the lines on disk are those of memory");
    Exige(!pModelo->bInteiro || (doDisco.bInteiro && doDisco.disco == pModelo->disco), "the bytes on disk");
    *pModelo = doDisco;
    ExigeCodigo(Inicia(), codigos::kOk, "loading again");
    ConfereMemoria(*pModelo);
  }

  CEmpresa m_empresa;
  CBancoTexto m_banco;
};

/// A file of any bytes, of lines of any text, or one of the two with a header in front that fits.
std::string Arquivo(CEntrada *pEntrada) {
  const unsigned uiForma = pEntrada->Byte();
  std::string sDados;
  if ((uiForma & 1) == 0) {
    sDados = pEntrada->ConsumeBytesAsString(pEntrada->Byte());
  } else {
    Textos textos(pEntrada->Ate(5));
    for (std::string &sTexto : textos) {
      sTexto = pEntrada->ConsumeBytesAsString(pEntrada->Ate(9));
    }
    sDados = BytesDasLinhas(textos) + pEntrada->ConsumeBytesAsString(pEntrada->Ate(7));
  }
  return (uiForma & 2) == 0 ? sDados : Cabecalho(kTexto, sDados) + sDados;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  const bool bCabecalhos = entrada.ConsumeBool();
  const std::string sArquivo = Arquivo(&entrada);
  Execucao(bCabecalhos).Roda(sArquivo, &entrada);
  return 0;
}
