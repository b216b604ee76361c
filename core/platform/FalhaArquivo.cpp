#include "core/platform/FalhaArquivo.h"

namespace plataforma {

CausaArquivo CausaDoErroWin32(std::uint32_t erro) {
  switch (erro) {
    case 0:  // ERROR_SUCCESS
      return CausaArquivo::Nenhuma;
    case 2:  // ERROR_FILE_NOT_FOUND
      return CausaArquivo::NaoEncontrado;
    case 3:    // ERROR_PATH_NOT_FOUND
    case 15:   // ERROR_INVALID_DRIVE
    case 53:   // ERROR_BAD_NETPATH
    case 67:   // ERROR_BAD_NET_NAME
    case 123:  // ERROR_INVALID_NAME
    case 161:  // ERROR_BAD_PATHNAME
    case 206:  // ERROR_FILENAME_EXCED_RANGE
      return CausaArquivo::CaminhoInvalido;
    case 4:  // ERROR_TOO_MANY_OPEN_FILES
      return CausaArquivo::MuitosAbertos;
    case 5:   // ERROR_ACCESS_DENIED
    case 19:  // ERROR_WRITE_PROTECT
    case 65:  // ERROR_NETWORK_ACCESS_DENIED
    case 82:  // ERROR_CANNOT_MAKE
      return CausaArquivo::AcessoNegado;
    case 6:  // ERROR_INVALID_HANDLE
      return CausaArquivo::ArquivoInvalido;
    case 16:  // ERROR_CURRENT_DIRECTORY
      return CausaArquivo::RemoveDiretorioAtual;
    case 25:   // ERROR_SEEK
    case 131:  // ERROR_NEGATIVE_SEEK
      return CausaArquivo::PosicaoInvalida;
    case 23:    // ERROR_CRC
    case 29:    // ERROR_WRITE_FAULT
    case 30:    // ERROR_READ_FAULT
    case 31:    // ERROR_GEN_FAILURE
    case 1117:  // ERROR_IO_DEVICE
      return CausaArquivo::ErroFisico;
    case 32:  // ERROR_SHARING_VIOLATION
      return CausaArquivo::ViolacaoCompartilhamento;
    case 33:  // ERROR_LOCK_VIOLATION
    case 36:  // ERROR_SHARING_BUFFER_EXCEEDED
      return CausaArquivo::ViolacaoBloqueio;
    case 38:  // ERROR_HANDLE_EOF
      return CausaArquivo::FimDeArquivo;
    case 39:   // ERROR_HANDLE_DISK_FULL
    case 112:  // ERROR_DISK_FULL
      return CausaArquivo::DiscoCheio;
    default:
      return CausaArquivo::Generica;
  }
}

}  // namespace plataforma
