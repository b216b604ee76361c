#ifndef KALVO_TESTS_APOIO_ARQUIVOSDECORADO_H
#define KALVO_TESTS_APOIO_ARQUIVOSDECORADO_H

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>

#include "core/platform/SistemaArquivos.h"

namespace apoio {

using plataforma::FalhaArquivo;

/// Forwards every operation to another file system, which must outlive it.
class ArquivosDecorado : public plataforma::ISistemaArquivos {
public:
  explicit ArquivosDecorado(plataforma::ISistemaArquivos &base) : m_base(base) {}

  FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                    std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override {
    return m_base.Abre(caminho, modo, arquivo);
  }
  FalhaArquivo Existe(const CString &caminho, bool *existe) override { return m_base.Existe(caminho, existe); }
  bool SomenteLeitura(const CString &caminho) override { return m_base.SomenteLeitura(caminho); }
  FalhaArquivo TamanhoDe(const CString &caminho, std::uint64_t *tamanho) override {
    return m_base.TamanhoDe(caminho, tamanho);
  }
  FalhaArquivo Apaga(const CString &caminho) override { return m_base.Apaga(caminho); }
  FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override {
    return m_base.MoveSubstituindo(origem, destino);
  }
  FalhaArquivo Lista(const CString &diretorio, const CString &mascara, std::vector<CString> *nomes) override {
    return m_base.Lista(diretorio, mascara, nomes);
  }

private:
  plataforma::ISistemaArquivos &m_base;
};

/// Kinds of operations that can be made to fail; a mask of them.
enum Operacao : unsigned {
  kOpAbre = 1,
  kOpLe = 2,
  kOpGrava = 4,
  kOpTamanho = 8,  ///< of an open file or of a path, and the time of the last write
  kOpAjustaTamanho = 16,
  kOpDescarrega = 32,
  kOpApaga = 64,
  kOpMove = 128,
  kOpLista = 256,
  kOpExiste = 512,
  kOpTodas = 1023,
};

/// Which operation fails, and how.
struct PlanoFalha {
  unsigned operacoes = kOpTodas;                      ///< kinds that count
  CString trecho{};                                   ///< only paths that contain this text count
  std::size_t enesima = 1;                            ///< the first counted operation is 1
  bool bPersistente = false;                          ///< that one and all after it, else it alone
  FalhaArquivo falha = plataforma::FalhaWin32(1117);  ///< hard I/O error unless told otherwise
  std::optional<std::size_t> gravaAntes{};            ///< a failing write writes so many bytes first
  void (*aoFalhar)() = nullptr;                       ///< runs first; it may throw or fault instead
};

/// Makes the N-th operation fail without carrying it out. Unarmed it only forwards. It must outlive the files it opens.
/// Any thread may call, several at once.
/// SerieFalhas runs a call with each of its operations failing.
class ArquivosComFalha final : public ArquivosDecorado {
public:
  using ArquivosDecorado::ArquivosDecorado;

  /// Starts counting anew.
  void Arma(const PlanoFalha &plano);
  /// Nothing fails any more; the counts stay.
  void Desarma();

  /// How many counted operations there were since Arma.
  std::size_t Vistas() const;
  /// True when at least one operation was made to fail since Arma.
  bool Disparou() const;
  /// How many of the files that it opened are open.
  int Abertos() const { return m_iAbertos; }

  FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                    std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override;
  FalhaArquivo Existe(const CString &caminho, bool *existe) override;
  FalhaArquivo TamanhoDe(const CString &caminho, std::uint64_t *tamanho) override;
  FalhaArquivo Apaga(const CString &caminho) override;
  FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override;
  FalhaArquivo Lista(const CString &diretorio, const CString &mascara, std::vector<CString> *nomes) override;

private:
  class Arquivo;

  /// Counts one operation; the failure it shall have, or none. Before a failure `gravaAntes` is called with the number
  /// of bytes that are written nevertheless, then what the plan has to run, which may not come back.
  FalhaArquivo Passa(Operacao operacao, const CString &caminho,
                     const std::function<void(std::size_t)> &gravaAntes = nullptr);

  mutable std::mutex m_mutex;
  std::optional<PlanoFalha> m_plano;
  std::size_t m_vistas = 0;
  bool m_bDisparou = false;
  std::atomic<int> m_iAbertos{0};
};

}  // namespace apoio

#endif
