#!/bin/sh
# Runs a Windows program under Wine for the build and the tests. Wine's background processes (and a server that COM
# activates) inherit the output handle; collected in a file, it does not keep the caller's pipe open after the program.
saida=$(mktemp) || exit 125
trap 'rm -f "$saida"' EXIT
# Wine's loader stands at a fixed place. Where the kernel put the heap by chance, it now and then (once in 5,000 starts)
# lay over the page that Wine must map at 0x7ffe0000, and the program ended before it had begun.
setarch "$(uname -m)" -R wine "$@" >"$saida" 2>&1 </dev/null
rc=$?
cat "$saida"
exit $rc
