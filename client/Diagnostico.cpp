#include "client/Diagnostico.h"

#include <windows.h>

#include <oleauto.h>

#include <chrono>
#include <optional>
#include <string_view>

#include "client/Codificacao.h"
#include "client/Console.h"
#include "client/EmpresaRegistrada.h"
#include "client/ProcessosServidor.h"
#include "client/QZVeiculosCliente.h"
#include "client/RegistroClasses.h"
#include "client/Remedios.h"
#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"
#include "core/platform/win32/Posses.h"

namespace {

enum class EAchado { Bom, Aviso, Falha };

/// The findings as they are made. Labels are UTF-8 literals; texts are Windows-1252.
class CRelatorio {
public:
  static void Titulo(const std::string &sTitulo) { Escreve(sTitulo + "\n"); }

  void Anota(EAchado eTipo, std::string_view sRotulo, const std::string &sTexto) {
    constexpr std::string_view kMarcas[] = {"  [ok]    ", "  [aviso] ", "  [FALHA] "};
    constexpr std::size_t kLargura = 24;
    std::string sLinha = Pt(sRotulo);
    sLinha.resize(kLargura, '.');
    Escreve(std::string(kMarcas[static_cast<std::size_t>(eTipo)]) + sLinha + " " + sTexto + "\n");
    m_uiFalhas += eTipo == EAchado::Falha ? 1U : 0U;
  }
  void Bom(std::string_view sRotulo, const std::string &sTexto) { Anota(EAchado::Bom, sRotulo, sTexto); }
  void Aviso(std::string_view sRotulo, const std::string &sTexto) { Anota(EAchado::Aviso, sRotulo, sTexto); }
  /// sRemedio is what to do.
  void Falha(std::string_view sRotulo, const std::string &sTexto, const std::string &sRemedio) {
    Anota(EAchado::Falha, sRotulo, sTexto);
    if (!sRemedio.empty()) {
      Escreve("          o que fazer: " + sRemedio + "\n");
    }
  }
  void Falha(std::string_view sRotulo, HRESULT hr) {
    Falha(sRotulo, CQZErroVeiculos(hr).what(), RemedioDoErro(static_cast<std::uint32_t>(hr)));
  }

  unsigned Falhas() const { return m_uiFalhas; }

private:
  unsigned m_uiFalhas = 0;
};

constexpr char kRegistre[] = "registre: Kalvo.exe /RegServer, como administrador";
constexpr char kRegistreDaqui[] =
    "a pasta foi movida ou apagada; registre de onde o arquivo está agora: Kalvo.exe /RegServer";
constexpr char kRegistreComProxy[] = "registre de novo, com QZDF_VeiculosPS.dll ao lado de Kalvo.exe";
constexpr char kRegistreComProxy32[] = "registre de novo, com x86\\QZDF_VeiculosPS.dll ao lado de Kalvo.exe";

std::string NomeLegivel(const std::wstring &sTexto) {
  return De16Para1252(sTexto).value_or("(nome fora do Windows-1252)");
}

std::string ComRaiz(const CValorClasse &valor) {
  return " (" + std::string(valor.pRaiz) + ")";
}

std::string Falta(const std::wstring &sChave) {
  return "falta a chave Software\\Classes\\" + NomeLegivel(sChave) + " em HKCU e em HKLM";
}

std::wstring ChaveClasse() {
  return L"CLSID\\" + TextoGuid(CLSID_CQZDF_Veiculos);
}

/// The file that a key names; a fault and nothing when it is not registered or not there. sRegistre is how to register
/// it.
std::optional<CValorClasse> ConfereArquivo(CRelatorio &relatorio, std::string_view sRotulo, const std::wstring &sChave,
                                           std::string_view sRegistre = kRegistre) {
  std::optional<CValorClasse> valor = ProcuraClasse(sChave);
  if (!valor) {
    relatorio.Falha(sRotulo, Falta(sChave), Pt(sRegistre));
    return std::nullopt;
  }
  valor->sTexto = ProgramaDaLinha(valor->sTexto);
  if (!ExisteArquivo(valor->sTexto)) {
    relatorio.Falha(sRotulo, NomeLegivel(valor->sTexto) + ComRaiz(*valor) + ": o arquivo não existe"_pt,
                    Pt(sRegistre == kRegistre ? kRegistreDaqui : sRegistre));
    return std::nullopt;
  }
  return valor;
}

void ConfereClasse(CRelatorio &relatorio) {
  const std::wstring sProgId = L"Kalvo.QZDF_Veiculos";
  const std::optional<CValorClasse> classe = ProcuraClasse(ChaveClasse());
  if (classe) {
    relatorio.Bom("classe ", NomeLegivel(TextoGuid(CLSID_CQZDF_Veiculos)) + ComRaiz(*classe));
  } else {
    relatorio.Falha("classe ", Falta(ChaveClasse()), kRegistre);
  }
  const std::optional<CValorClasse> progId = ProcuraClasse(sProgId + L"\\CLSID");
  if (!progId) {
    relatorio.Falha("ProgID ", Falta(sProgId), kRegistre);
  } else if (lstrcmpiW(progId->sTexto.c_str(), TextoGuid(CLSID_CQZDF_Veiculos).c_str()) != 0) {
    relatorio.Falha("ProgID ", NomeLegivel(sProgId) + " é de outra classe: "_pt + NomeLegivel(progId->sTexto),
                    kRegistre);
  } else {
    relatorio.Bom("ProgID ", NomeLegivel(sProgId) + ComRaiz(*progId));
  }
}

void ConfereServidor(CRelatorio &relatorio) {
  const std::wstring sChave = ChaveClasse() + L"\\LocalServer32";
  if (const auto servidor = ConfereArquivo(relatorio, "servidor ", sChave)) {
    relatorio.Bom("servidor ", NomeLegivel(servidor->sTexto) + ", versão "_pt + VersaoDoArquivo(servidor->sTexto) +
                                   ComRaiz(*servidor));
  }
  const auto doUsuario = ProcuraClasseEm(HKEY_CURRENT_USER, sChave);
  const auto daMaquina = ProcuraClasseEm(HKEY_LOCAL_MACHINE, sChave);
  if (doUsuario && daMaquina && doUsuario->sTexto != daMaquina->sTexto) {
    relatorio.Aviso("servidor ", "outro está registrado para a máquina: "_pt + NomeLegivel(daMaquina->sTexto) +
                                     "; programas elevados usam esse"_pt);
  }
}

void ConfereBiblioteca(CRelatorio &relatorio) {
  const auto biblioteca =
      ConfereArquivo(relatorio, "biblioteca de tipos ", L"TypeLib\\" + TextoGuid(LIBID_Kalvo) + L"\\1.0\\0\\win64");
  if (!biblioteca) {
    return;
  }
  ITypeLib *pBiblioteca = nullptr;
  const HRESULT hr = LoadTypeLibEx(biblioteca->sTexto.c_str(), REGKIND_NONE, &pBiblioteca);
  if (FAILED(hr)) {
    relatorio.Falha("biblioteca de tipos ", NomeLegivel(biblioteca->sTexto) + ": " + CQZErroVeiculos(hr).what(),
                    kRegistre);
    return;
  }
  pBiblioteca->Release();
  relatorio.Bom("biblioteca de tipos ", NomeLegivel(biblioteca->sTexto) + ComRaiz(*biblioteca));
}

/// The proxy that 32-bit programs load, from their own view of the classes; this one cannot load it.
void ConfereProxy32(CRelatorio &relatorio) {
  constexpr std::string_view kRotulo = "proxy de 32 bits ";
  const std::wstring sVisao = L"Wow6432Node\\";
  const std::wstring sInterface = sVisao + L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos) + L"\\ProxyStubClsid32";
  const std::optional<CValorClasse> interface_ = ProcuraClasse(sInterface);
  if (!interface_) {
    relatorio.Falha(kRotulo, Falta(sInterface), kRegistreComProxy32);
    return;
  }
  if (const auto proxy = ConfereArquivo(
          relatorio, kRotulo, sVisao + L"CLSID\\" + interface_->sTexto + L"\\InProcServer32", kRegistreComProxy32)) {
    relatorio.Bom(kRotulo,
                  NomeLegivel(proxy->sTexto) + ", versão "_pt + VersaoDoArquivo(proxy->sTexto) + ComRaiz(*proxy));
  }
}

void ConfereProxy(CRelatorio &relatorio) {
  const std::wstring sInterface = L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos) + L"\\ProxyStubClsid32";
  const std::optional<CValorClasse> interface_ = ProcuraClasse(sInterface);
  if (!interface_) {
    relatorio.Falha("interface ", Falta(sInterface), kRegistreComProxy);
    return;
  }
  relatorio.Bom("interface ", NomeLegivel(TextoGuid(IID_IQZDF_Veiculos)) + ComRaiz(*interface_));
  const auto proxy =
      ConfereArquivo(relatorio, "proxy ", L"CLSID\\" + interface_->sTexto + L"\\InProcServer32", kRegistreComProxy);
  if (!proxy) {
    return;
  }
  const plataforma::PosseModulo spModulo(LoadLibraryExW(proxy->sTexto.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  if (!spModulo) {
    const HRESULT hr = HRESULT_FROM_WIN32(GetLastError());
    relatorio.Falha("proxy ", NomeLegivel(proxy->sTexto) + " não pode ser carregado: "_pt + TextoCodigoErro(hr),
                    kRegistreComProxy);
    return;
  }
  relatorio.Bom("proxy ",
                NomeLegivel(proxy->sTexto) + ", versão "_pt + VersaoDoArquivo(proxy->sTexto) + ComRaiz(*proxy));
}

void ConfereInstalacao(CRelatorio &relatorio) {
  constexpr std::string_view kRotulo = "instalação ";
  const std::string sValor = "valor Path de HKLM\\" + std::string(kChaveSuite) + "Miran Empresarial";
  const std::string sRemedio = "o instalador da suíte grava este valor; sem ele, adapte e importe Kalvo-exemplo.reg"_pt;
  const CString sDiretorio = CQZPath::DiretorioInstalacao(QZ_DF);
  if (sDiretorio.empty()) {
    relatorio.Falha(kRotulo, "falta o " + sValor, sRemedio);
    return;
  }
  const DWORD dwAtributos = GetFileAttributesA(sDiretorio.c_str());
  if (dwAtributos == INVALID_FILE_ATTRIBUTES || (dwAtributos & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    relatorio.Falha(kRotulo, sDiretorio + ": o diretório não existe ("_pt + sValor + ")",
                    "crie o diretório ou corrija o valor"_pt);
    return;
  }
  relatorio.Bom(kRotulo, sDiretorio);
}

/// True when the server may be asked to open the company.
bool ConfereEmpresa(CRelatorio &relatorio, const std::string &sEmpresa) {
  constexpr std::string_view kRotulo = "empresa ";
  try {
    ExigeEmpresa(sEmpresa);
  } catch (const CErroEmpresa &erro) {
    relatorio.Falha(
        kRotulo, erro.what(),
        "confira o código; se está certo, crie o diretório da empresa ou corrija o valor DF do registro"_pt);
    return false;
  }
  relatorio.Bom(kRotulo, CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa));
  return true;
}

void ConfereCabecalhos(CRelatorio &relatorio) {
  const bool bLigados = plataforma::Registro().LeNumero(kChaveSuite, "QZDataBase_HabilitarCabecalho").value_or(0) != 0;
  relatorio.Bom("cabeçalhos ", bLigados ? "ligados" : "desligados");
}

void ConfereProcessos(CRelatorio &relatorio) {
  constexpr std::string_view kRotulo = "servidores ";
  const CProcessosServidor processos = ContaProcessosServidor();
  if (processos.uiMeus > 1) {
    relatorio.Aviso(kRotulo, std::to_string(processos.uiMeus) +
                                 " desta conta e sessão: os que uma ativação simultânea deixou sem cliente terminam em "
                                 "30 segundos, os iniciados à mão ficam"_pt);
  } else if (processos.uiMeus == 1) {
    relatorio.Bom(kRotulo, "1 desta conta e sessão"_pt);
  }
  if (processos.uiOutros == 0) {
    return;
  }
  const std::string sOutros = std::to_string(processos.uiOutros) + " de outra conta, sessão ou elevação"_pt;
  if (processos.uiMeus == 0) {
    relatorio.Bom(kRotulo, sOutros);
  } else {
    relatorio.Aviso(kRotulo, sOutros + ": cada uma tem o seu servidor, e só um abre uma empresa"_pt);
  }
}

/// True when a service object could be made.
bool ConfereAtivacao(CRelatorio &relatorio, CQZVeiculosHR &veiculos) {
  const bool bJaExecutava = ContaProcessosServidor().Todos() != 0;
  const auto tInicio = std::chrono::steady_clock::now();
  const HRESULT hr = veiculos.Cria();
  const auto tempo = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - tInicio);
  if (FAILED(hr)) {
    relatorio.Falha("ativação ", hr);
    return false;
  }
  relatorio.Bom("ativação ", std::to_string(tempo.count()) + (bJaExecutava ? " ms (o servidor já estava em execução)"_pt
                                                                           : " ms (o servidor foi iniciado agora)"));
  return true;
}

/// True when the company is open.
bool ConfereBase(CRelatorio &relatorio, CQZVeiculosHR &veiculos, const CAbertura &abertura) {
  constexpr std::string_view kRotulo = "base ";
  unsigned uiQtd = 0;
  HRESULT hr = veiculos.Inicializa(abertura.sEmpresa, abertura.iUsuario, abertura.iSessao);
  if (SUCCEEDED(hr)) {
    hr = veiculos.GetQuantidadeRegistros(uiQtd);
  }
  if (FAILED(hr)) {
    relatorio.Falha(kRotulo, hr);
    return false;
  }
  relatorio.Bom(kRotulo, "aberta, " + std::to_string(uiQtd) + (uiQtd == 1 ? " registro" : " registros"));
  return true;
}

}  // namespace

bool Diagnostica(const CAbertura &abertura, bool bAbre) {
  CRelatorio relatorio;
  CRelatorio::Titulo("Registro");
  ConfereClasse(relatorio);
  ConfereServidor(relatorio);
  ConfereBiblioteca(relatorio);
  ConfereProxy(relatorio);
  ConfereProxy32(relatorio);
  CRelatorio::Titulo("Diretórios"_pt);
  ConfereInstalacao(relatorio);
  const bool bEmpresa = !abertura.sEmpresa.empty() && ConfereEmpresa(relatorio, abertura.sEmpresa);
  ConfereCabecalhos(relatorio);
  CRelatorio::Titulo("Servidor");
  const CQZApartamento apartamento;
  CQZVeiculosHR veiculos;
  const bool bAtivo = ConfereAtivacao(relatorio, veiculos);
  const bool bAberta = bAtivo && bAbre && bEmpresa && ConfereBase(relatorio, veiculos, abertura);
  ConfereProcessos(relatorio);
  Escreve(relatorio.Falhas() != 0 ? "Falhas encontradas: " + std::to_string(relatorio.Falhas()) + "\n"
          : bAberta               ? std::string("Tudo em ordem.\n")
                    : "Nenhuma falha; se a base abre, mostra veiculos --empresa CODIGO diagnostico --abre.\n");
  return relatorio.Falhas() == 0;
}
