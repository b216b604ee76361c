#include "qzdados/Copia.h"

#include <algorithm>
#include <vector>

#include "client/Codificacao.h"
#include "core/platform/Plataforma.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"

namespace {

constexpr std::uint32_t kErroJaExiste = 80;  // ERROR_FILE_EXISTS
constexpr std::size_t kPeca = std::size_t{256} * 1024;

/// Raises with the new file's name: what fails here is not the origin.
void ExigeNovo(const plataforma::FalhaArquivo &falha, const CString &sCaminho) {
  if (falha) {
    throw CErroArquivo(
        sCaminho + ": " +
        (falha.erroSO == kErroJaExiste ? "o arquivo já existe; nada é gravado por cima"_pt : TextoDaFalha(falha)));
  }
}

}  // namespace

CArquivoNovo::CArquivoNovo(const CString &sCaminho) : m_sCaminho(sCaminho) {
  using namespace plataforma;
  ExigeNovo(
      Arquivos().Abre(sCaminho, {Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::CriaNovo}, &m_arquivo),
      sCaminho);
}

CArquivoNovo::~CArquivoNovo() {
  m_arquivo.reset();
  if (!m_bConcluido) {
    static_cast<void>(plataforma::Arquivos().Apaga(m_sCaminho));
  }
}

void CArquivoNovo::Conclui() {
  ExigeNovo(m_arquivo->Descarrega(), m_sCaminho);
  m_bConcluido = true;
}

std::uint64_t CopiaDados(CArquivoEmExame &origem, std::uint64_t uiInicio, std::uint64_t qtd,
                         const std::optional<CabecalhoNovo> &cabecalho, const CString &sNovo) {
  CArquivoNovo novo(sNovo);
  const std::uint64_t uiDestino = cabecalho ? kTamanhoCabecalho : 0;
  std::vector<char> peca(static_cast<std::size_t>(std::min<std::uint64_t>(kPeca, qtd)));
  std::uint64_t uiCrc = 0;
  for (std::uint64_t uiFeitos = 0; uiFeitos < qtd;) {
    const auto cb = static_cast<std::size_t>(std::min<std::uint64_t>(peca.size(), qtd - uiFeitos));
    Exige(origem.Le(uiInicio + uiFeitos, peca.data(), cb));
    ExigeNovo(novo.Arquivo().Grava(uiDestino + uiFeitos, peca.data(), cb), sNovo);
    uiCrc = CalculaCrc64(peca.data(), cb, uiCrc);
    uiFeitos += cb;
  }
  if (cabecalho) {
    const RegVersaoArquivo versao = MontaRegVersao();
    const RegCabecalhoArquivo registro = MontaRegCabecalho(cabecalho->uiCodigoInstalacao, cabecalho->sNome, uiCrc);
    ExigeNovo(novo.Arquivo().Grava(0, &versao, sizeof(versao)), sNovo);
    ExigeNovo(novo.Arquivo().Grava(kPosicaoRegCabecalho, &registro, sizeof(registro)), sNovo);
  }
  origem.ConfereQueNaoMudou();
  novo.Conclui();
  return uiDestino + qtd;
}
