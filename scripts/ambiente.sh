# Sourced by the other scripts: the repository's root and the private Wine prefix, build/wine unless KALVO_WINEPREFIX
# names another.

raiz=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$raiz"

export WINEPREFIX="${KALVO_WINEPREFIX:-$raiz/build/wine}"
export WINEDEBUG=-all
export PATH="$raiz/cmake/bin:$PATH"  # its wine
export WINEDLLOVERRIDES='mscoree=;mshtml=;winedbg.exe=d;winemenubuilder.exe=d'
unset LIBRARY_PATH TZ DISPLAY

# Runs a Windows program without its holding the caller's output.
wine_roda() { "$raiz/cmake/wine-run.sh" "$@"; }

# Makes the prefix when it is missing and starts a persistent Wine server. A new prefix serves COM only after its Wine
# server has been restarted once; a server that a test killed leaves an entry that only a restart removes. No output of
# Wine's background processes may reach the caller's pipe, which they would keep open.
wine_sobe() {
  trap wine_desce EXIT
  mkdir -p "$WINEPREFIX"
  {
    wineserver -k || true
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
      wine_roda wineboot -i
      wineserver -k || true
    fi
    wineserver -p
    wine_roda wineboot
  } >"$WINEPREFIX.log" 2>&1 </dev/null
}

wine_desce() {
  wineserver -k >/dev/null 2>&1 </dev/null || true
}

# The suite's registry key.
suite='HKLM\SOFTWARE\Wow6432Node\Tarvel'
caminho_windows() { printf 'Z:%s' "${1//\//\\}"; }
reg_define() { wine_roda reg add "$1" /v "$2" /t REG_SZ /d "$3" /f >/dev/null; }

# instala_amostra <directory>: an empty sample installation with company 0001.
instala_amostra() {
  rm -rf "$1"
  mkdir -p "$1/0001" "$1/instalacao"
  reg_define "$suite\\Empresas\\0001" DF "$(caminho_windows "$1/0001")"
  reg_define "$suite\\Miran Empresarial" Path "$(caminho_windows "$1/instalacao")"
}

# Waits until no server of this checkout runs; fails after 30 seconds. Prints how long it took, in milliseconds.
# Usage: espera_fim_do_servidor [part of the server's command line]
espera_fim_do_servidor() {
  local inicio
  inicio=$(date +%s%N)
  while pgrep -f "${1:-${raiz//\//.}.build.windows.bin.Kalvo.exe}" >/dev/null; do
    if [ $((($(date +%s%N) - inicio) / 1000000000)) -ge 30 ]; then
      printf 'the server is still there after 30 s\n' >&2
      return 1
    fi
    sleep 0.1
  done
  printf '%d' $((($(date +%s%N) - inicio) / 1000000))
}
