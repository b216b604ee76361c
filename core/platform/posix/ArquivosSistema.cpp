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

constexpr std::uint32_t kErroCompartilhamento = 32;  // ERROR_SHARING_VIOLATION
constexpr std::uint32_t kErroSemTravas = 36;         // ERROR_SHARING_BUFFER_EXCEEDED

FalhaArquivo UltimaFalha(const std::string &sCaminho) {
  return FalhaWin32(ErroWin32DeCaminho(errno, sCaminho));
}

/// The file's own data, a failure for a directory.
FalhaArquivo DadosDe(const std::string &sCaminho, struct stat *info) {
  if (::stat(sCaminho.c_str(), info) != 0) {
    return UltimaFalha(sCaminho);
  }
  return S_ISDIR(info->st_mode) ? FalhaWin32(kErroAcesso) : kSemFalha;
}

bool PodeAlterar(const ModoAbertura &modo) {
  return modo.acesso != Acesso::Leitura || modo.criacao == Criacao::CriaVazio;
}

int FlagsDeCriacao(Criacao eCriacao) {
  switch (eCriacao) {
    case Criacao::SoExistente:
      return 0;
    case Criacao::CriaNovo:
      return O_CREAT | O_EXCL;
    default:
      return O_CREAT;
  }
}

/// One attempt at opening. Empty when the path came to name another file meanwhile.
std::optional<FalhaArquivo> TentaAbrir(const std::string &sCaminho, const ModoAbertura &modo, Descritor *aberto) {
  // Readable even when the mode only writes: the share rules need it.
  const int acesso = PodeAlterar(modo) ? O_RDWR : O_RDONLY;
  Descritor descritor(::open(sCaminho.c_str(), acesso | FlagsDeCriacao(modo.criacao) | O_CLOEXEC, 0666));
  struct stat info {};
  if (!descritor.Valido() || ::fstat(descritor.Numero(), &info) != 0) {
    return UltimaFalha(sCaminho);
  }
  if (S_ISDIR(info.st_mode) || (PodeAlterar(modo) && NinguemGrava(info))) {
    return FalhaWin32(kErroAcesso);
  }
  // Looking at the uses of others and stating our own is one step only while nobody else has the turn.
  const VezNoArquivo vez(descritor.Numero());
  if (!AindaNomeia(sCaminho.c_str(), descritor.Numero())) {
    return std::nullopt;
  }
  if (OutroExclui(descritor.Numero(), modo)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (!DeclaraUso(descritor.Numero(), modo)) {
    return FalhaWin32(kErroSemTravas);
  }
  if (modo.criacao == Criacao::CriaVazio && ::ftruncate(descritor.Numero(), 0) != 0) {
    return UltimaFalha(sCaminho);
  }
  *aberto = std::move(descritor);
  return kSemFalha;
}

/// One attempt at deleting. Empty when the path came to name another file meanwhile.
std::optional<FalhaArquivo> TentaApagar(const std::string &sCaminho) {
  struct stat info {};
  if (const FalhaArquivo falha = DadosDe(sCaminho, &info)) {
    return falha;
  }
  const Descritor descritor(::open(sCaminho.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descritor.Valido()) {
    return UltimaFalha(sCaminho);
  }
  const VezNoArquivo vez(descritor.Numero());
  if (!AindaNomeia(sCaminho.c_str(), descritor.Numero())) {
    return std::nullopt;
  }
  if (EmUso(descritor.Numero())) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (NinguemGrava(info)) {
    return FalhaWin32(kErroAcesso);
  }
  return ::unlink(sCaminho.c_str()) == 0 ? kSemFalha : UltimaFalha(sCaminho);
}

/// Moves onto a name that nothing has. Empty when something has it by now.
std::optional<FalhaArquivo> MoveParaNomeLivre(const std::string &sOrigem, const std::string &sDestino, int fdOrigem) {
  const VezNoArquivo vez(fdOrigem);
  if (!AindaNomeia(sOrigem.c_str(), fdOrigem)) {
    return std::nullopt;
  }
  if (EmUso(fdOrigem)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (::renameat2(AT_FDCWD, sOrigem.c_str(), AT_FDCWD, sDestino.c_str(), RENAME_NOREPLACE) == 0) {
    return kSemFalha;
  }
  return errno == EEXIST ? std::nullopt : std::optional<FalhaArquivo>(UltimaFalha(sDestino));
}

/// Moves onto another existing file. Empty when one of the paths came to name another file meanwhile.
std::optional<FalhaArquivo> MoveSobre(const std::string &sOrigem, const std::string &sDestino, int fdOrigem,
                                      int fdDestino, const struct stat &infoOrigem, const struct stat &infoDestino) {
  // In the order of the files, not of the move: two moves in opposite directions must not wait for each other.
  const bool bOrigemAntes = infoOrigem.st_ino < infoDestino.st_ino;
  const VezNoArquivo primeira(bOrigemAntes ? fdOrigem : fdDestino);
  const VezNoArquivo segunda(bOrigemAntes ? fdDestino : fdOrigem);
  if (!AindaNomeia(sOrigem.c_str(), fdOrigem) || !AindaNomeia(sDestino.c_str(), fdDestino)) {
    return std::nullopt;
  }
  if (EmUso(fdOrigem)) {
    return FalhaWin32(kErroCompartilhamento);
  }
  if (EmUso(fdDestino) || NinguemGrava(infoDestino)) {
    return FalhaWin32(kErroAcesso);
  }
  return ::rename(sOrigem.c_str(), sDestino.c_str()) == 0 ? kSemFalha : UltimaFalha(sDestino);
}

/// One attempt at moving. Empty when one of the paths came to name another file meanwhile.
std::optional<FalhaArquivo> TentaMover(const std::string &sOrigem, const std::string &sDestino) {
  struct stat infoOrigem {};
  struct stat infoDestino {};
  const Descritor fdOrigem(::open(sOrigem.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fdOrigem.Valido() || ::fstat(fdOrigem.Numero(), &infoOrigem) != 0) {
    return UltimaFalha(sOrigem);
  }
  const Descritor fdDestino(::open(sDestino.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fdDestino.Valido()) {
    return errno == ENOENT ? MoveParaNomeLivre(sOrigem, sDestino, fdOrigem.Numero())
                           : std::optional<FalhaArquivo>(UltimaFalha(sDestino));
  }
  if (::fstat(fdDestino.Numero(), &infoDestino) != 0) {
    return UltimaFalha(sDestino);
  }
  if (S_ISDIR(infoOrigem.st_mode) || S_ISDIR(infoDestino.st_mode)) {
    return FalhaWin32(kErroAcesso);
  }
  // Two turns on one file would wait for each other.
  if (infoOrigem.st_dev == infoDestino.st_dev && infoOrigem.st_ino == infoDestino.st_ino) {
    return MoveParaNomeLivre(sOrigem, sDestino, fdOrigem.Numero()).value_or(kSemFalha);
  }
  return MoveSobre(sOrigem, sDestino, fdOrigem.Numero(), fdDestino.Numero(), infoOrigem, infoDestino);
}

FalhaArquivo DescarregaDiretorio(const std::string &sDiretorio) {
  const Descritor descritor(::open(sDiretorio.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
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
  FalhaArquivo Abre(const CString &sCaminho, const ModoAbertura &modo,
                    std::unique_ptr<IArquivoAberto> *pArquivo) override {
    pArquivo->reset();
    const std::string sNativo = CaminhoNativo(sCaminho);
    // Before the file is opened: one that was created without being handed over would be nobody's.
    auto aberto = std::make_unique<ArquivoAberto>(modo.acesso);
    const FalhaArquivo falha = AteValer([&] { return TentaAbrir(sNativo, modo, aberto->Posse()); });
    if (!falha) {
      *pArquivo = std::move(aberto);
    }
    return falha;
  }

  FalhaArquivo Existe(const CString &sCaminho, bool *pbExiste) override {
    struct stat info {};
    const FalhaArquivo falha = DadosDe(CaminhoNativo(sCaminho), &info);
    *pbExiste = !falha;
    return falha.NaoEsta() ? kSemFalha : falha;
  }

  bool SomenteLeitura(const CString &sCaminho) override {
    struct stat info {};
    return !DadosDe(CaminhoNativo(sCaminho), &info) && NinguemGrava(info);
  }

  FalhaArquivo TamanhoDe(const CString &sCaminho, std::uint64_t *puiTamanho) override {
    struct stat info {};
    if (const FalhaArquivo falha = DadosDe(CaminhoNativo(sCaminho), &info)) {
      return falha;
    }
    *puiTamanho = static_cast<std::uint64_t>(info.st_size);
    return kSemFalha;
  }

  FalhaArquivo Apaga(const CString &sCaminho) override {
    const std::string sNativo = CaminhoNativo(sCaminho);
    return AteValer([&] { return TentaApagar(sNativo); });
  }

  FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) override {
    const std::string sDe = CaminhoNativo(sOrigem);
    const std::string sPara = CaminhoNativo(sDestino);
    if (const FalhaArquivo falha = AteValer([&] { return TentaMover(sDe, sPara); })) {
      return falha;
    }
    return DescarregaDiretorio(DiretorioDe(sPara));
  }

  FalhaArquivo Lista(const CString &sDiretorio, std::vector<CString> *pNomes) override {
    pNomes->clear();
    const std::string sNativo = CaminhoNativo(sDiretorio);
    const std::unique_ptr<DIR, FechaDiretorio> dir(::opendir(sNativo.empty() ? "." : sNativo.c_str()));
    if (!dir) {
      return errno == ENOENT ? FalhaWin32(3) : UltimaFalha(sNativo);
    }
    errno = 0;
    while (const dirent *entrada = ::readdir(dir.get())) {
      const CString sNome(entrada->d_name);
      struct stat info {};
      if (!DadosDe(CaminhoNativo(sDiretorio + sNome), &info)) {
        pNomes->push_back(sNome);
      }
      errno = 0;
    }
    const int erro = errno;
    std::sort(pNomes->begin(), pNomes->end());
    return FalhaWin32(ErroWin32DeErrno(erro));
  }
};

}  // namespace

IArquivos &ArquivosDoSistema() {
  return Permanente<ArquivosSistema>();
}

}  // namespace plataforma
