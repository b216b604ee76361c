#include "core/platform/posix/ErrosPosix.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace plataforma {

std::uint32_t ErroWin32DeErrno(int erro) {
  switch (erro) {
    case 0:
      return 0;
    case ENOENT:
      return 2;  // ERROR_FILE_NOT_FOUND
    case ENOTDIR:
    case ELOOP:
      return 3;  // ERROR_PATH_NOT_FOUND
    case EMFILE:
    case ENFILE:
      return 4;  // ERROR_TOO_MANY_OPEN_FILES
    case EACCES:
    case EPERM:
    case EISDIR:
      return 5;  // ERROR_ACCESS_DENIED
    case EBADF:
      return 6;  // ERROR_INVALID_HANDLE
    case ENOMEM:
    case EAGAIN:
      return 8;  // ERROR_NOT_ENOUGH_MEMORY
    case EEXIST:
      return 80;  // ERROR_FILE_EXISTS
    case EXDEV:
      return 17;  // ERROR_NOT_SAME_DEVICE
    case EROFS:
      return 19;  // ERROR_WRITE_PROTECT
    case ETXTBSY:
      return 32;  // ERROR_SHARING_VIOLATION
    case EINVAL:
      return 87;  // ERROR_INVALID_PARAMETER
    case ENOSPC:
    case EDQUOT:
      return 112;  // ERROR_DISK_FULL
    case ENAMETOOLONG:
      return 206;  // ERROR_FILENAME_EXCED_RANGE
    case EFBIG:
      return 223;  // ERROR_FILE_TOO_LARGE
    case EIO:
      return 1117;  // ERROR_IO_DEVICE
    default:
      return 1359;  // ERROR_INTERNAL_ERROR
  }
}

std::uint32_t ErroWin32DeCaminho(int erro, const std::string &sCaminho) {
  struct stat info {};
  if (erro == ENOENT && ::stat(DiretorioDe(sCaminho).c_str(), &info) != 0) {
    return 3;  // ERROR_PATH_NOT_FOUND
  }
  return ErroWin32DeErrno(erro);
}

std::string CaminhoNativo(const CString &sCaminho) {
  // A path ends at its first zero byte for the system calls; cutting it here keeps the directory part consistent.
  std::string sNativo = sCaminho.substr(0, sCaminho.find('\0'));
  std::replace(sNativo.begin(), sNativo.end(), '\\', '/');
  return sNativo;
}

std::string DiretorioDe(const std::string &sCaminho) {
  const std::size_t barra = sCaminho.rfind('/');
  if (barra == std::string::npos) {
    return ".";
  }
  return barra == 0 ? "/" : sCaminho.substr(0, barra);
}

}  // namespace plataforma
