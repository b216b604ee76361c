# Sourced by the other scripts: the repository's root and the private Wine prefix.

raiz=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$raiz"

export WINEPREFIX="$raiz/build/wine"
export WINEDEBUG=-all
export WINEDLLOVERRIDES='mscoree=;mshtml=;winedbg.exe=d;winemenubuilder.exe=d'
unset LIBRARY_PATH TZ DISPLAY

# Makes the prefix when it is missing and starts a persistent Wine server. A new prefix serves COM only after its Wine
# server has been restarted once; a server that a test killed leaves an entry that only a restart removes. No output of
# Wine's background processes may reach the caller's pipe, which they would keep open.
wine_sobe() {
  trap wine_desce EXIT
  mkdir -p "$WINEPREFIX"
  {
    wineserver -k || true
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
      wine wineboot -i
      wineserver -k || true
    fi
    wineserver -p
    wine wineboot
  } >"$raiz/build/wine.log" 2>&1 </dev/null
}

wine_desce() {
  wineserver -k >/dev/null 2>&1 </dev/null || true
}
