#include "core/platform/posix/ArquivoAberto.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

constexpr std::uint32_t kErroFim = 38;          // ERROR_HANDLE_EOF
constexpr std::uint32_t kErroDiscoCheio = 112;  // ERROR_DISK_FULL

FalhaArquivo UltimaFalha() {
  return FalhaWin32(ErroWin32DeErrno(errno));
}

}  // namespace

ArquivoAberto::ArquivoAberto(Acesso eAcesso) : m_eAcesso(eAcesso) {}

ArquivoAberto::~ArquivoAberto() {
  if (m_pMapa != nullptr) {
    ::munmap(m_pMapa, m_qtdMapa);
  }
}

FalhaArquivo ArquivoAberto::Le(std::uint64_t posicao, void *pDestino, std::size_t qtd) {
  if (m_eAcesso == Acesso::Escrita) {
    return FalhaWin32(kErroAcesso);
  }
  auto *resto = static_cast<char *>(pDestino);
  while (qtd > 0) {
    const ssize_t lidos = ::pread(m_descritor.Numero(), resto, qtd, static_cast<off_t>(posicao));
    if (lidos < 0 && errno == EINTR) {
      continue;
    }
    if (lidos <= 0) {
      return lidos < 0 ? UltimaFalha() : FalhaWin32(kErroFim);
    }
    const auto passo = static_cast<std::size_t>(lidos);
    resto += passo;
    posicao += passo;
    qtd -= passo;
  }
  return kSemFalha;
}

FalhaArquivo ArquivoAberto::Grava(std::uint64_t posicao, const void *pOrigem, std::size_t qtd) {
  if (m_eAcesso == Acesso::Leitura) {
    return FalhaWin32(kErroAcesso);
  }
  const auto *resto = static_cast<const char *>(pOrigem);
  while (qtd > 0) {
    const ssize_t gravados = ::pwrite(m_descritor.Numero(), resto, qtd, static_cast<off_t>(posicao));
    if (gravados < 0 && errno == EINTR) {
      continue;
    }
    if (gravados <= 0) {
      return gravados < 0 ? UltimaFalha() : FalhaWin32(kErroDiscoCheio);
    }
    const auto passo = static_cast<std::size_t>(gravados);
    resto += passo;
    posicao += passo;
    qtd -= passo;
  }
  return kSemFalha;
}

FalhaArquivo ArquivoAberto::Tamanho(std::uint64_t *tamanho) {
  struct stat info {};
  if (::fstat(m_descritor.Numero(), &info) != 0) {
    return UltimaFalha();
  }
  *tamanho = static_cast<std::uint64_t>(info.st_size);
  return kSemFalha;
}

FalhaArquivo ArquivoAberto::AjustaTamanho(std::uint64_t tamanho) {
  if (m_eAcesso == Acesso::Leitura) {
    return FalhaWin32(kErroAcesso);
  }
  return ::ftruncate(m_descritor.Numero(), static_cast<off_t>(tamanho)) == 0 ? kSemFalha : UltimaFalha();
}

FalhaArquivo ArquivoAberto::UltimaEscrita(std::uint64_t *puiTicks) {
  struct stat info {};
  if (::fstat(m_descritor.Numero(), &info) != 0) {
    return UltimaFalha();
  }
  *puiTicks = static_cast<std::uint64_t>(info.st_mtim.tv_sec) * 10'000'000u +
              static_cast<std::uint64_t>(info.st_mtim.tv_nsec) / 100u;
  return kSemFalha;
}

FalhaArquivo ArquivoAberto::Descarrega() {
  return ::fsync(m_descritor.Numero()) == 0 ? kSemFalha : UltimaFalha();
}

FalhaArquivo ArquivoAberto::Mapeia(std::size_t qtd, std::byte **ppBytes) {
  void *const pMapa = ::mmap(nullptr, qtd, PROT_READ | PROT_WRITE, MAP_SHARED, m_descritor.Numero(), 0);
  if (pMapa == MAP_FAILED) {
    return UltimaFalha();
  }
  m_pMapa = pMapa;
  m_qtdMapa = qtd;
  *ppBytes = static_cast<std::byte *>(pMapa);
  return kSemFalha;
}

}  // namespace plataforma
