#include "tests/com/ApoioCom.h"

#include <tlhelp32.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace apoiocom {
namespace {

/// A company code that no other process and no earlier call uses.
CString CodigoUnico() {
  static std::atomic<unsigned> s_uiNumero{0};
  return "T" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++s_uiNumero);
}

}  // namespace

Empresa::Empresa(const CString &sSubdiretorioAusente) : m_sCodigo(CodigoUnico()) {
  m_registro.DefineTexto("SOFTWARE\\Wow6432Node\\Tarvel\\Empresas\\" + m_sCodigo, "DF",
                         m_pasta.Caminho() + sSubdiretorioAusente);
}

std::string Registros(const Empresa &empresa) {
  constexpr std::size_t kCabecalho = 92;
  const std::string sConteudo = apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT"));
  return sConteudo.size() % 256 == kCabecalho ? sConteudo.substr(kCabecalho) : sConteudo;
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
  return veiculos.Inicializa(Texto(sEmpresa).Ponteiro(), 7, 42);
}

std::string Entrega(IQZDF_Veiculos &veiculos) {
  IStream *pFluxo = nullptr;
  HGLOBAL hMemoria = nullptr;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &pFluxo))) {
    return "";
  }
  const Ponteiro<IStream> spFluxo(pFluxo);
  if (FAILED(CoMarshalInterface(pFluxo, IID_IQZDF_Veiculos, &veiculos, MSHCTX_LOCAL, nullptr, MSHLFLAGS_NORMAL)) ||
      FAILED(GetHGlobalFromStream(pFluxo, &hMemoria))) {
    return "";
  }
  std::string sTexto;
  const auto *pBytes = static_cast<const unsigned char *>(GlobalLock(hMemoria));
  for (SIZE_T i = 0; i < GlobalSize(hMemoria); ++i) {
    std::array<char, 3> par{};
    std::snprintf(par.data(), par.size(), "%02x", pBytes[i]);
    sTexto += par.data();
  }
  GlobalUnlock(hMemoria);
  return sTexto;
}

Veiculos Recebe(const std::string &sEntregue) {
  IStream *pFluxo = nullptr;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &pFluxo))) {
    return nullptr;
  }
  const Ponteiro<IStream> spFluxo(pFluxo);
  for (std::size_t i = 0; i + 1 < sEntregue.size(); i += 2) {
    const auto cByte = static_cast<unsigned char>(std::stoul(sEntregue.substr(i, 2), nullptr, 16));
    pFluxo->Write(&cByte, 1, nullptr);
  }
  pFluxo->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
  void *pObjeto = nullptr;
  CoUnmarshalInterface(pFluxo, IID_IQZDF_Veiculos, &pObjeto);
  return Veiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
}

Veiculos Abre(std::string_view sEmpresa) {
  Veiculos spVeiculos = Cria();
  if (spVeiculos && FAILED(Inicializa(*spVeiculos, sEmpresa))) {
    spVeiculos.reset();
  }
  return spVeiculos;
}

tagREG_VEICULOPS Veiculo(std::string_view sCodigo) {
  tagREG_VEICULOPS veiculo{};
  veiculo.vTara = 75000000;
  veiculo.vCapacidadeKg = 120000000;
  veiculo.vCapacidadeM3 = 455000;
  veiculo.iAno = 2020;
  veiculo.iPonteiroCliente = 17;
  Preenche(veiculo.szDescricao, "CAMINHAO TOCO");
  Preenche(veiculo.szCodigoANTT, "12345678");
  Preenche(veiculo.szCodigo, sCodigo);
  Preenche(veiculo.szRENAVAM, "00123456789");
  Preenche(veiculo.szPlaca, "ABC1D23");
  Preenche(veiculo.szUF, "SP");
  veiculo.iTipoCarroceria = 2;
  veiculo.iTipoRodado = 1;
  veiculo.iTipoTransporte = 1;
  return veiculo;
}

std::string CodigoDe(const tagREG_VEICULOPS &veiculo) {
  return std::string(veiculo.szCodigo, strnlen(veiculo.szCodigo, sizeof(veiculo.szCodigo)));
}

std::vector<LONG> Busca(IQZDF_Veiculos &veiculos, const tagREG_FILTRO_VEICULOSPS &filtro, HRESULT *phr) {
  tagRESULTADO_BUSCA_VEICULOS resultado{};
  *phr = veiculos.BuscaPonteiros(filtro, &resultado);
  std::vector<LONG> posicoes;
  if ((resultado.iQtd != 0) != (resultado.Ponteiros != nullptr) || resultado.pFiller != nullptr) {
    *phr = E_UNEXPECTED;
  } else if (resultado.iQtd != 0) {
    posicoes.assign(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
  }
  CoTaskMemFree(resultado.Ponteiros);
  return posicoes;
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

Handle IniciaKalvo() {
  STARTUPINFOA inicio{};
  inicio.cb = sizeof(inicio);
  PROCESS_INFORMATION processo{};
  std::string sLinha = "\"" + PastaDoPrograma() + "Kalvo.exe\"";
  if (!CreateProcessA(nullptr, sLinha.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &inicio, &processo)) {
    return nullptr;
  }
  CloseHandle(processo.hThread);
  return Handle(processo.hProcess);
}

DWORD Executa(const std::string &sPrograma, const std::string &sArgumentos, std::string *psSaida) {
  const apoio::PastaTemporaria pasta;
  const CString sSaida = pasta / "saida.txt";
  SECURITY_ATTRIBUTES heranca{sizeof(heranca), nullptr, TRUE};
  Handle hSaida(CreateFileA(sSaida.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &heranca, CREATE_ALWAYS, 0, nullptr));
  STARTUPINFOA inicio{};
  inicio.cb = sizeof(inicio);
  inicio.dwFlags = STARTF_USESTDHANDLES;
  inicio.hStdOutput = hSaida.get();
  inicio.hStdError = hSaida.get();
  PROCESS_INFORMATION processo{};
  std::string sLinha = "\"" + sPrograma + "\" " + sArgumentos;
  DWORD dwCodigo = 0xFFFFFFFF;
  if (CreateProcessA(nullptr, sLinha.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &inicio, &processo)) {
    const Handle hThread(processo.hThread);
    const Handle hProcesso(processo.hProcess);
    if (WaitForSingleObject(hProcesso.get(), kPrazo) == WAIT_OBJECT_0) {
      GetExitCodeProcess(hProcesso.get(), &dwCodigo);
    }
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
