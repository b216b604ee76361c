#include "core/platform/ChaveRegistro.h"

#include "core/platform/posix/RegistroMemoria.h"

namespace plataforma {
namespace {

/// A key of the registry in memory, by its path.
class ChaveMemoria final : public IChaveRegistro {
public:
  ChaveMemoria(CString sChave, AcessoChave eAcesso)
      : m_chave(std::move(sChave)), m_bEscrita(eAcesso == AcessoChave::LeituraEscrita) {}

  std::optional<CString> LeTexto(const CString &sNome, bool bExpande) override {
    return RegistroMemoria::DoProcesso().LeTexto(m_chave, sNome, bExpande);
  }
  std::optional<std::uint32_t> LeNumero(const CString &sNome) override {
    return RegistroMemoria::DoProcesso().LeNumero(m_chave, sNome);
  }
  bool GravaTexto(const CString &sNome, const CString &sTexto) override {
    if (m_bEscrita) {
      RegistroMemoria::DoProcesso().DefineTexto(m_chave, sNome, sTexto);
    }
    return m_bEscrita;
  }
  bool CriaSubchave(const CString &sNome) override {
    if (m_bEscrita) {
      RegistroMemoria::DoProcesso().CriaChave(m_chave + "\\" + sNome);
    }
    return m_bEscrita;
  }

private:
  const CString m_chave;
  const bool m_bEscrita;
};

}  // namespace

std::unique_ptr<IChaveRegistro> AbreChaveRegistro(const CString &sChave, AcessoChave eAcesso, const CString &sMaquina) {
  // There is no other machine to ask.
  if (!sMaquina.empty() || !RegistroMemoria::DoProcesso().ExisteChave(sChave)) {
    return nullptr;
  }
  return std::make_unique<ChaveMemoria>(sChave.substr(0, sChave.find_last_not_of('\\') + 1), eAcesso);
}

}  // namespace plataforma
