#include "core/platform/Arquivos.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <cstdio>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/posix/ArquivoAberto.h"
#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

constexpr std::uint32_t kErroAcesso = 5;             // ERROR_ACCESS_DENIED
constexpr std::uint32_t kErroCompartilhamento = 32;  // ERROR_SHARING_VIOLATION
constexpr std::uint32_t kErroSemTravas = 36;         // ERROR_SHARING_BUFFER_EXCEEDED

FalhaArquivo UltimaFalha(const std::string &caminho) {
  return FalhaWin32(ErroWin32DeCaminho(errno, caminho));
}

/// The file's own data, a failure for a directory.
FalhaArquivo DadosDe(const std::string &caminho, struct stat *info) {
  if (::stat(caminho.c_str(), info) != 0) {
    return UltimaFalha(caminho);
  }
  return S_ISDIR(info->st_mode) ? FalhaWin32(kErroAcesso) : kSemFalha;
}

bool PodeAlterar(const ModoAbertura &modo) {
  return modo.acesso != Acesso::Leitura || modo.criacao == Criacao::CriaVazio;
}

int FlagsDeCriacao(Criacao criacao) {
  switch (criacao) {
    case Criacao::SoExistente:
      return 0;
    case Criacao::CriaNovo:
      return O_CREAT | O_EXCL;
    default:
      return O_CREAT;
  }
}

/// One attempt at opening. Empty when the path came to name another file meanwhile.
std::optional<FalhaArquivo> TentaAbrir(const std::string &caminho, const ModoAbertura &modo, Descritor *aberto) {
  // Readable even when the mode only writes: the share rules need it.
  const int acesso = PodeAlterar(modo) ? O_RDWR : O_RDONLY;
  Descritor descritor(::open(caminho.c_str(), acesso | FlagsDeCriacao(modo.criacao) | O_CLOEXEC, 0666));
  struct stat info {};
  if (!descritor.Valido() || ::fstat(descritor.Numero(), &info) != 0) {
    return UltimaFalha(caminho);
  }
  if (S_ISDIR(info.st_mode) || (PodeAlterar(modo) && NinguemGrava(info))) {
    return FalhaWin32(kErroAcesso);
  }
  const VezNoArquivo vez(descritor.Numero());
  if (!AindaNomeia(caminho.c_str(), descritor.Numero())) {
    return std::nullopt;
  }
  if (OutroExclui(descritor.Numero(), modo)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (!DeclaraUso(descritor.Numero(), modo)) {
    return FalhaWin32(kErroSemTravas);
  }
  if (modo.criacao == Criacao::CriaVazio && ::ftruncate(descritor.Numero(), 0) != 0) {
    return UltimaFalha(caminho);
  }
  *aberto = std::move(descritor);
  return kSemFalha;
}

/// One attempt at deleting. Empty when the path came to name another file meanwhile.
std::optional<FalhaArquivo> TentaApagar(const std::string &caminho) {
  struct stat info {};
  if (const FalhaArquivo falha = DadosDe(caminho, &info)) {
    return falha;
  }
  const Descritor descritor(::open(caminho.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descritor.Valido()) {
    return UltimaFalha(caminho);
  }
  const VezNoArquivo vez(descritor.Numero());
  if (!AindaNomeia(caminho.c_str(), descritor.Numero())) {
    return std::nullopt;
  }
  if (EmUso(descritor.Numero())) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (NinguemGrava(info)) {
    return FalhaWin32(kErroAcesso);
  }
  return ::unlink(caminho.c_str()) == 0 ? kSemFalha : UltimaFalha(caminho);
}

/// Moves onto a name that nothing has. Empty when something has it by now.
std::optional<FalhaArquivo> MoveParaNomeLivre(const std::string &origem, const std::string &destino, int fdOrigem) {
  const VezNoArquivo vez(fdOrigem);
  if (!AindaNomeia(origem.c_str(), fdOrigem)) {
    return std::nullopt;
  }
  if (EmUso(fdOrigem)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (::renameat2(AT_FDCWD, origem.c_str(), AT_FDCWD, destino.c_str(), RENAME_NOREPLACE) == 0) {
    return kSemFalha;
  }
  return errno == EEXIST ? std::nullopt : std::optional<FalhaArquivo>(UltimaFalha(destino));
}

/// Moves onto another existing file. Empty when one of the paths came to name another file meanwhile.
std::optional<FalhaArquivo> MoveSobre(const std::string &origem, const std::string &destino, int fdOrigem,
                                      int fdDestino, const struct stat &infoOrigem, const struct stat &infoDestino) {
  // In the order of the files, not of the move: two moves in opposite directions must not wait for each other.
  const bool bOrigemAntes = infoOrigem.st_ino < infoDestino.st_ino;
  const VezNoArquivo primeira(bOrigemAntes ? fdOrigem : fdDestino);
  const VezNoArquivo segunda(bOrigemAntes ? fdDestino : fdOrigem);
  if (!AindaNomeia(origem.c_str(), fdOrigem) || !AindaNomeia(destino.c_str(), fdDestino)) {
    return std::nullopt;
  }
  if (EmUso(fdOrigem)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (EmUso(fdDestino) || NinguemGrava(infoDestino)) {
    return FalhaWin32(kErroAcesso);
  }
  return ::rename(origem.c_str(), destino.c_str()) == 0 ? kSemFalha : UltimaFalha(destino);
}

/// One attempt at moving. Empty when one of the paths came to name another file meanwhile.
std::optional<FalhaArquivo> TentaMover(const std::string &origem, const std::string &destino) {
  struct stat infoOrigem {};
  struct stat infoDestino {};
  const Descritor fdOrigem(::open(origem.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fdOrigem.Valido() || ::fstat(fdOrigem.Numero(), &infoOrigem) != 0) {
    return UltimaFalha(origem);
  }
  const Descritor fdDestino(::open(destino.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fdDestino.Valido()) {
    return errno == ENOENT ? MoveParaNomeLivre(origem, destino, fdOrigem.Numero())
                           : std::optional<FalhaArquivo>(UltimaFalha(destino));
  }
  if (::fstat(fdDestino.Numero(), &infoDestino) != 0) {
    return UltimaFalha(destino);
  }
  if (S_ISDIR(infoOrigem.st_mode) || S_ISDIR(infoDestino.st_mode)) {
    return FalhaWin32(kErroAcesso);
  }
  if (infoOrigem.st_dev == infoDestino.st_dev && infoOrigem.st_ino == infoDestino.st_ino) {
    return MoveParaNomeLivre(origem, destino, fdOrigem.Numero()).value_or(kSemFalha);
  }
  return MoveSobre(origem, destino, fdOrigem.Numero(), fdDestino.Numero(), infoOrigem, infoDestino);
}

FalhaArquivo DescarregaDiretorio(const std::string &diretorio) {
  const Descritor descritor(::open(diretorio.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return descritor.Valido() && ::fsync(descritor.Numero()) == 0 ? kSemFalha : FalhaWin32(ErroWin32DeErrno(errno));
}

/// Repeats an attempt until the paths stood still during it.
template <typename Tentativa>
FalhaArquivo AteValer(Tentativa tentativa) {
  std::optional<FalhaArquivo> resultado;
  while (!resultado) {
    resultado = tentativa();
  }
  return *resultado;
}

struct FechaDiretorio {
  void operator()(DIR *dir) const { ::closedir(dir); }
};

class ArquivosSistema final : public IArquivos {
public:
  FalhaArquivo Abre(const CString &caminho, const ModoAbertura &modo,
                    std::unique_ptr<IArquivoAberto> *arquivo) override {
    arquivo->reset();
    const std::string nativo = CaminhoNativo(caminho);
    // Before the file is opened: one that was created without being handed over would be nobody's.
    auto aberto = std::make_unique<ArquivoAberto>(modo.acesso);
    const FalhaArquivo falha = AteValer([&] { return TentaAbrir(nativo, modo, aberto->Posse()); });
    if (!falha) {
      *arquivo = std::move(aberto);
    }
    return falha;
  }

  FalhaArquivo Existe(const CString &caminho, bool *existe) override {
    struct stat info {};
    const FalhaArquivo falha = DadosDe(CaminhoNativo(caminho), &info);
    *existe = !falha;
    return falha.NaoEsta() ? kSemFalha : falha;
  }

  bool SomenteLeitura(const CString &caminho) override {
    struct stat info {};
    return !DadosDe(CaminhoNativo(caminho), &info) && NinguemGrava(info);
  }

  FalhaArquivo TamanhoDe(const CString &caminho, std::uint64_t *tamanho) override {
    struct stat info {};
    if (const FalhaArquivo falha = DadosDe(CaminhoNativo(caminho), &info)) {
      return falha;
    }
    *tamanho = static_cast<std::uint64_t>(info.st_size);
    return kSemFalha;
  }

  FalhaArquivo Apaga(const CString &caminho) override {
    const std::string nativo = CaminhoNativo(caminho);
    return AteValer([&] { return TentaApagar(nativo); });
  }

  FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override {
    const std::string de = CaminhoNativo(origem);
    const std::string para = CaminhoNativo(destino);
    if (const FalhaArquivo falha = AteValer([&] { return TentaMover(de, para); })) {
      return falha;
    }
    return DescarregaDiretorio(DiretorioDe(para));
  }

  FalhaArquivo Lista(const CString &diretorio, std::vector<CString> *nomes) override {
    nomes->clear();
    const std::string nativo = CaminhoNativo(diretorio);
    const std::unique_ptr<DIR, FechaDiretorio> dir(::opendir(nativo.empty() ? "." : nativo.c_str()));
    if (!dir) {
      return errno == ENOENT ? FalhaWin32(3) : UltimaFalha(nativo);
    }
    errno = 0;
    while (const dirent *entrada = ::readdir(dir.get())) {
      const CString nome(entrada->d_name);
      struct stat info {};
      if (!DadosDe(CaminhoNativo(diretorio + nome), &info)) {
        nomes->push_back(nome);
      }
      errno = 0;
    }
    const int erro = errno;
    std::sort(nomes->begin(), nomes->end());
    return FalhaWin32(ErroWin32DeErrno(erro));
  }
};

}  // namespace

IArquivos &ArquivosDoSistema() {
  return Permanente<ArquivosSistema>();
}

}  // namespace plataforma
