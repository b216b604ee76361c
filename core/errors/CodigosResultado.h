#ifndef KALVO_CORE_ERRORS_CODIGOSRESULTADO_H
#define KALVO_CORE_ERRORS_CODIGOSRESULTADO_H

#include "core/platform/Tipos.h"

// The result codes that the system raises itself. Severity is bit 31, the facility the 13 bits from bit 16, the code
// the low 16 bits. The winerror.h codes used by the layers above the platform are repeated here under their own values.

namespace codigos {

inline constexpr HRESULT kOk = 0;
inline constexpr HRESULT kPonteiroInvalido = CodigoResultado(0x80004003);  ///< E_POINTER
inline constexpr HRESULT kSemMemoria = CodigoResultado(0x8007000E);        ///< E_OUTOFMEMORY

// Facility 0x108 (QZ_FACILITY_CR_CORE).

/// The stored base was written by a newer program.
inline constexpr HRESULT kBaseMaisNova = CodigoResultado(0x810809C7);
/// E_QZCR_INICIALIZACAO_QZDATABASE_SEM_EMPRESA: initialisation without a company code.
inline constexpr HRESULT kSemEmpresa = CodigoResultado(0x810809CF);
/// A finished "TRA" companion could not be moved onto its file.
inline constexpr HRESULT kTraNaoRenomeado = CodigoResultado(0x810809D6);
/// The file's length is not a whole number of records.
inline constexpr HRESULT kTamanhoNaoMultiplo = CodigoResultado(0x810809D8);
/// Read position 0.
inline constexpr HRESULT kPosicaoZero = CodigoResultado(0x810809D9);
/// Read position beyond the last record.
inline constexpr HRESULT kPosicaoAlemDoFim = CodigoResultado(0x810809DA);
/// Write position beyond the last record.
inline constexpr HRESULT kGravacaoAlemDoFim = CodigoResultado(0x810809DB);
/// The file (or the register's database) is not open.
inline constexpr HRESULT kArquivoNaoAberto = CodigoResultado(0x810809E3);
/// The offline companion could not be deleted.
inline constexpr HRESULT kOfflineNaoApagado = CodigoResultado(0x810809E6);
/// A single-record file of the wrong length.
inline constexpr HRESULT kTamanhoDiferente = CodigoResultado(0x810809E7);
/// A name without '?' where a mask is needed.
inline constexpr HRESULT kMascaraSemCuringa = CodigoResultado(0x810809F1);
/// A file could not be deleted.
inline constexpr HRESULT kArquivoNaoApagado = CodigoResultado(0x810809F2);

/// The file has a header of an unknown version.
inline constexpr HRESULT kCabecalhoVersaoDesconhecida = CodigoResultado(0x81080A3E);
/// The header record is damaged.
inline constexpr HRESULT kCabecalhoDanificado = CodigoResultado(0x81080A3F);
/// The header is of another installation. Known to the suite; nothing here raises it, or a copied data directory would
/// not open.
inline constexpr HRESULT kCabecalhoDeOutraInstalacao = CodigoResultado(0x81080A40);
/// The records are not those that the header describes.
inline constexpr HRESULT kDadosNaoConferem = CodigoResultado(0x81080A42);
/// The header is the one of another file.
inline constexpr HRESULT kCabecalhoDeOutroArquivo = CodigoResultado(0x81080A43);
/// A file that the system created is no longer there.
inline constexpr HRESULT kArquivoDesapareceu = CodigoResultado(0x81080A50);

// File failures: 0x80040000 plus a number per cause.

inline constexpr HRESULT kArqPosicaoInvalida = CodigoResultado(0x80043E8C);
inline constexpr HRESULT kArqFimDeArquivo = CodigoResultado(0x80043E95);
inline constexpr HRESULT kArqErroFisico = CodigoResultado(0x80043EA7);
inline constexpr HRESULT kArqNaoEncontrado = CodigoResultado(0x80043EB7);
inline constexpr HRESULT kArqCaminhoInvalido = CodigoResultado(0x80043EBF);
inline constexpr HRESULT kArqMuitosAbertos = CodigoResultado(0x80043EC7);
inline constexpr HRESULT kArqAcessoNegado = CodigoResultado(0x80043ED0);
inline constexpr HRESULT kArqSomenteLeitura = CodigoResultado(0x80043ED1);
inline constexpr HRESULT kArqInvalido = CodigoResultado(0x80043EE2);
inline constexpr HRESULT kArqDiretorioCheio = CodigoResultado(0x80043EE5);
inline constexpr HRESULT kArqCompartilhamento = CodigoResultado(0x80043EEE);
inline constexpr HRESULT kArqBloqueio = CodigoResultado(0x80043F00);
inline constexpr HRESULT kArqDiscoCheio = CodigoResultado(0x80043F08);
inline constexpr HRESULT kArqOutra = CodigoResultado(0x80043F10);

}  // namespace codigos

#endif
