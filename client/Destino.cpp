#include "client/Destino.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "client/Argumentos.h"
#include "client/Codificacao.h"
#include "client/Console.h"

namespace {

constexpr wchar_t kParcial[] = L".parcial";

std::string LeEntrada() {
  EntradaEmBytes();
  std::string sConteudo;
  std::array<char, 65536> aBloco;
  while (const std::size_t uiLidos = std::fread(aBloco.data(), 1, aBloco.size(), stdin)) {
    sConteudo.append(aBloco.data(), uiLidos);
  }
  if (std::ferror(stdin) != 0) {
    throw std::runtime_error("a entrada padrão não pôde ser lida"_pt);
  }
  return sConteudo;
}

}  // namespace

CDestino::CDestino(std::optional<ECodificacao> eQual) : m_eQual(eQual) {
  if (m_eQual) {
    SaidaEmBytes();
    EscreveBytes(MarcaDaCodificacao(*m_eQual));
  }
}

CDestino::CDestino(const std::string &sArquivo, bool bSubstitui, std::optional<ECodificacao> eQual)
    : m_eQual(eQual), m_sNome(sArquivo), m_arquivo(De1252Para16(sArquivo)) {
  std::error_code erro;
  if (!bSubstitui && std::filesystem::exists(m_arquivo, erro)) {
    throw CErroUso("o arquivo já existe: "_pt + m_sNome + " (com --substitui é trocado)"_pt);
  }
  m_parcial = m_arquivo;
  m_parcial += kParcial;
  m_fluxo.open(m_parcial, m_eQual ? std::ios::out | std::ios::binary : std::ios::out);
  Verifica(m_fluxo.is_open());
  if (m_eQual) {
    EscreveBytes(MarcaDaCodificacao(*m_eQual));
  }
}

CDestino::~CDestino() {
  if (m_fluxo.is_open()) {
    m_fluxo.close();
    std::error_code erro;
    std::filesystem::remove(m_parcial, erro);
  }
}

void CDestino::Escreve(std::string_view sTexto) {
  EscreveBytes(m_eQual ? Codifica(sTexto, *m_eQual) : std::string(sTexto));
}

void CDestino::EscreveBytes(std::string_view sBytes) {
  if (m_sNome.empty()) {
    ::Escreve(sBytes);
    return;
  }
  m_fluxo.write(sBytes.data(), static_cast<std::streamsize>(sBytes.size()));
  Verifica(m_fluxo.good());
}

void CDestino::Completa() {
  if (m_sNome.empty()) {
    return;
  }
  m_fluxo.flush();
  Verifica(m_fluxo.good());
  m_fluxo.close();
  std::error_code erro;
  std::filesystem::rename(m_parcial, m_arquivo, erro);
  if (erro) {
    std::error_code ignorado;
    std::filesystem::remove(m_parcial, ignorado);
  }
  Verifica(!erro);
}

void CDestino::Verifica(bool bCerto) const {
  if (!bCerto) {
    throw std::runtime_error("o arquivo não pôde ser gravado: "_pt + m_sNome);
  }
}

std::string LeBytes(const std::string &sArquivo) {
  if (sArquivo == "-") {
    return LeEntrada();
  }
  std::ifstream fluxo(std::filesystem::path(De1252Para16(sArquivo)), std::ios::binary);
  std::string sConteudo{std::istreambuf_iterator<char>(fluxo), std::istreambuf_iterator<char>()};
  if (!fluxo.is_open() || fluxo.bad()) {
    throw std::runtime_error("o arquivo não pôde ser lido: "_pt + sArquivo);
  }
  return sConteudo;
}
