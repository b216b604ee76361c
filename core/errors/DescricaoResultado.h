#ifndef KALVO_CORE_ERRORS_DESCRICAORESULTADO_H
#define KALVO_CORE_ERRORS_DESCRICAORESULTADO_H

#include "core/platform/Tipos.h"

// The describers of result codes. None of them fails: what they do not know gives a fixed or an empty text. All texts
// are in the Windows ANSI code page. Any thread may call, several at once.

/// 1 for a negative value, 0 for the others.
constexpr int SeveridadeResultado(HRESULT hr) {
  return hr < 0 ? 1 : 0;
}

/// The 13 bits from bit 16.
constexpr int FacilidadeResultado(HRESULT hr) {
  return static_cast<int>(BitsResultado(hr) >> 16U & 0x1FFFU);
}

/// The low 16 bits.
constexpr int CodigoDoResultado(HRESULT hr) {
  return static_cast<int>(BitsResultado(hr) & 0xFFFFU);
}

/// "SEVERITY_SUCCESS" or "SEVERITY_ERROR".
CString NomeSeveridade(HRESULT hr);

/// The name of the facility constant, or a fixed text that says that it is unknown.
CString NomeFacilidade(HRESULT hr);

/// The name of the Win32 error constant with the code's number, whatever the facility; empty when there is none.
CString NomeWin32(HRESULT hr);

/// The name of the HRESULT constant with exactly this value; empty when there is none.
CString NomeHRESULT(HRESULT hr);

/// The free text of the suite's message library; empty when it has none.
CString DescricaoHRESULT(HRESULT hr);

/// The complete line of an error record for a checked expression: its source text and the variable that received the
/// result, both as they were written, then the value with all that the describers say about it, separated by tabs.
CString LinhaDescrita(const CString &sExpressao, const CString &sVariavel, HRESULT hr);

#endif
