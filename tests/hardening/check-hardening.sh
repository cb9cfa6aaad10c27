#!/usr/bin/env bash
# Looks into a built program for what a release is hardened with: 
#   check-hardening.sh <program> <compile_commands.json>
set -euo pipefail

program=$1
commands=$2
status=0
expect() { # what, the text that tells, where it is looked for
    if grep -qE -- "$2" <<<"$3"; then
        echo "ok       $1"
    else
        echo "missing  $1"
        status=1
    fi
}

symbols=$(readelf --wide --dyn-syms "$program")
dynamic=$(readelf --wide --dynamic "$program")
segments=$(readelf --wide --program-headers "$program")
expect "position independent program" '\(FLAGS_1\).* PIE' "$dynamic"
expect "read-only relocations" 'GNU_RELRO' "$segments"
expect "all symbols bound at start" '\(FLAGS(_1)?\).* (BIND_)?NOW' "$dynamic"
expect "no executable stack" 'GNU_STACK .* RW +' "$segments"
expect "stack protector" '__stack_chk_fail' "$symbols"
expect "assertions of the standard library" '__glibcxx_assert_fail' "$symbols"
# No call of the program itself has a checked twin, so nothing in the built file can tell.
sources=$(grep '"command"' "$commands" | grep -c '/src/' || true)
expect "the commands of the sources" '^[1-9]' "$sources"
unchecked=$(grep '"command"' "$commands" | grep '/src/' | grep -cvE -- '-D_FORTIFY_SOURCE=[23]' || true)
expect "checked copies, in every source" '^0$' "$unchecked"
exit $status
