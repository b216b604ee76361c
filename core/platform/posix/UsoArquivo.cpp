#include "core/platform/posix/UsoArquivo.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace plataforma {
namespace {

/// One byte for each statement, from this position on.
constexpr off_t kPrimeiroByte = off_t{1} << 62;

enum Declaracao : off_t { kLe = 0, kGrava = 1, kNegaLeitura = 2, kNegaEscrita = 3 };

struct flock Faixa(short tipo, off_t primeira, off_t qtd) {
  struct flock faixa {};
  faixa.l_type = tipo;
  faixa.l_whence = SEEK_SET;
  faixa.l_start = kPrimeiroByte + primeira;
  faixa.l_len = qtd;
  return faixa;
}

bool OutroDeclara(int fd, off_t primeira, off_t qtd = 1) {
  struct flock faixa = Faixa(F_WRLCK, primeira, qtd);
  // When the system cannot tell, the file counts as taken.
  return ::fcntl(fd, F_OFD_GETLK, &faixa) != 0 || faixa.l_type != F_UNLCK;
}

bool Declara(int fd, Declaracao declaracao) {
  struct flock faixa = Faixa(F_RDLCK, declaracao, 1);
  return ::fcntl(fd, F_OFD_SETLK, &faixa) == 0;
}

bool UsaLeitura(const ModoAbertura &modo) {
  return modo.acesso != Acesso::Escrita;
}
bool UsaEscrita(const ModoAbertura &modo) {
  return modo.acesso != Acesso::Leitura;
}
bool NegaLeitura(const ModoAbertura &modo) {
  return modo.compartilhamento == Compartilhamento::Exclusivo;
}
bool NegaEscrita(const ModoAbertura &modo) {
  return modo.compartilhamento != Compartilhamento::NegaNada;
}

}  // namespace

Descritor::~Descritor() {
  if (m_fd >= 0) {
    ::close(m_fd);
  }
}

Descritor &Descritor::operator=(Descritor &&outro) noexcept {
  std::swap(m_fd, outro.m_fd);
  return *this;
}

int Descritor::Entrega() {
  return std::exchange(m_fd, -1);
}

VezNoArquivo::VezNoArquivo(int fd) : m_fd(fd) {
  while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR) {
  }
}

VezNoArquivo::~VezNoArquivo() {
  ::flock(m_fd, LOCK_UN);
}

bool OutroExclui(int fd, const ModoAbertura &modo) {
  // Emptying a file is writing to it, even for a handle that will only read.
  const bool bGrava = UsaEscrita(modo) || modo.criacao == Criacao::CriaVazio;
  return (UsaLeitura(modo) && OutroDeclara(fd, kNegaLeitura)) || (bGrava && OutroDeclara(fd, kNegaEscrita)) ||
         (NegaLeitura(modo) && OutroDeclara(fd, kLe)) || (NegaEscrita(modo) && OutroDeclara(fd, kGrava));
}

bool DeclaraUso(int fd, const ModoAbertura &modo) {
  return (!UsaLeitura(modo) || Declara(fd, kLe)) && (!UsaEscrita(modo) || Declara(fd, kGrava)) &&
         (!NegaLeitura(modo) || Declara(fd, kNegaLeitura)) && (!NegaEscrita(modo) || Declara(fd, kNegaEscrita));
}

bool EmUso(int fd) {
  return OutroDeclara(fd, kLe, 2);
}

bool AindaNomeia(const char *lpCaminho, int fd) {
  struct stat nomeado {};
  struct stat aberto {};
  return ::stat(lpCaminho, &nomeado) == 0 && ::fstat(fd, &aberto) == 0 && nomeado.st_dev == aberto.st_dev &&
         nomeado.st_ino == aberto.st_ino;
}

bool NinguemGrava(const struct stat &info) {
  return (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace plataforma
