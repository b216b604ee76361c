#ifndef KALVO_TESTS_APOIO_ARQUIVOSCOMFALHA_H
#define KALVO_TESTS_APOIO_ARQUIVOSCOMFALHA_H

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/platform/Arquivos.h"

namespace apoio {

using plataforma::FalhaArquivo;

/// Kinds of operations that can be made to fail; a mask of them.
enum Operacao : unsigned {
  kOpAbre = 1,
  kOpLe = 2,
  kOpGrava = 4,
  kOpTamanho = 8,         ///< of an open file or of a path, and the time of the last write
  kOpAjustaTamanho = 16,  ///< and the mapping of a file into memory
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
  FalhaArquivo falha = plataforma::FalhaWin32(1117);  ///< hard I/O error; none: it is carried out, after `aoFalhar`
  std::size_t gravaAntes = 0;                         ///< a failing write writes so many bytes first
  std::function<void()> aoFalhar{};                   ///< runs first; it may throw or fault instead
  std::size_t outra = 0;                              ///< one more that fails, after `enesima`
  /// The file's handle dies, as on a network share that goes away: it is closed, all further operations on it fail like
  /// the first, and so do as many openings.
  std::optional<std::size_t> morte{};
};

/// Makes the N-th operation on another file system, which must outlive it, fail without carrying it out. Unarmed it
/// only forwards. It must outlive the files it opens. Any thread may call, several at once.
/// SerieFalhas runs a call with each of its operations failing.
class ArquivosComFalha : public plataforma::IArquivos {
public:
  explicit ArquivosComFalha(plataforma::IArquivos &base) : m_base(base) {}

  /// Starts counting anew, with one plan. Dead handles stay dead.
  void Arma(const PlanoFalha &plano);
  /// One more plan, with a count of its own. Each operation is put to the plans in their order, up to the first that
  /// has it fail.
  void ArmaTambem(const PlanoFalha &plano);
  /// Nothing fails any more, openings neither; the counts stay.
  void Desarma();

  /// How many operations the first plan has counted.
  std::size_t Vistas() const { return m_vistas; }
  /// How many operations were made to fail, or had something run at them, since Arma.
  std::size_t Disparos() const { return m_disparos; }
  bool Disparou() const { return Disparos() != 0; }
  /// Of the last such operation; of a move both, with a zero byte between them. For its thread, while the plan runs.
  const CString &CaminhoDoDisparo() const { return m_sCaminhoDoDisparo; }
  /// How many of the files that it opened are open.
  std::ptrdiff_t Abertos() const;

  /// All bytes of a file, read through the handle that holds it where there is one; nothing when it is not there.
  std::optional<std::string> Conteudo(const CString &sCaminho);
  /// From now on all files were last written at this time, whatever is written: a change need not wait for the clock.
  void FixaUltimaEscrita(std::uint64_t ticks) { m_ultimaEscrita = ticks; }

  FalhaArquivo Abre(const CString &sCaminho, const plataforma::ModoAbertura &modo,
                    std::unique_ptr<plataforma::IArquivoAberto> *pArquivo) override;
  FalhaArquivo Existe(const CString &sCaminho, bool *pbExiste) override {
    *pbExiste = false;
    return Faz(kOpExiste, sCaminho, [&] { return m_base.Existe(sCaminho, pbExiste); });
  }
  bool SomenteLeitura(const CString &sCaminho) override { return m_base.SomenteLeitura(sCaminho); }
  FalhaArquivo TamanhoDe(const CString &sCaminho, std::uint64_t *puiTamanho) override {
    return Faz(kOpTamanho, sCaminho, [&] { return m_base.TamanhoDe(sCaminho, puiTamanho); });
  }
  FalhaArquivo Apaga(const CString &sCaminho) override {
    return Faz(kOpApaga, sCaminho, [&] { return m_base.Apaga(sCaminho); });
  }
  /// Either path may be the one that counts; a zero byte cannot be part of a path.
  FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) override {
    return Faz(kOpMove, sOrigem + CString(1, '\0') + sDestino,
               [&] { return m_base.MoveSubstituindo(sOrigem, sDestino); });
  }
  FalhaArquivo Lista(const CString &sDiretorio, std::vector<CString> *pNomes) override {
    pNomes->clear();
    return Faz(kOpLista, sDiretorio, [&] { return m_base.Lista(sDiretorio, pNomes); });
  }

private:
  class Arquivo;
  struct PlanoArmado {
    PlanoFalha plano;
    std::size_t vistas = 0;
  };

  using Escreve = std::function<void(std::size_t)>;

  /// Counts one operation; the failure it shall have, or none. Before a failure `gravaAntes` is called with the number
  /// of bytes that are written nevertheless, then what the plan has to run, which may not come back.
  FalhaArquivo Passa(Operacao operacao, const CString &sCaminho, Arquivo *pAberto = nullptr,
                     const Escreve &gravaAntes = nullptr);

  /// Carries an operation out, if it shall not fail.
  template <class Chamada>
  FalhaArquivo Faz(Operacao operacao, const CString &sCaminho, Chamada chama) {
    const FalhaArquivo injetada = Passa(operacao, sCaminho);
    return injetada ? injetada : chama();
  }

  plataforma::IArquivos &m_base;
  mutable std::mutex m_mutex;
  std::vector<PlanoArmado> m_planos;
  std::atomic<std::size_t> m_vistas{0};
  std::atomic<std::size_t> m_disparos{0};
  CString m_sCaminhoDoDisparo;
  std::size_t m_aberturasPerdidas = 0;
  FalhaArquivo m_falhaMorte{};
  std::set<Arquivo *> m_abertos;
  std::atomic<std::uint64_t> m_ultimaEscrita{0};
};

}  // namespace apoio

#endif
