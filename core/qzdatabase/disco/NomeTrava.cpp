#include "core/qzdatabase/disco/NomeTrava.h"

#include <cstdio>

#include "core/platform/Textos.h"
#include "core/qzdatabase/disco/QZCrc64.h"

CString NomeTravaDoCaminho(const char *lpTrabalho, const CString &sCaminho) {
  const CString sMaiusculo = plataforma::Maiusculas(sCaminho);
  char crc[17];
  std::snprintf(crc, sizeof(crc), "%016llX",
                static_cast<unsigned long long>(CalculaCrc64(sMaiusculo.data(), sMaiusculo.size())));
  return CString("Kalvo-") + lpTrabalho + '-' + crc;
}
