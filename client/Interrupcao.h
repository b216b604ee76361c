#ifndef KALVO_CLIENT_INTERRUPCAO_H
#define KALVO_CLIENT_INTERRUPCAO_H

#include <exception>

// The user's wish to end: Ctrl+C, Ctrl+Break, the window closed, the session ended.

/// Makes the process listen. While no CTrabalhoInterrompivel lives the wish ends the process at once, as it would
/// without this, but with the console's code page put back.
void ObedeceInterrupcao();

/// Work that ends in good order. The first wish is only noted, for the work to ask after between two steps; the second
/// one ends the process at once. May be part of other such work.
class CTrabalhoInterrompivel {
public:
  CTrabalhoInterrompivel();
  ~CTrabalhoInterrompivel();
  CTrabalhoInterrompivel(const CTrabalhoInterrompivel &) = delete;
  CTrabalhoInterrompivel &operator=(const CTrabalhoInterrompivel &) = delete;

  static bool Pedida();
};

/// Work given up because the user wished it.
class CInterrompido : public std::exception {
public:
  const char *what() const noexcept override { return "interrompido"; }
};

#endif
