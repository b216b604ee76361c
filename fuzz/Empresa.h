#ifndef KALVO_FUZZ_EMPRESA_H
#define KALVO_FUZZ_EMPRESA_H

#include <map>
#include <optional>

#include "core/platform/Plataforma.h"
#include "fuzz/Entrada.h"
#include "fuzz/Referencia.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ValoresProprios.h"
#include "vehicles/BaseVeiculos.h"

namespace fuzz {

inline constexpr char kVeiculos[] = "DFVEIC.DAT";
inline constexpr char kVersao[] = "DFVEIVS.DAT";
inline constexpr char kControle[] = "QZDATABASE_FILE_CTRL.DAT";

/// The files of the directory that are there, by name.
using Pasta = std::map<std::string, std::string>;

/// A company of its own, with headers off or on, in which every wait is over at once.
class CEmpresa : public apoio::EmpresaTeste {
public:
  explicit CEmpresa(bool bCabecalhos, const Pasta &pasta = {}) : m_bCabecalhos(bCabecalhos), m_chave(bCabecalhos) {
    for (const auto &[sNome, sBytes] : pasta) {
      Escreve(sNome, sBytes);
    }
  }

  HRESULT Abre(CBaseVeiculos *pBase) const { return pBase->Inicializa(Codigo(), 7, 42); }

  /// Nothing for a file that is not there.
  std::optional<std::string> Bytes(const char *lpNome) const {
    return Existe(lpNome) ? std::optional(Le(lpNome)) : std::nullopt;
  }

  /// The data of a file that is closed; a header must hold, and stand in front of any data where headers are on. No
  /// data without a file.
  std::string Dados(const char *lpNome) const {
    const ArquivoExaminado exame = Examina(lpNome, Bytes(lpNome).value_or(""), m_bCabecalhos);
    ExigeCodigo(exame.hr, codigos::kOk, "the header on disk");
    Exige(exame.bTemCabecalho || !m_bCabecalhos || exame.sDados.empty(), "a header on disk");
    return exame.sDados;
  }

  const bool m_bCabecalhos;

private:
  apoio::ChaveCabecalho m_chave;
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
};

}  // namespace fuzz

#endif
