#include "tests/apoio/ProcessoFilho.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace apoio {

ProcessoFilho::ProcessoFilho(const std::string &sNome, const std::vector<std::string> &argumentos) {
  // A child that ended must show as an empty answer, not as a signal that ends the tests.
  ::signal(SIGPIPE, SIG_IGN);
  int paraFilho[2];
  int doFilho[2];
  if (::pipe2(paraFilho, O_CLOEXEC) != 0 || ::pipe2(doFilho, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  std::vector<std::string> textos{"filho", "--filho", sNome};
  textos.insert(textos.end(), argumentos.begin(), argumentos.end());
  std::vector<char *> argv;
  for (std::string &sTexto : textos) {
    argv.push_back(sTexto.data());
  }
  argv.push_back(nullptr);
  m_processo = ::fork();
  if (m_processo == 0) {
    ::dup2(paraFilho[0], STDIN_FILENO);
    ::dup2(doFilho[1], STDOUT_FILENO);
    ::execv("/proc/self/exe", argv.data());
    ::_exit(127);
  }
  ::close(paraFilho[0]);
  ::close(doFilho[1]);
  if (m_processo < 0) {
    throw std::runtime_error("no child process");
  }
  m_entrada = paraFilho[1];
  m_saida = doFilho[0];
}

int ProcessoFilho::Espera() {
  FechaEntrada();
  int estado = 0;
  while (::waitpid(static_cast<pid_t>(m_processo), &estado, 0) < 0 && errno == EINTR) {
  }
  m_processo = 0;
  return WIFEXITED(estado) ? WEXITSTATUS(estado) : 128 + WTERMSIG(estado);
}

void ProcessoFilho::Mata() {
  if (m_processo != 0) {
    ::kill(static_cast<pid_t>(m_processo), SIGKILL);
    Espera();
  }
}

}  // namespace apoio
