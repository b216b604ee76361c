#ifndef KALVO_SERVER_LINHACOMANDO_H
#define KALVO_SERVER_LINHACOMANDO_H

/// What the command line asks for.
enum class EComando {
  Serve,                  ///< no switch: run as the local server
  Registra,               ///< "RegServer"
  Desregistra,            ///< "UnregServer"
  RegistraPorUsuario,     ///< "RegServerPerUser"
  DesregistraPorUsuario,  ///< "UnregServerPerUser"
};

/// Compares each word that follows a '-' or '/' with the switches, whole and without regard to letter case; the first
/// that matches decides. Other words mean nothing. Null is an empty line.
EComando LeLinhaComando(const char *lpLinha);

/// True when the words of a line say that the component platform started the process for a client ("-Embedding").
bool IniciadoParaCliente(const char *lpLinha);

#endif
