#ifndef KALVO_CLIENT_JSON_H
#define KALVO_CLIENT_JSON_H

#include <string>
#include <string_view>

/// A Windows-1252 text as a JSON string, quotes included, in ASCII alone.
std::string TextoJson(std::string_view sTexto);

#endif
