#!/usr/bin/env bash
# Random edits for a long time, with the sanitizers: run.sh [sequences] [steps] [first seed]
# Two programs at a time. Prints the totals, or the seed and the steps that led to the first fault.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

sequences=${1:-2000}
steps=${2:-500}
first=${3:-1}
# Each program ends with a look for leaks, so none of them should run for hours.
sequences_a_program=25

packaging/install-dependencies.sh test
[[ -e build/asan/build.ninja ]] || cmake --preset asan
cmake --build --preset asan --target tst_randomedits

# Documents are synced to the disk with every save; in memory that takes no time.
if [[ -d /dev/shm && -w /dev/shm ]]; then
    export TMPDIR=/dev/shm
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

part() {
    local log="$TMPDIR/from-$1.log"
    if ! FABLEGRID_RANDOM_SEED=$1 FABLEGRID_RANDOM_SEQUENCES=$2 \
        build/asan/tests/tst_randomedits everythingAgreesAfterEveryStep >"$log" 2>&1; then
        cat "$log" >&2
        return 255 # nothing more is begun
    fi
}
export -f part
export FABLEGRID_RANDOM_STEPS=$steps
export TMPDIR=$work
export QT_QPA_PLATFORM=offscreen QT_QPA_PLATFORMTHEME='' LC_ALL=C.UTF-8
export QTEST_FUNCTION_TIMEOUT=7200000 # milliseconds
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

for ((done = 0; done < sequences; done += sequences_a_program)); do
    left=$((sequences - done))
    echo "$((first + done)) $((left < sequences_a_program ? left : sequences_a_program))"
done | xargs -P 2 -L 1 bash -c 'part "$0" "$1"'

echo "$sequences random sequences of $steps steps, seeds $first to $((first + sequences - 1)):" \
    "$((sequences * steps)) steps without a fault in $SECONDS s"
