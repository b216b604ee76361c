#include "core/platform/ChaveRegistro.h"

#include "core/platform/posix/RegistroMemoria.h"

namespace plataforma {
namespace {

/// A key of the registry in memory, by its path.
class ChaveMemoria final : public IChaveRegistro {
public:
  ChaveMemoria(CString chave, AcessoChave eAcesso)
      : m_chave(std::move(chave)), m_bEscrita(eAcesso == AcessoChave::LeituraEscrita) {}

  std::optional<CString> LeTexto(const CString &nome, bool expande) override {
    return RegistroMemoria::DoProcesso().LeTexto(m_chave, nome, expande);
  }
  std::optional<std::uint32_t> LeNumero(const CString &nome) override {
    return RegistroMemoria::DoProcesso().LeNumero(m_chave, nome);
  }
  bool GravaTexto(const CString &nome, const CString &texto) override {
    if (m_bEscrita) {
      RegistroMemoria::DoProcesso().DefineTexto(m_chave, nome, texto);
    }
    return m_bEscrita;
  }
  bool CriaSubchave(const CString &nome) override {
    if (m_bEscrita) {
      RegistroMemoria::DoProcesso().CriaChave(m_chave + "\\" + nome);
    }
    return m_bEscrita;
  }

private:
  const CString m_chave;
  const bool m_bEscrita;
};

}  // namespace

std::unique_ptr<IChaveRegistro> AbreChaveRegistro(const CString &chave, AcessoChave eAcesso, const CString &maquina) {
  // There is no other machine to ask.
  if (!maquina.empty() || !RegistroMemoria::DoProcesso().ExisteChave(chave)) {
    return nullptr;
  }
  return std::make_unique<ChaveMemoria>(chave.substr(0, chave.find_last_not_of('\\') + 1), eAcesso);
}

}  // namespace plataforma
