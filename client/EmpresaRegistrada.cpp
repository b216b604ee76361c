#include "client/EmpresaRegistrada.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "client/Codificacao.h"
#include "client/Saida.h"
#include "client/Sugestao.h"
#include "core/env/QZPath.h"
#include "core/platform/win32/Posses.h"

namespace {

constexpr std::size_t kMostradas = 10;

std::string ChaveEmpresas() {
  return std::string(kChaveSuite) + "Empresas";
}

std::vector<std::string> CodigosRegistrados() {
  std::vector<std::string> aCodigos;
  HKEY hChave = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, ChaveEmpresas().c_str(), 0, KEY_READ, &hChave) != ERROR_SUCCESS) {
    return aCodigos;
  }
  const plataforma::PosseChave posse(hChave);
  std::array<char, 256> aNome;
  for (DWORD i = 0;; ++i) {
    auto dwTamanho = static_cast<DWORD>(aNome.size());
    const LSTATUS lErro = RegEnumKeyExA(hChave, i, aNome.data(), &dwTamanho, nullptr, nullptr, nullptr, nullptr);
    if (lErro != ERROR_SUCCESS) {
      break;
    }
    aCodigos.emplace_back(aNome.data(), dwTamanho);
  }
  return aCodigos;
}

std::string Registradas(const std::vector<std::string> &aCodigos) {
  std::string sLista;
  for (std::size_t i = 0; i < std::min(aCodigos.size(), kMostradas); ++i) {
    sLista += (i == 0 ? "" : ", ") + aCodigos[i];
  }
  if (sLista.empty()) {
    return "; nenhuma empresa está registrada"_pt;
  }
  return "; registradas: " + sLista + (aCodigos.size() > kMostradas ? " e outras" : "");
}

bool EhAbsoluto(std::string_view sDiretorio) {
  return sDiretorio.starts_with("\\\\") || (sDiretorio.size() > 2 && sDiretorio[1] == ':' && sDiretorio[2] == '\\');
}

void ExigeCodigo(const std::string &sCodigo) {
  const std::vector<std::string> aCodigos = CodigosRegistrados();
  const auto igual = [&](const std::string &sOutro) { return lstrcmpiA(sOutro.c_str(), sCodigo.c_str()) == 0; };
  const auto it = std::find_if(aCodigos.begin(), aCodigos.end(), igual);
  if (it == aCodigos.end()) {
    const std::vector<std::string_view> aCandidatos(aCodigos.begin(), aCodigos.end());
    const std::string sVisivel = Visivel(sCodigo);
    throw CErroEmpresa("a empresa \"" + sVisivel + "\" não está registrada: não há a chave HKLM\\"_pt +
                       ChaveEmpresas() + "\\" + sVisivel + Sugestao(sCodigo, aCandidatos) + Registradas(aCodigos));
  }
  // For the server another spelling is another company, with the same files.
  if (*it != sCodigo) {
    throw CErroEmpresa("a empresa \"" + sCodigo + "\" está registrada como \""_pt + *it +
                       "\"; escreva o código com as mesmas letras"_pt);
  }
}

void ExigeDiretorio(const std::string &sCodigo) {
  const std::string sOnde = " (valor DF de HKLM\\" + ChaveEmpresas() + "\\" + sCodigo + ")";
  const CString sDiretorio = CQZPath::DiretorioEmpresa(QZ_DF, sCodigo);
  if (sDiretorio.empty()) {
    throw CErroEmpresa("a empresa \"" + sCodigo + "\" não tem diretório de dados"_pt + sOnde);
  }
  if (!EhAbsoluto(sDiretorio)) {
    throw CErroEmpresa("o diretório de dados não é um caminho completo: "_pt + sDiretorio + sOnde);
  }
  const DWORD dwAtributos = GetFileAttributesA(sDiretorio.c_str());
  const bool bEscondido = dwAtributos == INVALID_FILE_ATTRIBUTES && GetLastError() == ERROR_ACCESS_DENIED;
  if (!bEscondido && (dwAtributos == INVALID_FILE_ATTRIBUTES || (dwAtributos & FILE_ATTRIBUTE_DIRECTORY) == 0)) {
    throw CErroEmpresa("o diretório de dados não existe: "_pt + sDiretorio + sOnde);
  }
}

}  // namespace

void ExigeEmpresa(const std::string &sCodigo) {
  ExigeCodigo(sCodigo);
  ExigeDiretorio(sCodigo);
}
