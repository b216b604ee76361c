#ifndef KALVO_CORE_QZDATABASE_BANCO_QZBANCOTEMPORARIO_H
#define KALVO_CORE_QZDATABASE_BANCO_QZBANCOTEMPORARIO_H

#include <memory>

#include "core/platform/PosseNoLivro.h"
#include "core/qzdatabase/banco/QZDataBase.h"

/// A database with one file, for one piece of work of one thread. At the end of the scope it is finished and destroyed;
/// a machine fault inside the scope does the same through the thread's ledger, so that the file does not stay open and
/// a write that was under way is undone.
template <class TFile>
class CQZBancoTemporario {
public:
  CQZBancoTemporario(ModuloQZ eModulo, const CString &sNomeArquivo)
      : m_conteudo(std::make_unique<Conteudo>(eModulo, sNomeArquivo)) {}

  ~CQZBancoTemporario() {
    try {
      // Here, and not in the members' destructors: should this fault, the ledger still has the object.
      static_cast<void>(m_conteudo->banco.Finaliza());
    } catch (...) {
      // Destroying the file closes it all the same.
      return;
    }
  }
  CQZBancoTemporario(const CQZBancoTemporario &) = delete;
  CQZBancoTemporario &operator=(const CQZBancoTemporario &) = delete;

  CQZDataBase &Banco() { return m_conteudo->banco; }
  TFile &Arquivo() { return m_conteudo->arquivo; }

private:
  struct Conteudo {
    Conteudo(ModuloQZ eModulo, const CString &sNomeArquivo) : banco(eModulo), arquivo(sNomeArquivo, &banco) {}

    CQZDataBase banco;
    TFile arquivo;
  };

  plataforma::CQZPosseNoLivro<Conteudo> m_conteudo;
};

#endif
