#include "tests/com/ApoioCom.h"

#include <tlhelp32.h>

#include <array>
#include <cstdlib>

namespace apoiocom {
namespace {

/// Starts a program; what it writes goes to a file where one is given. Its process, null when that fails.
Handle Inicia(std::string sLinha, HANDLE hSaida) {
  STARTUPINFOA inicio{};
  inicio.cb = sizeof(inicio);
  inicio.dwFlags = hSaida != nullptr ? STARTF_USESTDHANDLES : 0U;
  inicio.hStdOutput = hSaida;
  inicio.hStdError = hSaida;
  PROCESS_INFORMATION processo{};
  if (!CreateProcessA(nullptr, sLinha.data(), nullptr, nullptr, hSaida != nullptr, 0, nullptr, nullptr, &inicio,
                      &processo)) {
    return nullptr;
  }
  CloseHandle(processo.hThread);
  return Handle(processo.hProcess);
}

}  // namespace

std::string Registros(const Empresa &empresa) {
  constexpr std::size_t kCabecalho = 92;
  const std::string sConteudo = empresa.Le("DFVEIC.DAT");
  return sConteudo.size() % 256 == kCabecalho ? sConteudo.substr(kCabecalho) : sConteudo;
}

std::vector<std::string> CodigosNoDisco(const Empresa &empresa) {
  constexpr std::size_t kRegistro = 256;
  const std::string sRegistros = Registros(empresa);
  std::vector<std::string> codigos((sRegistros.size() + kRegistro - 1) / kRegistro);
  for (std::size_t i = 0; i < codigos.size(); ++i) {
    codigos[i] = sRegistros.c_str() + i * kRegistro;
  }
  return codigos;
}

Veiculos Cria(HRESULT *phr) {
  void *pObjeto = nullptr;
  const HRESULT hr = CoCreateInstance(CLSID_CQZDF_Veiculos, nullptr, CLSCTX_LOCAL_SERVER, IID_IQZDF_Veiculos, &pObjeto);
  if (phr != nullptr) {
    *phr = hr;
  }
  return Veiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
}

HRESULT Inicializa(IQZDF_Veiculos &veiculos, std::string_view sEmpresa) {
  return veiculos.Inicializa(Texto(sEmpresa).Get(), 7, 42);
}

Veiculos Abre(std::string_view sEmpresa) {
  Veiculos spVeiculos = Cria();
  if (spVeiculos && FAILED(Inicializa(*spVeiculos, sEmpresa))) {
    spVeiculos.reset();
  }
  return spVeiculos;
}

tagREG_VEICULOPS Veiculo(std::string_view sCodigo) {
  tagREG_VEICULOPS veiculo{
      75000000, 120000000, 455000, 2020, 17, "CAMINHAO TOCO", "12345678", "", "00123456789", "ABC1D23", "SP", 2, 1,
      0,        1,         0,      0,    {}};
  Preenche(veiculo.szCodigo, sCodigo);
  return veiculo;
}

std::string PastaDoPrograma() {
  std::array<char, MAX_PATH> caminho{};
  GetModuleFileNameA(nullptr, caminho.data(), MAX_PATH);
  const std::string sCaminho = caminho.data();
  return sCaminho.substr(0, sCaminho.find_last_of('\\') + 1);
}

DWORD ExecutaKalvo(const std::string &sArgumentos, std::string *psErro) {
  return Executa(PastaDoPrograma() + "Kalvo.exe", sArgumentos, psErro);
}

Handle IniciaKalvo(const std::string &sArgumentos) {
  return Inicia("\"" + PastaDoPrograma() + "Kalvo.exe\" " + sArgumentos, nullptr);
}

DWORD Executa(const std::string &sPrograma, const std::string &sArgumentos, std::string *psSaida) {
  const apoio::PastaTemporaria pasta;
  const CString sSaida = pasta / "saida.txt";
  SECURITY_ATTRIBUTES heranca{sizeof(heranca), nullptr, TRUE};
  Handle hSaida(CreateFileA(sSaida.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &heranca, CREATE_ALWAYS, 0, nullptr));
  const Handle hProcesso = Inicia("\"" + sPrograma + "\" " + sArgumentos, hSaida.get());
  DWORD dwCodigo = 0xFFFFFFFF;
  if (hProcesso && WaitForSingleObject(hProcesso.get(), kPrazo) == WAIT_OBJECT_0) {
    GetExitCodeProcess(hProcesso.get(), &dwCodigo);
  }
  hSaida.reset();
  if (psSaida != nullptr) {
    *psSaida = apoio::LeArquivo(sSaida);
  }
  return dwCodigo;
}

std::vector<Handle> Servidores() {
  constexpr DWORD kAcesso = SYNCHRONIZE | PROCESS_TERMINATE | PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
  std::vector<Handle> servidores;
  const Handle hRetrato(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32 processo{};
  processo.dwSize = sizeof(processo);
  for (BOOL bHa = Process32First(hRetrato.get(), &processo); bHa; bHa = Process32Next(hRetrato.get(), &processo)) {
    if (lstrcmpiA(processo.szExeFile, "Kalvo.exe") == 0) {
      if (HANDLE h = OpenProcess(kAcesso, FALSE, processo.th32ProcessID)) {
        servidores.emplace_back(h);
      }
    }
  }
  return servidores;
}

void EsqueceServidores() {
  std::system("net stop RpcSs >NUL 2>&1");
}

long EsperaServidorTerminar() {
  const ULONGLONG ullInicio = GetTickCount64();
  for (const Handle &hServidor : Servidores()) {
    if (WaitForSingleObject(hServidor.get(), kPrazo) != WAIT_OBJECT_0) {
      return -1;
    }
  }
  return static_cast<long>(GetTickCount64() - ullInicio);
}

}  // namespace apoiocom
