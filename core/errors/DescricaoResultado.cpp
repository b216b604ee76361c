#include "core/errors/DescricaoResultado.h"

#include <array>
#include <cstdio>

#include "core/errors/DescricaoDaBiblioteca.h"
#include "core/errors/NomesResultado.h"

namespace {

/// Windows-1252. Split where a hexadecimal digit follows an escape.
constexpr char kSeveridadeDesconhecida[] =
    "Desconhecido ou novo c\xF3"
    "digo de SEVERITY";
constexpr char kFacilidadeDesconhecida[] =
    "Desconhecido ou novo c\xF3"
    "digo de FACILITY";
constexpr char kRotuloNome[] = "Descri\xE7\xE3o = ";

/// Facilities of the suite's other modules, which have numbers but no names here; 264 lies between the last two.
constexpr bool FacilidadeDeOutroModulo(int iFacilidade) {
  return (iFacilidade >= 236 && iFacilidade <= 255) || iFacilidade == 263 || iFacilidade == 265;
}

CString TextoOuVazio(const char *lpTexto) {
  return lpTexto != nullptr ? lpTexto : "";
}

/// As "%#X" writes it: "0X810809D9", and zero without the prefix.
CString Hexadecimal(HRESULT hr) {
  std::array<char, 16> texto{};
  std::snprintf(texto.data(), texto.size(), "%#X", BitsResultado(hr));
  return texto.data();
}

/// "SEVERITY = 1 SEVERITY_ERROR": one numbered part of a described line.
CString Parte(const char *lpRotulo, int iNumero, const CString &sNome) {
  return CString(lpRotulo) + " = " + std::to_string(iNumero) + " " + sNome;
}

}  // namespace

CString NomeSeveridade(HRESULT hr) {
  switch (SeveridadeResultado(hr)) {
    case 0:
      return "SEVERITY_SUCCESS";
    case 1:
      return "SEVERITY_ERROR";
    default:
      return kSeveridadeDesconhecida;
  }
}

CString NomeFacilidade(HRESULT hr) {
  const int iFacilidade = FacilidadeResultado(hr);
  if (FacilidadeDeOutroModulo(iFacilidade)) {
    return "QZ_FACILITY_" + std::to_string(iFacilidade);
  }
  const char *lpNome = nomes::DeFacilidade(static_cast<std::uint32_t>(iFacilidade));
  return lpNome != nullptr ? lpNome : kFacilidadeDesconhecida;
}

CString NomeWin32(HRESULT hr) {
  return TextoOuVazio(nomes::DeWin32(static_cast<std::uint32_t>(CodigoDoResultado(hr))));
}

CString NomeHRESULT(HRESULT hr) {
  return TextoOuVazio(nomes::DeHRESULT(BitsResultado(hr)));
}

/// A sibling server of the suite has fixed texts for its FACILITY_ITF codes 501-512, 1522-1525, 1733, 1739-1979 and
/// 2339. They belong to that program and none is kept here: all codes go to the message library.
CString DescricaoHRESULT(HRESULT hr) {
  return DescricaoDaBiblioteca(hr);
}

/// Put together piece by piece: a description may hold '%', so none of these texts may become a format. The label for
/// "description" stands before the symbolic name, the description itself behind the value; readers of the error file
/// search for it that way.
CString LinhaDescrita(const CString &sExpressao, const CString &sVariavel, HRESULT hr) {
  return sVariavel + " = " + sExpressao + "\t" + sVariavel + " = " + Hexadecimal(hr) + " " + DescricaoHRESULT(hr) +
         "\t" + Parte("SEVERITY", SeveridadeResultado(hr), NomeSeveridade(hr)) + "\t" +
         Parte("FACILITY", FacilidadeResultado(hr), NomeFacilidade(hr)) + "\t" +
         Parte("CODE", CodigoDoResultado(hr), NomeWin32(hr)) + "\t" + kRotuloNome + NomeHRESULT(hr);
}
