#ifndef KALVO_CORE_PLATFORM_POSIX_USOARQUIVO_H
#define KALVO_CORE_PLATFORM_POSIX_USOARQUIVO_H

#include <sys/stat.h>

#include "core/platform/Arquivos.h"

namespace plataforma {

/// A file descriptor that closes itself.
class Descritor {
public:
  explicit Descritor(int fd = -1) : m_fd(fd) {}
  ~Descritor();
  Descritor(Descritor &&outro) noexcept : m_fd(outro.Entrega()) {}
  Descritor &operator=(Descritor &&outro) noexcept;
  Descritor(const Descritor &) = delete;
  Descritor &operator=(const Descritor &) = delete;

  int Numero() const { return m_fd; }
  bool Valido() const { return m_fd >= 0; }
  int Entrega();

private:
  int m_fd;
};

// The share rules of Windows, which this system's kernel does not know. Every open file states by byte-range locks
// beyond any real content what it does (reads, writes) and what it denies to others; the locks belong to the open file,
// so that two of one process exclude each other as those of two processes do, and vanish with the last descriptor.
// Stating and looking are two steps; VezNoArquivo makes them one.

/// Keeps everyone else who opens, deletes or moves the same file waiting. Holds the file for a few system calls only.
class VezNoArquivo {
public:
  explicit VezNoArquivo(int fd);
  ~VezNoArquivo();
  VezNoArquivo(const VezNoArquivo &) = delete;
  VezNoArquivo &operator=(const VezNoArquivo &) = delete;

private:
  int m_fd;
};

/// True when another open file excludes this mode. Only with the turn on the file.
bool OutroExclui(int fd, const ModoAbertura &modo);

/// States what this open file does and denies, until its descriptor is closed. False when the system refuses. Only
/// with the turn on the file; the descriptor must be open for reading.
bool DeclaraUso(int fd, const ModoAbertura &modo);

/// True when the file is open anywhere. Only with the turn on the file.
bool EmUso(int fd);

/// True when `lpCaminho` still names the file that `fd` is open on.
bool AindaNomeia(const char *lpCaminho, int fd);

/// True when no one may write to the file: what the read-only attribute is here. The superuser, whom the system would
/// let pass, is bound by it too.
bool NinguemGrava(const struct stat &info);

}  // namespace plataforma

#endif
