#include <gtest/gtest.h>

#include <cstddef>
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
    const USHORT usOpcoes = parametro.paramdesc.wParamFlags;
    const bool bEntra = (usOpcoes & PARAMFLAG_FIN) != 0;
    const bool bSai = (usOpcoes & PARAMFLAG_FOUT) != 0;
    sTexto += std::string(i == 0 ? "" : ", ") +
              (bEntra && bSai ? "[in,out] "
               : bSai         ? "[out] "
                              : "[in] ") +
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

struct Campo {
  std::string sNome;
  std::string sTipo;
  std::size_t uiDeslocamento;
  bool operator==(const Campo &) const = default;
};

std::ostream &operator<<(std::ostream &saida, const Campo &campo) {
  return saida << campo.uiDeslocamento << " " << campo.sTipo << " " << campo.sNome;
}

std::vector<Campo> CamposDe(ITypeInfo &registro) {
  std::vector<Campo> campos;
  VARDESC *pCampo = nullptr;
  for (UINT i = 0; SUCCEEDED(registro.GetVarDesc(i, &pCampo)); ++i) {
    BSTR sNome = nullptr;
    UINT uiNomes = 0;
    registro.GetNames(pCampo->memid, &sNome, 1, &uiNomes);
    campos.push_back({Curto(sNome), Tipo(registro, pCampo->elemdescVar.tdesc), pCampo->oInst});
    SysFreeString(sNome);
    registro.ReleaseVarDesc(pCampo);
  }
  return campos;
}

#define CAMPO(Registro, nome, tipo) \
  { #nome, tipo, offsetof(Registro, nome) }
#define TEXTOS(Registro)                                                                                               \
  CAMPO(Registro, szDescricao, "char[51]"), CAMPO(Registro, szCodigoANTT, "char[21]"),                                 \
      CAMPO(Registro, szCodigo, "char[13]"), CAMPO(Registro, szRENAVAM, "char[12]"),                                   \
      CAMPO(Registro, szPlaca, "char[9]"), CAMPO(Registro, szUF, "char[3]"), CAMPO(Registro, iTipoCarroceria, "byte"), \
      CAMPO(Registro, iTipoRodado, "byte"), CAMPO(Registro, iTipoVeiculo, "byte"),                                     \
      CAMPO(Registro, iTipoTransporte, "byte")

const struct {
  const wchar_t *lpNome;
  ULONG ulTamanho;
  std::vector<Campo> campos;
} kRegistros[] = {
    {L"tagREG_VEICULOPS",
     sizeof(tagREG_VEICULOPS),
     {CAMPO(tagREG_VEICULOPS, vTara, "CURRENCY"), CAMPO(tagREG_VEICULOPS, vCapacidadeKg, "CURRENCY"),
      CAMPO(tagREG_VEICULOPS, vCapacidadeM3, "CURRENCY"), CAMPO(tagREG_VEICULOPS, iAno, "uint"),
      CAMPO(tagREG_VEICULOPS, iPonteiroCliente, "ushort"), TEXTOS(tagREG_VEICULOPS),
      CAMPO(tagREG_VEICULOPS, iFiller, "byte"), CAMPO(tagREG_VEICULOPS, lPosicao, "long"),
      CAMPO(tagREG_VEICULOPS, cFiller, "byte[20]")}},
    {L"tagREG_FILTRO_VEICULOSPS",
     sizeof(tagREG_FILTRO_VEICULOSPS),
     {CAMPO(tagREG_FILTRO_VEICULOSPS, vTaraInicial, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, vTaraFinal, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, vCapacidadeKgInicial, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, vCapacidadeKgFinal, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, vCapacidadeM3Inicial, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, vCapacidadeM3Final, "CURRENCY"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, iAnoInicial, "uint"), CAMPO(tagREG_FILTRO_VEICULOSPS, iAnoFinal, "uint"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, iPonteiroCliente, "ushort"), TEXTOS(tagREG_FILTRO_VEICULOSPS),
      CAMPO(tagREG_FILTRO_VEICULOSPS, iFiller, "byte[5]"), CAMPO(tagREG_FILTRO_VEICULOSPS, lPosicao, "long"),
      CAMPO(tagREG_FILTRO_VEICULOSPS, cFiller, "byte[20]")}},
    {L"tagRESULTADO_BUSCA_VEICULOS",
     sizeof(tagRESULTADO_BUSCA_VEICULOS),
     {CAMPO(tagRESULTADO_BUSCA_VEICULOS, iQtd, "uint"), CAMPO(tagRESULTADO_BUSCA_VEICULOS, cFiller, "byte[4]"),
      CAMPO(tagRESULTADO_BUSCA_VEICULOS, Ponteiros, "long*"), CAMPO(tagRESULTADO_BUSCA_VEICULOS, pFiller, "byte*")}},
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
    EXPECT_EQ(CamposDe(*spTipo), registro.campos);
  }
}
