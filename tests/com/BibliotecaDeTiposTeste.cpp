#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

std::string Curto(const OLECHAR *lpTexto) {
  std::string sTexto;
  for (; lpTexto != nullptr && *lpTexto != 0; ++lpTexto) {
    sTexto += static_cast<char>(*lpTexto);
  }
  return sTexto;
}

std::string NomeDe(ITypeInfo &tipo) {
  BSTR sNome = nullptr;
  tipo.GetDocumentation(MEMBERID_NIL, &sNome, nullptr, nullptr, nullptr);
  const std::string sTexto = Curto(sNome);
  SysFreeString(sNome);
  return sTexto;
}

/// A type in words: "long*", "char[51]", the name of a record.
std::string Tipo(ITypeInfo &dono, const TYPEDESC &tipo) {
  static const std::map<VARTYPE, const char *> s_simples = {
      {VT_I1, "char"},   {VT_UI1, "byte"},    {VT_UI2, "ushort"},    {VT_I4, "long"},         {VT_UI4, "ulong"},
      {VT_UINT, "uint"}, {VT_CY, "CURRENCY"}, {VT_LPWSTR, "LPWSTR"}, {VT_HRESULT, "HRESULT"},
  };
  switch (tipo.vt) {
    case VT_PTR:
      return Tipo(dono, *tipo.lptdesc) + "*";
    case VT_CARRAY:
      return Tipo(dono, tipo.lpadesc->tdescElem) + "[" + std::to_string(tipo.lpadesc->rgbounds[0].cElements) + "]";
    case VT_USERDEFINED: {
      ITypeInfo *pTipo = nullptr;
      if (FAILED(dono.GetRefTypeInfo(tipo.hreftype, &pTipo))) {
        return "(unknown)";
      }
      const Ponteiro<ITypeInfo> spTipo(pTipo);
      return NomeDe(*spTipo);
    }
    default: {
      const auto achado = s_simples.find(tipo.vt);
      return achado != s_simples.end() ? achado->second : "VT " + std::to_string(tipo.vt);
    }
  }
}

const char *Sentido(USHORT usOpcoes) {
  const bool bEntra = (usOpcoes & PARAMFLAG_FIN) != 0;
  return (usOpcoes & PARAMFLAG_FOUT) == 0 ? "[in] " : bEntra ? "[in,out] " : "[out] ";
}

/// "HRESULT Grava([in,out] long* pPos, ...)"; empty past the last function.
std::string Assinatura(ITypeInfo &interface_, UINT uiIndice) {
  FUNCDESC *pFuncao = nullptr;
  if (FAILED(interface_.GetFuncDesc(uiIndice, &pFuncao))) {
    return "";
  }
  BSTR nomes[8] = {};
  UINT uiNomes = 0;
  interface_.GetNames(pFuncao->memid, nomes, 8, &uiNomes);
  std::string sTexto = Tipo(interface_, pFuncao->elemdescFunc.tdesc) + " " + Curto(nomes[0]) + "(";
  for (SHORT i = 0; i < pFuncao->cParams; ++i) {
    const ELEMDESC &parametro = pFuncao->lprgelemdescParam[i];
    sTexto += std::string(i == 0 ? "" : ", ") + Sentido(parametro.paramdesc.wParamFlags) +
              Tipo(interface_, parametro.tdesc) + " " + Curto(nomes[i + 1]);
  }
  EXPECT_EQ(pFuncao->memid, static_cast<MEMBERID>(0x60010000 + uiIndice));
  EXPECT_EQ(pFuncao->oVft, static_cast<SHORT>((3 + uiIndice) * sizeof(void *)));
  EXPECT_EQ(pFuncao->funckind, FUNC_PUREVIRTUAL);
  for (BSTR sNome : nomes) {
    SysFreeString(sNome);
  }
  interface_.ReleaseFuncDesc(pFuncao);
  return sTexto + ")";
}

/// The fields of a record, "offset type name; " each.
std::string CamposDe(ITypeInfo &registro) {
  std::string sCampos;
  VARDESC *pCampo = nullptr;
  for (UINT i = 0; SUCCEEDED(registro.GetVarDesc(i, &pCampo)); ++i) {
    BSTR sNome = nullptr;
    UINT uiNomes = 0;
    registro.GetNames(pCampo->memid, &sNome, 1, &uiNomes);
    sCampos +=
        std::to_string(pCampo->oInst) + " " + Tipo(registro, pCampo->elemdescVar.tdesc) + " " + Curto(sNome) + "; ";
    SysFreeString(sNome);
    registro.ReleaseVarDesc(pCampo);
  }
  return sCampos;
}

const struct {
  const wchar_t *lpNome;
  ULONG ulTamanho;
  const char *lpCampos;
} kRegistros[] = {
    {L"tagREG_VEICULOPS", 168,
     "0 CURRENCY vTara; 8 CURRENCY vCapacidadeKg; 16 CURRENCY vCapacidadeM3; 24 uint iAno; 28 ushort iPonteiroCliente; "
     "30 char[51] szDescricao; 81 char[21] szCodigoANTT; 102 char[13] szCodigo; 115 char[12] szRENAVAM; "
     "127 char[9] szPlaca; 136 char[3] szUF; 139 byte iTipoCarroceria; 140 byte iTipoRodado; 141 byte iTipoVeiculo; "
     "142 byte iTipoTransporte; 143 byte iFiller; 144 long lPosicao; 148 byte[20] cFiller; "},
    {L"tagREG_FILTRO_VEICULOSPS", 200,
     "0 CURRENCY vTaraInicial; 8 CURRENCY vTaraFinal; 16 CURRENCY vCapacidadeKgInicial; "
     "24 CURRENCY vCapacidadeKgFinal; 32 CURRENCY vCapacidadeM3Inicial; 40 CURRENCY vCapacidadeM3Final; "
     "48 uint iAnoInicial; 52 uint iAnoFinal; 56 ushort iPonteiroCliente; "
     "58 char[51] szDescricao; 109 char[21] szCodigoANTT; 130 char[13] szCodigo; 143 char[12] szRENAVAM; "
     "155 char[9] szPlaca; 164 char[3] szUF; 167 byte iTipoCarroceria; 168 byte iTipoRodado; 169 byte iTipoVeiculo; "
     "170 byte iTipoTransporte; 171 byte[5] iFiller; 176 long lPosicao; 180 byte[20] cFiller; "},
    {L"tagRESULTADO_BUSCA_VEICULOS", 24, "0 uint iQtd; 4 byte[4] cFiller; 8 long* Ponteiros; 16 byte* pFiller; "},
};

/// The type library as a file of its own and as a resource of the executable.
class BibliotecaDeTipos : public testing::TestWithParam<const wchar_t *> {
protected:
  void SetUp() override {
    const std::string sPasta = PastaDoPrograma();
    ITypeLib *pBiblioteca = nullptr;
    ASSERT_EQ(LoadTypeLib((std::wstring(sPasta.begin(), sPasta.end()) + GetParam()).c_str(), &pBiblioteca), S_OK);
    m_spBiblioteca.reset(pBiblioteca);
  }

  Ponteiro<ITypeLib> m_spBiblioteca;
};

INSTANTIATE_TEST_SUITE_P(Arquivos, BibliotecaDeTipos, testing::Values(L"Kalvo.tlb", L"Kalvo.exe"));

}  // namespace

TEST_P(BibliotecaDeTipos, DescreveAInterface) {
  ITypeInfo *pTipo = nullptr;
  ASSERT_EQ(m_spBiblioteca->GetTypeInfoOfGuid(IID_IQZDF_Veiculos, &pTipo), S_OK);
  const Ponteiro<ITypeInfo> spTipo(pTipo);
  const char *const assinaturas[] = {
      "HRESULT Inicializa([in] LPWSTR lpEmpresa, [in] ushort iUsuario, [in] long lNumeroSessao)",
      "HRESULT Grava([in,out] long* pPos, [in] tagREG_VEICULOPS Veiculo)",
      "HRESULT Le([in] long lPos, [out] tagREG_VEICULOPS* pVeiculo)",
      "HRESULT Existe([in] LPWSTR lpCodigo, [out] long* pPos, [out] tagREG_VEICULOPS* pVeiculo)",
      "HRESULT BuscaPonteiros([in] tagREG_FILTRO_VEICULOSPS Filtro, [out] tagRESULTADO_BUSCA_VEICULOS* pResultado)",
      "HRESULT LePonteiros([in] uint iQtd, [in] long* Ponteiros, [out] tagREG_VEICULOPS* pVeiculos)",
      "HRESULT GetQuantidadeRegistros([out] uint* pQtd)",
      "",
  };
  for (UINT i = 0; i < std::size(assinaturas); ++i) {
    EXPECT_EQ(Assinatura(*spTipo, i), assinaturas[i]);
  }
  ASSERT_EQ(m_spBiblioteca->GetTypeInfoOfGuid(CLSID_CQZDF_Veiculos, &pTipo), S_OK);
  EXPECT_EQ(NomeDe(*Ponteiro<ITypeInfo>(pTipo)), "CQZDF_Veiculos");
}

TEST_P(BibliotecaDeTipos, DescreveOsRegistros) {
  for (const auto &registro : kRegistros) {
    SCOPED_TRACE(Curto(registro.lpNome));
    ITypeInfo *pTipo = nullptr;
    MEMBERID membro = 0;
    USHORT usAchados = 1;
    ASSERT_EQ(m_spBiblioteca->FindName(const_cast<LPOLESTR>(registro.lpNome), 0, &pTipo, &membro, &usAchados), S_OK);
    ASSERT_EQ(usAchados, 1);
    const Ponteiro<ITypeInfo> spTipo(pTipo);
    TYPEATTR *pAtributos = nullptr;
    ASSERT_EQ(spTipo->GetTypeAttr(&pAtributos), S_OK);
    EXPECT_EQ(pAtributos->typekind, TKIND_RECORD);
    EXPECT_EQ(pAtributos->cbSizeInstance, registro.ulTamanho);
    spTipo->ReleaseTypeAttr(pAtributos);
    EXPECT_EQ(CamposDe(*spTipo), registro.lpCampos);
  }
}
