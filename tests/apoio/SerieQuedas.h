#ifndef KALVO_TESTS_APOIO_SERIEQUEDAS_H
#define KALVO_TESTS_APOIO_SERIEQUEDAS_H

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// What is left of the files: everything, when only the process ended; after a power cut what was flushed, and of a
/// length that changed since then either the new one, with zeros where nothing was flushed, or the old one.
enum class Queda { DoProcesso, TamanhoMantido, TamanhoPerdido };

/// A call that ends before its N-th change of the disk, for N = 1, 2, ... and once after the last one, with each
/// outcome:
///
///   for (SerieQuedas serie; serie.Proxima();) {
///     (prepare)
///     serie.Roda(directory, [&] { (the call, which closes what it opens); });
///     (a new start and what it finds)
///   }
///
/// For the files of the directory the storage device keeps what they held at the last Descarrega. Names it keeps at
/// once: that a file was created, deleted or moved. What stood on disk before the call counts as flushed. For one
/// thread.
class SerieQuedas {
public:
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
  void Roda(const CString &sPasta, Chamada chama) {
    const auto daPasta = [&] {
      Conteudos conteudos;
      for (const auto &arquivo : std::filesystem::directory_iterator(CaminhoDoSistema(sPasta))) {
        conteudos[arquivo.path().string()] = LeArquivo(arquivo.path().string());
      }
      return conteudos;
    };
    Conteudos dispositivo = daPasta();
    std::optional<Conteudos> naQueda;
    ArquivosComFalha arquivos(*plataforma::ServicosDoSistema().arquivos);
    const auto nota = [&](Operacao operacao, auto anota) {
      arquivos.ArmaTambem({.operacoes = operacao, .bPersistente = true, .falha = {}, .aoFalhar = [&arquivos, anota] {
                             anota(CaminhoDoSistema(arquivos.CaminhoDoDisparo()));
                           }});
    };
    // An open may create the file. What is mapped changes without a call, and for the disk ends here too. Where the
    // process merely ends, the beginning of a write is done.
    constexpr unsigned kMudancas = kOpAbre | kOpGrava | kOpAjustaTamanho | kOpDescarrega | kOpApaga | kOpMove;
    arquivos.Arma({.operacoes = kMudancas, .enesima = m_uiMudanca, .gravaAntes = DoProcesso() ? 7 : 0, .aoFalhar = [&] {
                     naQueda = daPasta();
                   }});
    arquivos.ArmaTambem({.operacoes = kMudancas, .enesima = m_uiMudanca, .bPersistente = true});
    nota(kOpDescarrega, [&](const std::string &sCaminho) { dispositivo[sCaminho] = LeArquivo(sCaminho); });
    nota(kOpApaga, [&](const std::string &sCaminho) { dispositivo.erase(sCaminho); });
    nota(kOpMove, [&](const std::string &sCaminhos) {
      const std::size_t uiMeio = sCaminhos.find('\0');
      dispositivo[sCaminhos.substr(uiMeio + 1)] = dispositivo[sCaminhos.substr(0, uiMeio)];
      dispositivo.erase(sCaminhos.substr(0, uiMeio));
    });
    {
      const ServicosTrocados servicos(&arquivos);
      chama();
    }
    ASSERT_EQ(arquivos.Abertos(), 0);
    m_bCaiu = naQueda.has_value();
    for (auto &[sCaminho, sBytes] : m_bCaiu ? *naQueda : daPasta()) {
      std::string &sFica = DoProcesso() ? sBytes : dispositivo[sCaminho];
      sFica.resize(m_eQueda == Queda::TamanhoPerdido ? sFica.size() : sBytes.size());
      EscreveArquivo(sCaminho, sFica);
    }
  }

private:
  using Conteudos = std::map<std::string, std::string>;  ///< by path

  Queda m_eQueda = Queda::DoProcesso;
  std::size_t m_uiMudanca = 0;
  bool m_bCaiu = false;
  std::optional<testing::ScopedTrace> m_rastro;
};

}  // namespace apoio

#endif
