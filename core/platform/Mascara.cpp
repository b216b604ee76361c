#include "core/platform/Mascara.h"

#include <cstddef>

namespace plataforma {

bool CasaMascara(std::string_view texto, std::string_view mascara) {
  // Only the newest '*' ever needs a second try: whatever an earlier one could take, the newest one can take too.
  std::size_t t = 0;
  std::size_t m = 0;
  std::size_t estrela = std::string_view::npos;
  std::size_t retomada = 0;
  while (t < texto.size()) {
    if (m < mascara.size() && mascara[m] == '*') {
      estrela = m++;
      retomada = t;
    } else if (m < mascara.size() && (mascara[m] == '?' || mascara[m] == texto[t])) {
      ++m;
      ++t;
    } else if (estrela != std::string_view::npos) {
      m = estrela + 1;
      t = ++retomada;
    } else {
      return false;
    }
  }
  while (m < mascara.size() && mascara[m] == '*') {
    ++m;
  }
  return m == mascara.size();
}

}  // namespace plataforma
