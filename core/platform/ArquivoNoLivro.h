#ifndef KALVO_CORE_PLATFORM_ARQUIVONOLIVRO_H
#define KALVO_CORE_PLATFORM_ARQUIVONOLIVRO_H

#include <memory>
#include <utility>

#include "core/platform/Arquivos.h"
#include "core/platform/LivroDaThread.h"

namespace plataforma {

/// Owns an open file for a scope and has it in the thread's ledger meanwhile, so that a machine fault that abandons the
/// stack does not leave the file open, and everybody else shut out, for the life of the process.
class CQZArquivoNoLivro {
public:
  explicit CQZArquivoNoLivro(std::unique_ptr<IArquivoAberto> arquivo)
      : m_arquivo(std::move(arquivo)),
        m_noLivro(m_arquivo.get(), [](void *pObjeto) { delete static_cast<IArquivoAberto *>(pObjeto); }) {}

  IArquivoAberto *operator->() const { return m_arquivo.get(); }
  IArquivoAberto &operator*() const { return *m_arquivo; }

private:
  std::unique_ptr<IArquivoAberto> m_arquivo;
  CQZNoLivro m_noLivro;
};

}  // namespace plataforma

#endif
