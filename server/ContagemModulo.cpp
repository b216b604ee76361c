#include "server/ContagemModulo.h"

CContagemModulo &CContagemModulo::DoProcesso() {
  static CContagemModulo contagem;
  return contagem;
}

CContagemModulo::CContagemModulo() : m_zerou(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}

void CContagemModulo::Trava() {
  ++m_lQuantidade;
}

void CContagemModulo::Destrava() {
  // The activity is noted before the count falls: whoever sees zero also sees that there was use a moment ago.
  m_bAtividade.store(true);
  if (--m_lQuantidade == 0) {
    SetEvent(m_zerou.get());
  }
}
