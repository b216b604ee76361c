#ifndef KALVO_VEHICLES_QZDATABASEVEICULOS_H
#define KALVO_VEHICLES_QZDATABASEVEICULOS_H

#include "core/qzdatabase/arquivo/QZFile.h"
#include "core/qzdatabase/banco/QZDataBase.h"
#include "core/qzdatabase/banco/QZDataBaseFacade.h"
#include "vehicles/RegVeiculo.h"

inline constexpr char kArquivoVeiculos[] = "DFVEIC.DAT";

/// The vehicle database of one company.
class CQZDataBase_Veiculos : public CQZDataBase {
public:
  CQZDataBase_Veiculos() : CQZDataBase(QZ_DF, plataforma::NivelTrava::ArquivoDados) {}
  ~CQZDataBase_Veiculos() override { FinalizaNoDestrutor(); }

  CQZFile<RegVeiculo> m_Veiculos{kArquivoVeiculos, this};
};

template <>
struct NomeTipoBanco<CQZDataBase_Veiculos> {
  static constexpr char kNome[] = "class CQZDataBase_Veiculos";
};

#endif
