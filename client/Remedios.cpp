#include "client/Remedios.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "client/Codificacao.h"

namespace {

/// All codes from one to another. Several may take in the same code: the first in the table counts.
struct CRemedio {
  std::uint32_t uiDe;
  std::uint32_t uiAte;
  std::string_view sTexto;  ///< UTF-8
};

constexpr std::string_view kRegistre =
    "registre o servidor (Kalvo.exe /RegServer); veiculos diagnostico diz o que falta";
constexpr std::string_view kOutroPrograma =
    "veja quem tem o arquivo aberto: um segundo servidor, de outra conta ou sessão, um backup ou um antivírus";
constexpr std::string_view kRestaure = "restaure o arquivo do backup";
constexpr std::string_view kCopiaReparada =
    "restaure o arquivo do backup; sem backup, qzdados recupera grava uma cópia reparada";
constexpr std::string_view kConfiraDisco = "confira o disco; restaure o arquivo se ficou curto";
constexpr std::string_view kAtualize = "instale o servidor atual";
constexpr std::string_view kMemoria = "feche outros programas ou reinicie o servidor";
constexpr std::string_view kRelate = "relate a falha com o arquivo QZProfilerErros.dat";
constexpr std::string_view kOutroObjeto = "tente de novo: um novo servidor é iniciado";

constexpr std::array kRemedios{
    CRemedio{0x80004002U, 0x80004002U, "registre de novo, com QZDF_VeiculosPS.dll ao lado de Kalvo.exe"},
    CRemedio{0x80040154U, 0x80040154U, kRegistre},
    CRemedio{0x80040155U, 0x80040155U, "registre de novo, com QZDF_VeiculosPS.dll ao lado de Kalvo.exe"},
    CRemedio{0x80070005U, 0x80070005U,
             "veja em dcomcnfg as permissões de início e de acesso do aplicativo Kalvo, e os direitos desta conta na "
             "pasta do servidor"},
    CRemedio{0x8007000EU, 0x8007000EU, kMemoria},
    CRemedio{0x80080005U, 0x80080005U,
             "inicie Kalvo.exe à mão; o motivo está em QZProfilerErros.dat do diretório de instalação ou no log de "
             "eventos"},
    CRemedio{0x80080008U, 0x80080008U, kOutroObjeto},
    CRemedio{0x800706BAU, 0x800706BAU, kOutroObjeto},
    CRemedio{0x800706BEU, 0x800706BEU, kOutroObjeto},
    CRemedio{0x810809C7U, 0x810809C7U, kAtualize},
    CRemedio{0x810809CFU, 0x810809CFU, "informe o código da empresa"},
    CRemedio{0x810809D6U, 0x810809D6U,
             "veja quem tem o arquivo aberto; a próxima abertura da empresa tenta de novo e nada se perde"},
    CRemedio{0x810809D8U, 0x810809D8U,
             "se os cabeçalhos já estiveram ligados, ligue-os de novo; senão qzdados verifica diz o que o arquivo tem"},
    CRemedio{0x810809D9U, 0x810809D9U, "a primeira posição é 1"},
    CRemedio{0x810809DAU, 0x810809DBU, "veiculos conta mostra a última posição"},
    CRemedio{0x810809E3U, 0x810809E3U, "nada, se nenhum veículo foi gravado ainda"},
    CRemedio{0x810809E6U, 0x810809E6U, kOutroPrograma},
    CRemedio{0x810809E7U, 0x810809E7U,
             "se os cabeçalhos já estiveram ligados, ligue-os de novo; senão qzdados verifica diz o que o arquivo tem"},
    CRemedio{0x810809F1U, 0x810809F1U, kRelate},
    CRemedio{0x810809F2U, 0x810809F2U, kOutroPrograma},
    CRemedio{0x81080A3EU, 0x81080A3EU, kAtualize},
    CRemedio{0x81080A3FU, 0x81080A3FU, kCopiaReparada},
    CRemedio{0x81080A40U, 0x81080A40U, kRelate},
    CRemedio{0x81080A42U, 0x81080A42U, kCopiaReparada},
    CRemedio{0x81080A43U, 0x81080A43U, "ponha o arquivo certo no seu lugar"},
    CRemedio{0x81080A50U, 0x81080A50U, kRestaure},
    CRemedio{0x80043EB7U, 0x80043EB7U, "veja os direitos no diretório da empresa"},
    CRemedio{0x80043EBFU, 0x80043EBFU, "crie o diretório da empresa ou corrija o valor DF do registro"},
    CRemedio{0x80043EC7U, 0x80043EC7U, "reinicie a máquina e relate a falha"},
    CRemedio{0x80043ED0U, 0x80043ED0U, "dê à conta do servidor o direito de ler e gravar"},
    CRemedio{0x80043ED1U, 0x80043ED1U, "retire o atributo de somente leitura do arquivo"},
    CRemedio{0x80043EE2U, 0x80043EE5U, "confira o disco"},
    CRemedio{0x80043E8CU, 0x80043E8CU, kConfiraDisco},
    CRemedio{0x80043E95U, 0x80043E95U, kConfiraDisco},
    CRemedio{0x80043EA7U, 0x80043EA7U, kConfiraDisco},
    CRemedio{0x80043EEEU, 0x80043EEEU, kOutroPrograma},
    CRemedio{0x80043F00U, 0x80043F00U, kOutroPrograma},
    CRemedio{0x80043F08U, 0x80043F08U, "libere espaço; a gravação seguinte volta a funcionar"},
    CRemedio{0x80043F10U, 0x80043F10U, "veja o log de eventos do Windows"},
    CRemedio{0x8004EA62U, 0x8004EA62U, kMemoria},
    CRemedio{0x8004EA64U, 0x8004EA64U, kMemoria},
    CRemedio{0x8004EA61U, 0x8004EA66U, kRelate},
    CRemedio{0x8004EAC5U, 0x8004EADBU, kRelate},
    CRemedio{0x8004EE47U, 0x8004EE47U, kRelate},
};

}  // namespace

std::string RemedioDoErro(std::uint32_t uiCodigo) {
  const auto it = std::find_if(kRemedios.begin(), kRemedios.end(), [&](const CRemedio &remedio) {
    return remedio.uiDe <= uiCodigo && uiCodigo <= remedio.uiAte;
  });
  return it == kRemedios.end() ? std::string() : Pt(it->sTexto);
}
