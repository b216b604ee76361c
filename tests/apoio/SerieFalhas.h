#ifndef KALVO_TESTS_APOIO_SERIEFALHAS_H
#define KALVO_TESTS_APOIO_SERIEFALHAS_H

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "tests/apoio/ArquivosComFalha.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"

namespace apoio {

/// From one point of a series to the next. The host build tries every one; where a run takes fifty times as long, a
/// sample of them shows that the system's own file layer makes no difference.
#ifdef _WIN32
inline constexpr std::size_t kPasso = 5;
#else
inline constexpr std::size_t kPasso = 1;
#endif

/// Which of the failures of a series last: that one operation, or that one and all after it; Todas is first the one,
/// then the other, then two operations soon after each other, such as a write and its undoing.
enum class Duracao { Passageira, Persistente, Todas };

/// A call with its N-th file operation failing, for N = 1, 2, ... until there are no more operations:
///
///   for (SerieFalhas serie(falhas, plano); serie.Proxima();) {
///     (prepare)
///     const HRESULT hr = serie.Roda([&] { return (the call); });
///     (check what it left)
///   }
class SerieFalhas {
public:
  /// Of the plan everything counts but `enesima`, `outra` and `bPersistente`.
  SerieFalhas(ArquivosComFalha &falhas, PlanoFalha plano, Duracao eDuracao = Duracao::Passageira)
      : m_falhas(falhas),
        m_plano(std::move(plano)),
        m_eAgora(eDuracao == Duracao::Todas ? Duracao::Passageira : eDuracao),
        m_eUltima(eDuracao) {
    m_plano.enesima = 0;
  }

  /// False when the series is over.
  bool Proxima() {
    if (m_eAgora == Duracao::Todas && m_disparos == 2 && m_plano.outra < m_plano.enesima + kAlcance) {
      ++m_plano.outra;
    } else {
      if (m_plano.enesima != 0 && m_disparos == 0) {
        EXPECT_GT(m_plano.enesima, 1U) << "nothing that could fail";
        if (m_eAgora == m_eUltima) {
          return false;
        }
        m_eAgora = m_eAgora == Duracao::Passageira ? Duracao::Persistente : Duracao::Todas;
        m_plano.enesima = 0;
      }
      m_plano.enesima += m_plano.enesima == 0 ? 1 : kPasso;
      m_plano.bPersistente = m_eAgora == Duracao::Persistente;
      m_plano.outra = m_eAgora == Duracao::Todas ? m_plano.enesima + 1 : 0;
    }
    m_disparos = 0;
    m_rastro.emplace(__FILE__, __LINE__,
                     testing::Message() << "fault " << m_plano.enesima << (m_plano.bPersistente ? " and all after" : "")
                                        << ", and " << m_plano.outra);
    return true;
  }

  template <class Chamada>
  auto Roda(Chamada chama) {
    m_falhas.Arma(m_plano);
    auto resultado = chama();
    m_disparos = m_falhas.Disparos();
    m_falhas.Desarma();
    return resultado;
  }

  bool Disparou() const { return m_disparos != 0; }
  bool Persistente() const { return m_plano.bPersistente; }
  /// One failure and no more.
  bool Passageira() const { return m_eAgora == Duracao::Passageira; }

private:
  /// How far apart two failures are: a write, its undoing, and a look whether the file's handle has died.
  static constexpr std::size_t kAlcance = 7;

  ArquivosComFalha &m_falhas;
  PlanoFalha m_plano;
  Duracao m_eAgora;
  Duracao m_eUltima;
  std::size_t m_disparos = 0;
  std::optional<testing::ScopedTrace> m_rastro;
};

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
    m_rastro.emplace(__FILE__, __LINE__,
                     testing::Message() << "outcome " << static_cast<int>(m_eQueda) << ", change " << m_uiMudanca);
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
    arquivos.Arma(
        {.operacoes = kMudancas, .enesima = m_uiMudanca, .gravaAntes = DoProcesso() ? 7U : 0U, .aoFalhar = [&] {
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
