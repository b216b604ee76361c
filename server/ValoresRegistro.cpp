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
std::wstring Prefixo(Visao eVisao) {
  return eVisao == Visao::De32Bits ? L"Wow6432Node\\" : L"";
}

std::wstring ChaveProxy(Visao eVisao) {
  return Prefixo(eVisao) + L"CLSID\\" + TextoGuid(kClsidProxy);
}

std::wstring ChaveInterface(Visao eVisao) {
  return Prefixo(eVisao) + L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos);
}

std::wstring ChaveTodasAsBibliotecas() {
  return L"TypeLib\\" + TextoGuid(LIBID_Kalvo);
}

}  // namespace

std::vector<ValorRegistro> ValoresDoServidor(const std::wstring &sExecutavel) {
  const std::wstring clsid = TextoGuid(CLSID_CQZDF_Veiculos);
  const std::wstring classe = ChaveClasse();
  const std::wstring progId = kProgId;
  const std::wstring semVersao = kProgIdSemVersao;
  return {
      {ChaveAppId(), L"", L"Kalvo"},
      {L"AppID\\Kalvo.EXE", L"AppID", kAppId},
      {progId, L"", kNomeClasse},
      {progId + L"\\CLSID", L"", clsid},
      {semVersao, L"", kNomeClasse},
      {semVersao + L"\\CLSID", L"", clsid},
      {semVersao + L"\\CurVer", L"", progId},
      {classe, L"", kNomeClasse},
      {classe, L"AppID", kAppId},
      {classe + L"\\ProgID", L"", progId},
      {classe + L"\\VersionIndependentProgID", L"", semVersao},
      // Quoted: an unquoted path with blanks would let another program answer for it.
      {classe + L"\\LocalServer32", L"", L"\"" + sExecutavel + L"\""},
      {classe + L"\\TypeLib", L"", TextoGuid(LIBID_Kalvo)},
  };
}

std::vector<ValorRegistro> ValoresDoProxy(Visao eVisao, const std::wstring &sProxy) {
  const std::wstring interface_ = ChaveInterface(eVisao);
  const std::wstring servidor = ChaveProxy(eVisao) + L"\\InProcServer32";
  return {
      {interface_, L"", kNomeInterface},
      {interface_ + L"\\ProxyStubClsid32", L"", TextoGuid(kClsidProxy)},
      {interface_ + L"\\NumMethods", L"", kMetodos},
      {ChaveProxy(eVisao), L"", L"PSFactoryBuffer"},
      {servidor, L"", sProxy},
      {servidor, L"ThreadingModel", L"Both"},
  };
}

std::vector<std::wstring> ChavesRemovidas() {
  return {ChaveInterface(Visao::De32Bits),
          ChaveProxy(Visao::De32Bits),
          ChaveInterface(Visao::De64Bits),
          ChaveProxy(Visao::De64Bits),
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
