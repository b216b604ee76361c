# Sourced by the tests of the packages: failing, looking into output, the sample installation that they register.
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/ambiente.sh"

falha() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}
contem() { grep -qF -- "$2" <<<"$1" || falha "no \"$2\" in: $1"; }
# What a program of the package says, readable; fails as the program does.
diz() {
  local saida rc=0
  saida=$(wine_roda "$@") || rc=$?
  iconv -f CP1252 -t UTF-8 <<<"$saida"
  return $rc
}

# importa_registro <sample .reg file> <directory>: the sample registry file with this machine's directories.
importa_registro() {
  mkdir -p "$2/Miran/Dados/0001"
  local windows
  windows=$(caminho_windows "$2/Miran")
  WINDOWS=${windows//\\/\\\\} perl -pe 's/C:\\\\Miran/$ENV{WINDOWS}/' "$1" | iconv -f UTF-8 -t UTF-16 >"$2/instala.reg"
  wine_roda reg import "$2/instala.reg" >/dev/null
}
apaga_registro() {
  # Only what is its own: other tests write beside it at the same time.
  wine_roda reg delete "$suite\\Empresas\\0001" /f >/dev/null || true
  wine_roda reg delete "$suite\\Miran Empresarial" /f >/dev/null || true
  wine_roda reg delete "$suite" /v QZDataBase_HabilitarCabecalho /f >/dev/null || true
}
