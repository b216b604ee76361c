#ifndef KALVO_TESTS_APOIO_ARQUIVOSDECORADO_H
#define KALVO_TESTS_APOIO_ARQUIVOSDECORADO_H

#include <atomic>
#include <mutex>
#include <optional>

#include "core/platform/SistemaArquivos.h"

namespace apoio {

/// Forwards every operation to another open file; a test double overrides what it changes.
class ArquivoDecorado : public plataforma::IArquivoAberto {
public:
  explicit ArquivoDecorado(std::unique_ptr<plataforma::IArquivoAberto> base) : m_base(std::move(base)) {}

  plataforma::FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override;
  plataforma::FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override;
  plataforma::FalhaArquivo Tamanho(std::uint64_t *tamanho) override;
  plataforma::FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override;
  plataforma::FalhaArquivo UltimaEscrita(std::uint64_t *ticks) override;
  plataforma::FalhaArquivo Descarrega() override;

private:
  std::unique_ptr<plataforma::IArquivoAberto> m_base;
};

/// Forwards every operation to another file system, which must outlive it.
class ArquivosDecorado : public plataforma::ISistemaArquivos {
public:
  explicit ArquivosDecorado(plataforma::ISistemaArquivos &base) : m_base(base) {}

  plataforma::FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                                std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override;
  bool Existe(const CString &caminho) override;
  bool SomenteLeitura(const CString &caminho) override;
  plataforma::FalhaArquivo TamanhoDe(const CString &caminho, std::uint64_t *tamanho) override;
  plataforma::FalhaArquivo Apaga(const CString &caminho) override;
  plataforma::FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override;
  plataforma::FalhaArquivo Lista(const CString &diretorio, const CString &mascara,
                                 std::vector<CString> *nomes) override;

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
  kOpTodas = 511,
};

/// Which operation fails, and how.
struct PlanoFalha {
  unsigned operacoes = kOpTodas;                                  ///< kinds that count
  CString trecho{};                                               ///< only paths that contain this text count
  std::size_t enesima = 1;                                        ///< the first counted operation is 1
  bool bPersistente = false;                                      ///< that one and all after it, else it alone
  plataforma::FalhaArquivo falha = plataforma::FalhaWin32(1117);  ///< hard I/O error unless told otherwise
  std::optional<std::size_t> gravaAntes{};                        ///< a failing write writes so many bytes first
  void (*aoFalhar)() = nullptr;                                   ///< runs first; it may throw or fault instead
};

/// Makes the N-th operation fail without carrying it out. Unarmed it only forwards. It must outlive the files it opens.
/// Any thread may call, several at once.
///
/// The usual loop: for N = 1, 2, ... arm with N, run the operation under test, check what it left; stop at the first N
/// at which Disparou() stays false.
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

  plataforma::FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                                std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override;
  plataforma::FalhaArquivo TamanhoDe(const CString &caminho, std::uint64_t *tamanho) override;
  plataforma::FalhaArquivo Apaga(const CString &caminho) override;
  plataforma::FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override;
  plataforma::FalhaArquivo Lista(const CString &diretorio, const CString &mascara,
                                 std::vector<CString> *nomes) override;

private:
  class Arquivo;

  /// Counts one operation; the failure it shall have, or none.
  plataforma::FalhaArquivo Passa(Operacao operacao, const CString &caminho);
  /// Hands over a failure, or what the plan has in its place. Called without the mutex: it may not come back.
  plataforma::FalhaArquivo Injeta(const plataforma::FalhaArquivo &falha) const;
  /// How much of a failing write of `qtd` bytes is written nevertheless.
  std::size_t Prefixo(std::size_t qtd) const;

  mutable std::mutex m_mutex;
  std::optional<PlanoFalha> m_plano;
  std::size_t m_vistas = 0;
  bool m_bDisparou = false;
  std::atomic<int> m_iAbertos{0};
};

}  // namespace apoio

#endif
