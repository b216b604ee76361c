#ifndef KALVO_QZDADOS_TELA_H
#define KALVO_QZDADOS_TELA_H

#include <cstdint>
#include <functional>
#include <string_view>

/// Where a command's texts go, Windows-1252.
class ITela {
public:
  virtual ~ITela() = default;

  virtual void Escreve(std::string_view sTexto) = 0;
  /// From here on Escreve carries every byte as it is; the platform's text mode does not.
  virtual void SaidaEmBytes() = 0;
  virtual void EscreveErro(std::string_view sTexto) = 0;
  /// True when the user sees what Escreve writes as it comes, so that long listings need no other sign of progress.
  virtual bool SaidaVisivel() const = 0;
  /// How far a long reading is.
  virtual void Progresso(std::uint64_t uiFeito, std::uint64_t uiTotal) = 0;

protected:
  ITela() = default;
  ITela(const ITela &) = default;
  ITela &operator=(const ITela &) = default;
};

/// What a long reading calls to show on `tela`, which outlives it, how far it is.
inline std::function<void(std::uint64_t, std::uint64_t)> ProgressoNaTela(ITela &tela) {
  return [&tela](std::uint64_t uiFeito, std::uint64_t uiTotal) { tela.Progresso(uiFeito, uiTotal); };
}

#endif
