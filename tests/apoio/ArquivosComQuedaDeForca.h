#ifndef KALVO_TESTS_APOIO_ARQUIVOSCOMQUEDADEFORCA_H
#define KALVO_TESTS_APOIO_ARQUIVOSCOMQUEDADEFORCA_H

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// What is left of the files: everything, when only the process ended; after a power cut what was flushed, and of a
/// length that changed since then either the new one, with zeros where nothing was flushed, or the old one.
enum class Queda { DoProcesso, TamanhoMantido, TamanhoPerdido };

/// A file system on a storage device that keeps of each file what it held at the last Descarrega. Names it keeps at
/// once: that a file was created, deleted or moved. What stood on disk before a file was first opened here counts as
/// flushed. For one thread.
class ArquivosComQuedaDeForca final : public ArquivosDecorado {
public:
  using ArquivosDecorado::ArquivosDecorado;

  /// How the next cut is. From the N-th operation on that would change the disk or the device, all of these fail: for
  /// the disk the process has ended. Where it merely ends, half of a write that is the N-th is done. 0 for none.
  void Prepara(Queda eQueda, std::size_t n = 0);
  bool Caiu() const { return m_uiLimite != 0 && m_uiMudancas >= m_uiLimite; }

  /// Puts every file on disk to what the device has, and begins anew. No file may be open.
  void CortaForca();

  FalhaArquivo Abre(const CString &sCaminho, const plataforma::ModoAbertura &modo,
                    std::unique_ptr<plataforma::IArquivoAberto> *pArquivo) override;
  FalhaArquivo Apaga(const CString &sCaminho) override;
  FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) override;

private:
  class Arquivo;

  /// A file's content, whatever its name.
  struct Conteudo {
    std::string atual;
    std::string descarregado;
  };

  void FixaMapas();
  FalhaArquivo Muda();

  std::map<CString, std::shared_ptr<Conteudo>> m_conteudos;  ///< by path
  std::map<Conteudo *, std::string_view> m_mapas;            ///< what is mapped into memory
  Queda m_eQueda = Queda::DoProcesso;
  std::size_t m_uiMudancas = 0;
  std::size_t m_uiLimite = 0;
};

/// A call that ends before its N-th change of the disk, for N = 1, 2, ... and once after the last one, with each
/// outcome from `ePrimeira` on:
///
///   for (SerieQuedas serie; serie.Proxima();) {
///     (prepare)
///     serie.Roda([&] { (the call, which closes what it opens); });
///     (a new start and what it finds)
///   }
class SerieQuedas {
public:
  explicit SerieQuedas(Queda ePrimeira = Queda::DoProcesso) : m_eQueda(ePrimeira) {}

  /// False when the series is over.
  bool Proxima() {
    if (m_uiMudanca != 0 && !m_bCaiu) {
      EXPECT_GT(m_uiMudanca, 1U) << "nothing that changes the disk";
      if (m_eQueda == Queda::TamanhoPerdido) {
        return false;
      }
      m_eQueda = m_eQueda == Queda::DoProcesso ? Queda::TamanhoMantido : Queda::TamanhoPerdido;
      m_uiMudanca = 0;
    }
    ++m_uiMudanca;
    const char *const lpQueda = m_eQueda == Queda::DoProcesso       ? "process ends"
                                : m_eQueda == Queda::TamanhoMantido ? "power cut, lengths kept,"
                                                                    : "power cut, lengths lost,";
    m_rastro.emplace(__FILE__, __LINE__, testing::Message() << lpQueda << " before change " << m_uiMudanca);
    return true;
  }

  /// The process merely ends.
  bool DoProcesso() const { return m_eQueda == Queda::DoProcesso; }

  template <class Chamada>
  void Roda(Chamada chama) {
    {
      const ServicosTrocados servicos(&m_forca);
      m_forca.Prepara(m_eQueda, m_uiMudanca);
      chama();
      m_bCaiu = m_forca.Caiu();
    }
    m_forca.CortaForca();
  }

private:
  ArquivosComQuedaDeForca m_forca{*plataforma::ServicosDoSistema().arquivos};
  Queda m_eQueda;
  std::size_t m_uiMudanca = 0;
  bool m_bCaiu = false;
  std::optional<testing::ScopedTrace> m_rastro;
};

}  // namespace apoio

#endif
