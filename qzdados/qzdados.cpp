// qzdados: a company's data files examined, listed and repaired without the server.

#include <cstdio>
#include <exception>
#include <new>

#include "client/Argumentos.h"
#include "client/BarraProgresso.h"
#include "client/Codificacao.h"
#include "client/Console.h"
#include "qzdados/Comandos.h"

namespace {

constexpr int kFalhou = 3;

/// Standard output and standard error, with a bar for long readings.
class CTelaConsole final : public ITela {
public:
  void Escreve(std::string_view sTexto) override {
    m_barra.Limpa();
    ::Escreve(sTexto);
  }
  void SaidaEmBytes() override { ::SaidaEmBytes(); }
  void EscreveErro(std::string_view sTexto) override {
    m_barra.Limpa();
    ::EscreveErro(sTexto);
  }
  void Progresso(std::uint64_t uiFeito, std::uint64_t uiTotal) override { m_barra.Mostra(uiFeito, uiTotal); }
  bool SaidaVisivel() const override { return m_bConsole; }

private:
  CBarraProgresso m_barra;
  bool m_bConsole = EhConsole(stdout);
};

int Executa(int iPalavras, char **pPalavras) {
  CTelaConsole tela;
  try {
    return ExecutaQzdados(PalavrasDoUsuario(iPalavras, pPalavras), tela);
  } catch (const CErroUso &erro) {
    tela.EscreveErro(std::string(erro.what()) + "\n");
    return kUsoErrado;
  } catch (const std::bad_alloc &) {
    tela.EscreveErro("memória insuficiente\n"_pt);
  } catch (const std::exception &erro) {
    tela.EscreveErro(std::string(erro.what()) + "\n");
  }
  return kFalhou;
}

}  // namespace

int main(int argc, char **argv) {
  const CPaginaConsole pagina;
  const int iCodigo = Executa(argc, argv);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    EscreveErro("a saída não pôde ser gravada\n"_pt);
    return kFalhou;
  }
  return iCodigo;
}
