#ifndef KALVO_VEHICLES_BASEVEICULOS_H
#define KALVO_VEHICLES_BASEVEICULOS_H

#include "core/conx/QZBaseParaRotinas.h"
#include "core/platform/CArray.h"
#include "core/platform/SecaoCompartilhada.h"
#include "core/qzdatabase/banco/QZDataBaseFacade.h"
#include "vehicles/PosicoesAchadas.h"
#include "vehicles/QZDataBaseVeiculos.h"
#include "vehicles/RegVeiculo.h"
#include "vehicles/RegVeiculoPS.h"

/// The register of one company's vehicles: the business layer between the service object and the record files.
///
/// All operations return a result code and report failing inner calls through the trace. Before a successful
/// Inicializa, and after Finaliza, they fail with 0x810809E3 and leave their outputs as their first step sets them.
///
/// The operations may run on several threads at once; Inicializa and Finaliza must not run beside any other call on the
/// same object (TravaCicloDeVida). Positions are 1-based.
class CBaseVeiculos : public CQZDataBaseFacade<CQZDataBase_Veiculos, CQZBaseParaRotinas> {
public:
  CBaseVeiculos() = default;
  ~CBaseVeiculos() override;

  /// Keeps lifecycle calls apart from the operations of this object: whoever calls Inicializa or Finaliza holds it
  /// exclusively, whoever calls an operation or asks for company, user and session holds it shared. Taken by the
  /// caller, outside any frame that a machine fault may abandon.
  plataforma::SecaoCompartilhada &TravaCicloDeVida() { return m_travaCicloDeVida; }

  /// Writes one vehicle: at `*pPos` from 1 to the number of records it overwrites, at 0 it appends and `*pPos` receives
  /// the new position. On failure `*pPos` is unchanged. No field is validated.
  [[nodiscard]] HRESULT Grava(LONG *pPos, const tagREG_VEICULOPS &Veiculo);

  /// Finds the first vehicle whose code, or else whose plate, matches the text (cut to the field's width; '*' and '?'
  /// make it a pattern; an empty text matches every vehicle). Not found is success with `*pPos` 0 and a zero record.
  [[nodiscard]] HRESULT Existe(const char *lpCodigo, std::uint32_t *pPos, tagREG_VEICULOPS *pVeiculo);

  /// Positions of all vehicles that pass the filter, ascending. The array comes from AlocaTarefa and belongs to the
  /// caller; with no hits it is null. On failure the result is all zero.
  [[nodiscard]] HRESULT BuscaPonteiros(const tagREG_FILTRO_VEICULOSPS &Filtro, tagRESULTADO_BUSCA_VEICULOS *pResultado);

  /// Reads `iQtd` vehicles by position. The outputs are zeroed first; on failure those already read stay filled.
  [[nodiscard]] HRESULT LePonteiros(std::uint32_t iQtd, const LONG *Ponteiros, tagREG_VEICULOPS *pVeiculos);

  /// Number of records of the file.
  [[nodiscard]] HRESULT GetQuantidadeRegistros(std::uint32_t *pQtd);

  /// The scan under the searches: positions and records that pass the filter, in ascending order; either array may be
  /// null. Records appended after the start are not visited.
  [[nodiscard]] HRESULT InternalGetRegs(const tagREG_FILTRO_VEICULOSPS &Filtro, CArray<LONG> *aPonteiros,
                                        CArray<RegVeiculo> *aRegistros);

  /// The filter test for one record.
  static bool AtendeFiltro(const RegVeiculo &reg, const tagREG_FILTRO_VEICULOSPS &Filtro);

protected:
  [[nodiscard]] HRESULT OnInicializa() override;

private:
  /// Calls `acha(uiPosicao, reg)` for each vehicle that passes the filter, in ascending order, until it returns false.
  /// Where `puiTodas` is given and every vehicle passes, it receives how many they are instead.
  template <typename F>
  [[nodiscard]] HRESULT Procura(const tagREG_FILTRO_VEICULOSPS &Filtro, std::uint64_t *puiTodas, F &&acha);
  [[nodiscard]] HRESULT ProcuraPosicoes(const tagREG_FILTRO_VEICULOSPS &Filtro, CPosicoesAchadas *pAchadas);
  /// The first vehicle that passes; 0 and a record that stays as it is when there is none.
  [[nodiscard]] HRESULT ProcuraPrimeiro(const tagREG_FILTRO_VEICULOSPS &Filtro, std::uint32_t *pPos,
                                        tagREG_VEICULOPS *pVeiculo);
  /// The record count, read under the database's lock; `rastro` is the caller's.
  [[nodiscard]] HRESULT QuantidadeSobTrava(const CQZRastro &rastro, std::uint64_t *puiQtd) const;

  /// Brings the stored base to the version that this program writes, on the files themselves, unless the company's
  /// database is already open in this process.
  [[nodiscard]] HRESULT ExecutaConversao();
  [[nodiscard]] HRESULT ConverteSobTrava();
  [[nodiscard]] HRESULT ConverteBaseV01();

  plataforma::SecaoCompartilhada m_travaCicloDeVida;
};

#endif
