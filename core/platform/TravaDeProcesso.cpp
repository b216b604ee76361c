#include "core/platform/LivroDaThread.h"
#include "core/platform/TravaEntreProcessos.h"

namespace plataforma {

CQZTravaDeProcesso::CQZTravaDeProcesso(ITravaEntreProcessos &trava, std::uint32_t limiteMs)
    : m_trava(trava), m_bTomada(trava.Toma(limiteMs)) {
  if (m_bTomada) {
    LivroDaThread::Anota(&trava, [](void *pObjeto) { static_cast<ITravaEntreProcessos *>(pObjeto)->Solta(); });
  }
}

CQZTravaDeProcesso::~CQZTravaDeProcesso() {
  if (m_bTomada) {
    LivroDaThread::Retira(&m_trava);
    m_trava.Solta();
  }
}

}  // namespace plataforma
