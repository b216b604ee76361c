#ifndef KALVO_CLIENT_QZVEICULOSERROS_H
#define KALVO_CLIENT_QZVEICULOSERROS_H

// Result codes of the vehicle service in plain words, and the exception that carries one.

#include <windows.h>

#include "QZVeiculosPadrao.h"

struct CQZTextoErro {
  std::uint32_t uiCodigo;
  const char *pTexto;
};

/// Texts are Windows-1252, written as octal escapes so that the header means the same to every compiler whatever source
/// character set it assumes.
inline constexpr std::array kTextosErro{
    CQZTextoErro{0x80004002U, "o objeto n\343o oferece a interface de ve\355culos"},
    CQZTextoErro{0x80004003U, "ponteiro nulo"},
    CQZTextoErro{0x80004005U, "falha n\343o especificada"},
    CQZTextoErro{0x80010106U, "a thread j\341 est\341 em um apartamento de outro tipo"},
    CQZTextoErro{0x80010108U, "o objeto foi desligado do servidor; crie outro"},
    CQZTextoErro{0x80040111U, "a classe n\343o est\341 dispon\355vel no servidor"},
    CQZTextoErro{0x80040154U, "a classe QZDF_Veiculos n\343o est\341 registrada neste computador"},
    CQZTextoErro{0x80040155U, "a interface IQZDF_Veiculos n\343o est\341 registrada: falta a biblioteca de proxy"},
    CQZTextoErro{0x800401F0U, "o COM n\343o foi iniciado nesta thread"},
    CQZTextoErro{0x80043E8CU, "posi\347\343o inv\341lida dentro de um arquivo da base"},
    CQZTextoErro{0x80043E95U, "um arquivo da base terminou antes do esperado"},
    CQZTextoErro{0x80043EA7U, "falha de leitura ou grava\347\343o do disco"},
    CQZTextoErro{0x80043EB7U, "arquivo da base n\343o encontrado"},
    CQZTextoErro{0x80043EBFU, "caminho do arquivo inv\341lido"},
    CQZTextoErro{0x80043EC7U, "arquivos demais abertos no servidor"},
    CQZTextoErro{0x80043ED0U, "acesso ao arquivo da base negado"},
    CQZTextoErro{0x80043ED1U, "o arquivo da base est\341 marcado como somente leitura"},
    CQZTextoErro{0x80043EE2U, "arquivo da base inv\341lido"},
    CQZTextoErro{0x80043EE5U, "o diret\363rio da base est\341 cheio"},
    CQZTextoErro{0x80043EEEU, "o arquivo da base est\341 em uso por outro processo"},
    CQZTextoErro{0x80043F00U, "o arquivo da base est\341 bloqueado por outro processo"},
    CQZTextoErro{0x80043F08U, "disco cheio"},
    CQZTextoErro{0x80043F10U, "o arquivo da base n\343o p\364de ser aberto"},
    CQZTextoErro{0x8004EA61U, "exce\347\343o interna do servidor"},
    CQZTextoErro{0x8004EA62U, "o servidor ficou sem mem\363ria"},
    CQZTextoErro{0x8004EA63U, "exce\347\343o da biblioteca do servidor"},
    CQZTextoErro{0x8004EA64U, "o servidor ficou sem mem\363ria"},
    CQZTextoErro{0x8004EA65U, "exce\347\343o padr\343o no servidor"},
    CQZTextoErro{0x8004EA66U, "exce\347\343o desconhecida no servidor"},
    CQZTextoErro{0x8004EAC5U,
                 "falha de m\341quina no servidor (viola\347\343o de acesso); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAC6U,
                 "falha de m\341quina no servidor (limite de vetor excedido); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAC7U, "falha de m\341quina no servidor (ponto de parada); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAC8U, "falha de m\341quina no servidor (dado desalinhado); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAC9U, "falha de m\341quina no servidor (operando denormal); solte o objeto e crie outro"},
    CQZTextoErro{
        0x8004EACAU,
        "falha de m\341quina no servidor (divis\343o por zero em ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EACBU,
                 "falha de m\341quina no servidor (resultado inexato em ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{
        0x8004EACCU,
        "falha de m\341quina no servidor (opera\347\343o inv\341lida em ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EACDU,
                 "falha de m\341quina no servidor (estouro em ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EACEU,
                 "falha de m\341quina no servidor (pilha de ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EACFU,
                 "falha de m\341quina no servidor (estouro negativo em ponto flutuante); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD0U, "falha de m\341quina no servidor (p\341gina de guarda); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD1U, "falha de m\341quina no servidor (instru\347\343o ilegal); solte o objeto e crie outro"},
    CQZTextoErro{
        0x8004EAD2U,
        "falha de m\341quina no servidor (falha ao ler uma p\341gina de mem\363ria); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD3U, "falha de m\341quina no servidor (divis\343o por zero); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD4U, "falha de m\341quina no servidor (estouro de inteiro); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD5U,
                 "falha de m\341quina no servidor (disposi\347\343o inv\341lida); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD6U,
                 "falha de m\341quina no servidor (identificador inv\341lido); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD7U,
                 "falha de m\341quina no servidor (exce\347\343o sem continua\347\343o); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD8U,
                 "falha de m\341quina no servidor (instru\347\343o privilegiada); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EAD9U, "falha de m\341quina no servidor (passo a passo); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EADAU, "falha de m\341quina no servidor (estouro da pilha); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EADBU,
                 "falha de m\341quina no servidor (consolida\347\343o da pilha); solte o objeto e crie outro"},
    CQZTextoErro{0x8004EE47U, "falha de m\341quina no servidor; solte o objeto e crie outro"},
    CQZTextoErro{0x80070005U, "acesso negado"},
    CQZTextoErro{0x8007000EU, "mem\363ria insuficiente"},
    CQZTextoErro{0x80070057U, "par\342metro inv\341lido"},
    CQZTextoErro{0x800706BAU, "o servidor de ve\355culos n\343o est\341 dispon\355vel"},
    CQZTextoErro{0x800706BEU, "o servidor terminou durante a chamada"},
    CQZTextoErro{0x800706F4U, "ponteiro nulo em um par\342metro"},
    CQZTextoErro{0x80080005U, "o servidor de ve\355culos n\343o p\364de ser iniciado"},
    CQZTextoErro{0x80080008U, "o servidor de ve\355culos estava terminando; crie o objeto de novo"},
    CQZTextoErro{0x810809C7U, "a base de ve\355culos foi gravada por uma vers\343o mais nova do servidor"},
    CQZTextoErro{0x810809CFU, "o c\363digo da empresa est\341 vazio"},
    CQZTextoErro{0x810809D6U, "o arquivo reescrito n\343o p\364de ser posto no lugar do original"},
    CQZTextoErro{0x810809D8U, "o arquivo de ve\355culos n\343o cont\351m um n\372mero inteiro de registros"},
    CQZTextoErro{0x810809D9U, "posi\347\343o zero n\343o pode ser lida: a primeira posi\347\343o \351 1"},
    CQZTextoErro{0x810809DAU, "posi\347\343o al\351m do \372ltimo registro"},
    CQZTextoErro{0x810809DBU, "posi\347\343o de grava\347\343o al\351m do \372ltimo registro: use 0 para incluir"},
    CQZTextoErro{0x810809E3U, "o arquivo n\343o est\341 aberto; a base ainda n\343o tem registros"},
    CQZTextoErro{0x810809E6U, "a c\363pia offline do arquivo n\343o p\364de ser apagada"},
    CQZTextoErro{0x810809E7U, "o arquivo de vers\343o tem tamanho errado"},
    CQZTextoErro{0x810809F1U, "m\341scara de nomes de arquivo sem o caractere '?'"},
    CQZTextoErro{0x810809F2U, "um arquivo da base n\343o p\364de ser apagado"},
    CQZTextoErro{0x81080A3EU, "o cabe\347alho do arquivo \351 de vers\343o desconhecida"},
    CQZTextoErro{0x81080A3FU, "o cabe\347alho do arquivo est\341 danificado"},
    CQZTextoErro{0x81080A40U, "o arquivo pertence a outra instala\347\343o"},
    CQZTextoErro{0x81080A42U, "os registros do arquivo n\343o conferem com o cabe\347alho"},
    CQZTextoErro{0x81080A43U, "o cabe\347alho pertence a outro arquivo"},
    CQZTextoErro{0x81080A50U, "um arquivo criado pelo servidor desapareceu; restaure-o de uma c\363pia"},
};

/// The codes of a machine fault caught inside the server. The object has lost its register: let it go and create
/// another.
inline bool EhFalhaDeMaquina(HRESULT hr) {
  const auto uiCodigo = static_cast<std::uint32_t>(hr);
  return (uiCodigo >= 0x8004EAC5U && uiCodigo <= 0x8004EADBU) || uiCodigo == 0x8004EE47U;
}

/// What the operating system says of a result code or of one of its error numbers, Windows-1252, in the user's
/// language; empty when it does not know it.
inline std::string TextoDoSistema(std::uint32_t uiCodigo) {
  std::array<wchar_t, 512> aTexto{};
  std::array<char, aTexto.size()> a1252{};
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
                 uiCodigo, 0, aTexto.data(), static_cast<DWORD>(aTexto.size()), nullptr);
  WideCharToMultiByte(1252, 0, aTexto.data(), -1, a1252.data(), static_cast<int>(a1252.size()), nullptr, nullptr);
  std::string sTexto = a1252.data();
  sTexto.erase(sTexto.find_last_not_of(" .\r\n") + 1);
  return sTexto;
}

/// One sentence without a final period, Windows-1252: Portuguese for the codes of the table, for others what the system
/// says.
inline std::string DescricaoErroVeiculos(HRESULT hr) {
  const auto uiCodigo = static_cast<std::uint32_t>(hr);
  for (const CQZTextoErro &erro : kTextosErro) {
    if (erro.uiCodigo == uiCodigo) {
      return erro.pTexto;
    }
  }
  // What is left of 0x8004xxxx below the server's own ranges carries an operating-system error number.
  if ((uiCodigo & 0xFFFF0000U) == 0x80040000U && (uiCodigo & 0xFFFFU) < 0x3E80U) {
    const std::string sTexto = TextoDoSistema(uiCodigo & 0xFFFFU);
    return "erro " + std::to_string(uiCodigo & 0xFFFFU) + " do sistema operacional no servidor" +
           (sTexto.empty() ? "" : ": " + sTexto);
  }
  const std::string sTexto = TextoDoSistema(uiCodigo);
  return sTexto.empty() ? "c\363digo de resultado sem descri\347\343o" : sTexto;
}

/// "0x810809DA"
inline std::string TextoCodigoErro(HRESULT hr) {
  std::array<char, 11> aTexto{};
  std::snprintf(aTexto.data(), aTexto.size(), "0x%08X", static_cast<unsigned>(hr));
  return aTexto.data();
}

/// A failed operation: its code and "0x810809DA: <description>".
class CQZErroVeiculos : public std::exception {
public:
  explicit CQZErroVeiculos(HRESULT hr) : CQZErroVeiculos(hr, DescricaoErroVeiculos(hr)) {}
  CQZErroVeiculos(HRESULT hr, const std::string &sDescricao)
      : m_hr(hr), m_sTexto(TextoCodigoErro(hr) + ": " + sDescricao) {}

  HRESULT GetHR() const noexcept { return m_hr; }
  const char *what() const noexcept override { return m_sTexto.c_str(); }

private:
  HRESULT m_hr;
  std::string m_sTexto;
};

#endif
