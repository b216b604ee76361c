#include "core/platform/Arquivos.h"

#include <windows.h>

#include <algorithm>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

/// The failure of the system call that has just failed.
FalhaArquivo UltimaFalha() {
  const DWORD erro = ::GetLastError();
  return erro != 0 ? FalhaWin32(erro) : FalhaArquivo{CausaArquivo::Generica, 0};
}

constexpr std::size_t kMaiorTransferencia = 0xFFFFFFFFu;

OVERLAPPED NaPosicao(std::uint64_t posicao) {
  OVERLAPPED sobreposto{};
  sobreposto.Offset = static_cast<DWORD>(posicao);
  sobreposto.OffsetHigh = static_cast<DWORD>(posicao >> 32);
  return sobreposto;
}

DWORD AcessoWin32(Acesso eAcesso) {
  switch (eAcesso) {
    case Acesso::Leitura:
      return GENERIC_READ;
    case Acesso::Escrita:
      return GENERIC_WRITE;
    default:
      return GENERIC_READ | GENERIC_WRITE;
  }
}

DWORD CompartilhamentoWin32(Compartilhamento eCompartilhamento) {
  switch (eCompartilhamento) {
    case Compartilhamento::Exclusivo:
      return 0;
    case Compartilhamento::NegaEscrita:
      return FILE_SHARE_READ;
    default:
      return FILE_SHARE_READ | FILE_SHARE_WRITE;
  }
}

DWORD CriacaoWin32(Criacao eCriacao) {
  switch (eCriacao) {
    case Criacao::SoExistente:
      return OPEN_EXISTING;
    case Criacao::CriaNovo:
      return CREATE_NEW;
    case Criacao::AbreOuCria:
      return OPEN_ALWAYS;
    default:
      return CREATE_ALWAYS;
  }
}

class ArquivoAberto final : public IArquivoAberto {
public:
  FalhaArquivo Le(std::uint64_t posicao, void *pDestino, std::size_t qtd) override {
    auto *resto = static_cast<char *>(pDestino);
    while (qtd > 0) {
      OVERLAPPED sobreposto = NaPosicao(posicao);
      DWORD lidos = 0;
      const auto pedido = static_cast<DWORD>(std::min(qtd, kMaiorTransferencia));
      if (!::ReadFile(m_arquivo.get(), resto, pedido, &lidos, &sobreposto)) {
        return UltimaFalha();
      }
      if (lidos == 0) {
        return FalhaWin32(ERROR_HANDLE_EOF);
      }
      resto += lidos;
      posicao += lidos;
      qtd -= lidos;
    }
    return kSemFalha;
  }

  FalhaArquivo Grava(std::uint64_t posicao, const void *pOrigem, std::size_t qtd) override {
    const auto *resto = static_cast<const char *>(pOrigem);
    while (qtd > 0) {
      OVERLAPPED sobreposto = NaPosicao(posicao);
      DWORD gravados = 0;
      const auto pedido = static_cast<DWORD>(std::min(qtd, kMaiorTransferencia));
      if (!::WriteFile(m_arquivo.get(), resto, pedido, &gravados, &sobreposto)) {
        return UltimaFalha();
      }
      if (gravados == 0) {
        return FalhaWin32(ERROR_DISK_FULL);
      }
      resto += gravados;
      posicao += gravados;
      qtd -= gravados;
    }
    return kSemFalha;
  }

  FalhaArquivo Tamanho(std::uint64_t *puiTamanho) override {
    LARGE_INTEGER atual{};
    if (!::GetFileSizeEx(m_arquivo.get(), &atual)) {
      return UltimaFalha();
    }
    *puiTamanho = static_cast<std::uint64_t>(atual.QuadPart);
    return kSemFalha;
  }

  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override {
    FILE_END_OF_FILE_INFO fim{};
    fim.EndOfFile.QuadPart = static_cast<LONGLONG>(tamanho);
    return ::SetFileInformationByHandle(m_arquivo.get(), FileEndOfFileInfo, &fim, sizeof(fim)) ? kSemFalha
                                                                                               : UltimaFalha();
  }

  FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) override {
    FILETIME escrita{};
    if (!::GetFileTime(m_arquivo.get(), nullptr, nullptr, &escrita)) {
      return UltimaFalha();
    }
    *puiTicks = std::uint64_t{escrita.dwHighDateTime} << 32 | escrita.dwLowDateTime;
    return kSemFalha;
  }

  FalhaArquivo Descarrega() override { return ::FlushFileBuffers(m_arquivo.get()) ? kSemFalha : UltimaFalha(); }

  FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override {
    // Only for the moment: the view keeps it.
    const PosseHandle mapeamento(::CreateFileMappingA(m_arquivo.get(), nullptr, PAGE_READWRITE, 0, 0, nullptr));
    if (!mapeamento) {
      return UltimaFalha();
    }
    m_mapa.reset(::MapViewOfFile(mapeamento.get(), FILE_MAP_WRITE, 0, 0, qtd));
    *ppBytes = static_cast<std::byte *>(m_mapa.get());
    return m_mapa ? kSemFalha : UltimaFalha();
  }

  /// Owns an open handle from here on.
  void Assume(HANDLE hArquivo) { m_arquivo.reset(hArquivo); }

private:
  PosseHandle m_arquivo;
  PosseMapa m_mapa;  ///< behind the file, so that it goes before it
};

/// Attributes of a path; false when it is missing or a directory, with the reason as last error.
bool DadosDoArquivo(const CString &sCaminho, WIN32_FILE_ATTRIBUTE_DATA *dados) {
  if (!::GetFileAttributesExA(sCaminho.c_str(), GetFileExInfoStandard, dados)) {
    return false;
  }
  ::SetLastError(ERROR_ACCESS_DENIED);
  return (dados->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

class ArquivosSistema final : public IArquivos {
public:
  FalhaArquivo Abre(const CString &sCaminho, const ModoAbertura &modo,
                    std::unique_ptr<IArquivoAberto> *pArquivo) override {
    pArquivo->reset();
    // Before the file is opened: a handle left without an owner for want of memory would keep the file locked.
    auto aberto = std::make_unique<ArquivoAberto>();
    const HANDLE hArquivo =
        ::CreateFileA(sCaminho.c_str(), AcessoWin32(modo.acesso), CompartilhamentoWin32(modo.compartilhamento), nullptr,
                      CriacaoWin32(modo.criacao), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hArquivo == INVALID_HANDLE_VALUE) {
      return UltimaFalha();
    }
    aberto->Assume(hArquivo);
    *pArquivo = std::move(aberto);
    return kSemFalha;
  }

  FalhaArquivo Existe(const CString &sCaminho, bool *pbExiste) override {
    WIN32_FILE_ATTRIBUTE_DATA dados{};
    *pbExiste = DadosDoArquivo(sCaminho, &dados);
    const FalhaArquivo falha = *pbExiste ? kSemFalha : UltimaFalha();
    return falha.NaoEsta() ? kSemFalha : falha;
  }

  bool SomenteLeitura(const CString &sCaminho) override {
    WIN32_FILE_ATTRIBUTE_DATA dados{};
    return DadosDoArquivo(sCaminho, &dados) && (dados.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  }

  FalhaArquivo TamanhoDe(const CString &sCaminho, std::uint64_t *puiTamanho) override {
    WIN32_FILE_ATTRIBUTE_DATA dados{};
    if (!DadosDoArquivo(sCaminho, &dados)) {
      return UltimaFalha();
    }
    *puiTamanho = std::uint64_t{dados.nFileSizeHigh} << 32 | dados.nFileSizeLow;
    return kSemFalha;
  }

  FalhaArquivo Apaga(const CString &sCaminho) override {
    return ::DeleteFileA(sCaminho.c_str()) ? kSemFalha : UltimaFalha();
  }

  FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) override {
    return ::MoveFileExA(sOrigem.c_str(), sDestino.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
               ? kSemFalha
               : UltimaFalha();
  }

  FalhaArquivo Lista(const CString &sDiretorio, std::vector<CString> *pNomes) override {
    pNomes->clear();
    WIN32_FIND_DATAA achado{};
    const PosseBusca busca(NuloSeInvalido(::FindFirstFileA((sDiretorio + "*").c_str(), &achado)));
    if (!busca) {
      return ::GetLastError() == ERROR_FILE_NOT_FOUND ? kSemFalha : UltimaFalha();
    }
    do {
      if ((achado.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        pNomes->emplace_back(achado.cFileName);
      }
    } while (::FindNextFileA(busca.get(), &achado));
    const DWORD erro = ::GetLastError();
    std::sort(pNomes->begin(), pNomes->end());
    return erro == ERROR_NO_MORE_FILES ? kSemFalha : FalhaWin32(erro);
  }
};

}  // namespace

IArquivos &ArquivosDoSistema() {
  return Permanente<ArquivosSistema>();
}

}  // namespace plataforma
