#ifndef KALVO_QZDADOS_AJUDA_H
#define KALVO_QZDADOS_AJUDA_H

#include <string>

/// How to use the program, Windows-1252.
std::string TextoAjuda();

#endif
