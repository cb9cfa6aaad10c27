#!/usr/bin/env bash
# Kills the program at random instants while it saves and while it autosaves; afterwards each file must be
# whole, the former or the new one.
#   kill-loop.sh [kills of each kind] [build folder] [number that decides on the instants]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

kills=${1:-1000}
build=${2:-build/release}
seed=${3:-$RANDOM}

for program in src/fablegrid tests/walk/killwalk tests/walk/killautosave; do
    if [[ ! -x $build/$program ]]; then
        echo "$build/$program must be built first" >&2
        exit 2
    fi
done

echo "$kills kills of each kind, seed $seed"
status=0
"$build/tests/walk/killwalk" "$build/src/fablegrid" "$kills" "$seed" || status=1
QT_QPA_PLATFORM=offscreen QT_QPA_PLATFORMTHEME='' "$build/tests/walk/killautosave" "$kills" "$seed" || status=1
if [[ $status -ne 0 ]]; then
    echo "FAILED: a file was damaged, or the kills told nothing; seed $seed"
else
    echo "Every file was whole"
fi
exit "$status"
