#include "tests/apoio/ProcessoFilho.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace apoio {

struct ProcessoFilho::Sistema {
  pid_t processo = -1;
  int entrada = -1;  ///< the child's input, our end
  int saida = -1;    ///< the child's output, our end

  void FechaEntrada() {
    if (entrada >= 0) {
      ::close(std::exchange(entrada, -1));
    }
  }
};

ProcessoFilho::ProcessoFilho(const std::string &nome, const std::vector<std::string> &argumentos)
    : m_sistema(std::make_unique<Sistema>()) {
  // A child that ended must show as an empty answer, not as a signal that ends the tests.
  ::signal(SIGPIPE, SIG_IGN);
  int paraFilho[2];
  int doFilho[2];
  if (::pipe2(paraFilho, O_CLOEXEC) != 0 || ::pipe2(doFilho, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  posix_spawn_file_actions_t acoes;
  ::posix_spawn_file_actions_init(&acoes);
  ::posix_spawn_file_actions_adddup2(&acoes, paraFilho[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&acoes, doFilho[1], STDOUT_FILENO);
  std::vector<std::string> textos{"filho", "--filho", nome};
  textos.insert(textos.end(), argumentos.begin(), argumentos.end());
  std::vector<char *> argv;
  for (std::string &texto : textos) {
    argv.push_back(texto.data());
  }
  argv.push_back(nullptr);
  const int erro = ::posix_spawn(&m_sistema->processo, "/proc/self/exe", &acoes, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&acoes);
  ::close(paraFilho[0]);
  ::close(doFilho[1]);
  m_sistema->entrada = paraFilho[1];
  m_sistema->saida = doFilho[0];
  if (erro != 0) {
    throw std::runtime_error("no child process");
  }
}

ProcessoFilho::~ProcessoFilho() {
  Mata();
  m_sistema->FechaEntrada();
  ::close(m_sistema->saida);
}

std::string ProcessoFilho::LeLinha() {
  std::string linha;
  char letra = 0;
  while (::read(m_sistema->saida, &letra, 1) == 1 && letra != '\n') {
    linha += letra;
  }
  return linha;
}

void ProcessoFilho::EnviaLinha(const std::string &linha) {
  const std::string completa = linha + "\n";
  if (::write(m_sistema->entrada, completa.data(), completa.size()) != static_cast<ssize_t>(completa.size())) {
    throw std::runtime_error("child does not listen");
  }
}

int ProcessoFilho::Espera() {
  m_sistema->FechaEntrada();
  int estado = 0;
  while (::waitpid(m_sistema->processo, &estado, 0) < 0 && errno == EINTR) {
  }
  m_sistema->processo = -1;
  return WIFEXITED(estado) ? WEXITSTATUS(estado) : 128 + WTERMSIG(estado);
}

void ProcessoFilho::Mata() {
  if (m_sistema->processo > 0) {
    ::kill(m_sistema->processo, SIGKILL);
    Espera();
  }
}

}  // namespace apoio
