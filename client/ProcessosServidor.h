#ifndef KALVO_CLIENT_PROCESSOSSERVIDOR_H
#define KALVO_CLIENT_PROCESSOSSERVIDOR_H

/// The running processes of the server.
struct CProcessosServidor {
  unsigned uiMeus = 0;    ///< of this process's account, session and elevation: one of them serves its activations
  unsigned uiOutros = 0;  ///< of other accounts, sessions or elevations, or not to be told

  unsigned Todos() const { return uiMeus + uiOutros; }
};

CProcessosServidor ContaProcessosServidor();

#endif
