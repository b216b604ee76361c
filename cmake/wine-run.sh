#!/bin/sh
# Runs a Windows program under Wine for the build and the tests. Wine's background processes (and a server that COM
# activates) inherit the output handle; collected in a file, it does not keep the caller's pipe open after the program.
saida=$(mktemp) || exit 125
trap 'rm -f "$saida"' EXIT
"$(dirname "$0")/bin/wine" "$@" >"$saida" 2>&1 </dev/null
rc=$?
cat "$saida"
exit $rc
