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

/// What an error number of the operating system is put into where an exception carries one.
inline constexpr std::uint32_t kBaseSistema = 0x80040000;

// What the call guard makes of thrown exceptions that carry no code of their own.

inline constexpr HRESULT kExcecaoSistema = CodigoResultado(0x8004EA61);       ///< CQZException without an error number
inline constexpr HRESULT kExcecaoMemoria = CodigoResultado(0x8004EA62);       ///< CMemoryException
inline constexpr HRESULT kExcecaoFramework = CodigoResultado(0x8004EA63);     ///< any other CException
inline constexpr HRESULT kExcecaoBadAlloc = CodigoResultado(0x8004EA64);      ///< std::bad_alloc
inline constexpr HRESULT kExcecaoPadrao = CodigoResultado(0x8004EA65);        ///< any other std::exception
inline constexpr HRESULT kExcecaoDesconhecida = CodigoResultado(0x8004EA66);  ///< anything else

// What it makes of machine faults, from kFalhaAcessoInvalido to kFalhaConsolidacaoDePilha without a gap.

inline constexpr HRESULT kFalhaAcessoInvalido = CodigoResultado(0x8004EAC5);         ///< access violation
inline constexpr HRESULT kFalhaForaDoVetor = CodigoResultado(0x8004EAC6);            ///< array bounds exceeded
inline constexpr HRESULT kFalhaPontoDeParada = CodigoResultado(0x8004EAC7);          ///< breakpoint
inline constexpr HRESULT kFalhaDesalinhamento = CodigoResultado(0x8004EAC8);         ///< data type misalignment
inline constexpr HRESULT kFalhaRealDenormal = CodigoResultado(0x8004EAC9);           ///< float denormal operand
inline constexpr HRESULT kFalhaRealDivisaoPorZero = CodigoResultado(0x8004EACA);     ///< float divide by zero
inline constexpr HRESULT kFalhaRealInexato = CodigoResultado(0x8004EACB);            ///< float inexact result
inline constexpr HRESULT kFalhaRealInvalida = CodigoResultado(0x8004EACC);           ///< float invalid operation
inline constexpr HRESULT kFalhaRealEstouro = CodigoResultado(0x8004EACD);            ///< float overflow
inline constexpr HRESULT kFalhaRealPilha = CodigoResultado(0x8004EACE);              ///< float stack check
inline constexpr HRESULT kFalhaRealPequeno = CodigoResultado(0x8004EACF);            ///< float underflow
inline constexpr HRESULT kFalhaPaginaDeGuarda = CodigoResultado(0x8004EAD0);         ///< guard page
inline constexpr HRESULT kFalhaInstrucaoIlegal = CodigoResultado(0x8004EAD1);        ///< illegal instruction
inline constexpr HRESULT kFalhaPaginaNaoLida = CodigoResultado(0x8004EAD2);          ///< in-page error
inline constexpr HRESULT kFalhaDivisaoPorZero = CodigoResultado(0x8004EAD3);         ///< integer divide by zero
inline constexpr HRESULT kFalhaEstouroDeInteiro = CodigoResultado(0x8004EAD4);       ///< integer overflow
inline constexpr HRESULT kFalhaDisposicaoInvalida = CodigoResultado(0x8004EAD5);     ///< invalid disposition
inline constexpr HRESULT kFalhaHandleInvalido = CodigoResultado(0x8004EAD6);         ///< invalid handle
inline constexpr HRESULT kFalhaSemContinuacao = CodigoResultado(0x8004EAD7);         ///< non-continuable exception
inline constexpr HRESULT kFalhaInstrucaoPrivilegiada = CodigoResultado(0x8004EAD8);  ///< privileged instruction
inline constexpr HRESULT kFalhaPassoAPasso = CodigoResultado(0x8004EAD9);            ///< single step
inline constexpr HRESULT kFalhaEstouroDePilha = CodigoResultado(0x8004EADA);         ///< stack overflow
inline constexpr HRESULT kFalhaConsolidacaoDePilha = CodigoResultado(0x8004EADB);    ///< unwind consolidate
/// What an object answers that lost its register to a fault, of whatever kind.
inline constexpr HRESULT kSemRegistro = kFalhaAcessoInvalido;
/// A fault without a code of its own.
inline constexpr HRESULT kFalhaOutra = CodigoResultado(0x8004EE47);

}  // namespace codigos

#endif
