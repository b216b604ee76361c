#include "server/ValoresRegistro.h"

#include <windows.h>
//
#include <QZDF_Veiculos.h>

#include <array>

namespace {

constexpr wchar_t kAppId[] = L"{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";
constexpr wchar_t kProgId[] = L"Kalvo.QZDF_Veiculos.1";
constexpr wchar_t kProgIdSemVersao[] = L"Kalvo.QZDF_Veiculos";
constexpr wchar_t kNomeClasse[] = L"QZDF_Veiculos Class";
constexpr wchar_t kNomeInterface[] = L"IQZDF_Veiculos";
constexpr GUID kClsidProxy = {0x84be9740, 0x8888, 0x4462, {0x88, 0x3d, 0xb2, 0x72, 0x5b, 0xba, 0x02, 0x96}};
constexpr wchar_t kMetodos[] = L"10";  // of the interface, those of IUnknown included

std::wstring TextoGuid(const GUID &guid) {
  std::array<wchar_t, 40> texto{};
  StringFromGUID2(guid, texto.data(), static_cast<int>(texto.size()));
  return texto.data();
}

std::wstring ChaveAppId() {
  return std::wstring(L"AppID\\") + kAppId;
}

std::wstring ChaveClasse() {
  return L"CLSID\\" + TextoGuid(CLSID_CQZDF_Veiculos);
}

/// Where a view of the classes stands below their root.
std::wstring Prefixo(EVisao eVisao) {
  return eVisao == EVisao::De32Bits ? L"Wow6432Node\\" : L"";
}

std::wstring ChaveProxy(EVisao eVisao) {
  return Prefixo(eVisao) + L"CLSID\\" + TextoGuid(kClsidProxy);
}

std::wstring ChaveInterface(EVisao eVisao) {
  return Prefixo(eVisao) + L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos);
}

std::wstring ChaveTodasAsBibliotecas() {
  return L"TypeLib\\" + TextoGuid(LIBID_Kalvo);
}

}  // namespace

std::vector<ValorRegistro> ValoresDoServidor(const std::wstring &sExecutavel) {
  const std::wstring sClsid = TextoGuid(CLSID_CQZDF_Veiculos);
  const std::wstring sClasse = ChaveClasse();
  const std::wstring sProgId = kProgId;
  const std::wstring sSemVersao = kProgIdSemVersao;
  return {
      {ChaveAppId(), L"", L"Kalvo"},
      {L"AppID\\Kalvo.EXE", L"AppID", kAppId},
      {sProgId, L"", kNomeClasse},
      {sProgId + L"\\CLSID", L"", sClsid},
      {sSemVersao, L"", kNomeClasse},
      {sSemVersao + L"\\CLSID", L"", sClsid},
      {sSemVersao + L"\\CurVer", L"", sProgId},
      {sClasse, L"", kNomeClasse},
      {sClasse, L"AppID", kAppId},
      {sClasse + L"\\ProgID", L"", sProgId},
      {sClasse + L"\\VersionIndependentProgID", L"", sSemVersao},
      // Quoted: an unquoted path with blanks would let another program answer for it.
      {sClasse + L"\\LocalServer32", L"", L"\"" + sExecutavel + L"\""},
      {sClasse + L"\\TypeLib", L"", TextoGuid(LIBID_Kalvo)},
  };
}

std::vector<ValorRegistro> ValoresDoProxy(EVisao eVisao, const std::wstring &sProxy) {
  const std::wstring sInterface_ = ChaveInterface(eVisao);
  const std::wstring sServidor = ChaveProxy(eVisao) + L"\\InProcServer32";
  return {
      {sInterface_, L"", kNomeInterface},
      {sInterface_ + L"\\ProxyStubClsid32", L"", TextoGuid(kClsidProxy)},
      {sInterface_ + L"\\NumMethods", L"", kMetodos},
      {ChaveProxy(eVisao), L"", L"PSFactoryBuffer"},
      {sServidor, L"", sProxy},
      {sServidor, L"ThreadingModel", L"Both"},
  };
}

std::vector<std::wstring> ChavesRemovidas() {
  return {ChaveInterface(EVisao::De32Bits),
          ChaveProxy(EVisao::De32Bits),
          ChaveInterface(EVisao::De64Bits),
          ChaveProxy(EVisao::De64Bits),
          ChaveClasse(),
          kProgIdSemVersao,
          kProgId,
          L"AppID\\Kalvo.EXE"};
}

std::vector<std::wstring> ChavesTocadas() {
  std::vector<std::wstring> chaves = ChavesRemovidas();
  chaves.push_back(ChaveAppId());
  chaves.push_back(ChaveTodasAsBibliotecas());
  return chaves;
}

std::wstring ChaveDaBiblioteca() {
  return ChaveTodasAsBibliotecas() + L"\\1.0";
}
