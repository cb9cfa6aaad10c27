#!/usr/bin/env bash
# Runs the fuzz targets side by side for that many seconds each, or the named ones only:
#   tests/fuzz/run.sh 60 [fuzz_document] [fuzz_edits] [fuzz_import]
# With FABLEGRID_FUZZ_SEED in the environment the inputs are the same every time, as many as fit into the seconds on
# two cores, however fast the machine is: a time alone would let a faster one find what no other one has seen.
# Starts from the committed corpus. What the run adds to it stays in build/asan/fuzz/corpus until the next run, and
# every input that did harm in build/asan/fuzz/artifacts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

seconds=${1:-}
if ! [[ $seconds =~ ^[0-9]+$ ]]; then
    echo "usage: ${0##*/} <seconds per target> [target ...]" >&2
    exit 2
fi
targets=("${@:2}")
((${#targets[@]})) || targets=(fuzz_document fuzz_edits fuzz_import)

packaging/install-dependencies.sh ci
cmake --preset asan >/dev/null
cmake --build --preset asan --target "${targets[@]}"

# The targets write small files all the time; a memory file system spares the disk.
memory=/dev/shm
[[ -w $memory ]] || memory=${TMPDIR:-/tmp}
scratch=$(mktemp -d -p "$memory" fablegrid-fuzz-XXXXXX)
pids=()
clean_up() {
    local pid
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    wait
    rm -rf "$scratch"
}
trap clean_up EXIT

artifacts=$PWD/build/asan/fuzz/artifacts
mkdir -p "$artifacts"

# Executions in a second.
declare -A pace=([fuzz_document]=20 [fuzz_edits]=2 [fuzz_import]=350)

# Leaks are looked for once, at the end of a run: Qt and the font libraries cache so much that the fuzzer would
# suspect one after every input, and each look takes longer than many inputs.
start() {
    local target=$1 name=${1#fuzz_} log=build/asan/fuzz/$1.log
    local corpus=build/asan/fuzz/corpus/$name options=()
    rm -rf "$corpus"
    mkdir -p "$corpus" "$scratch/$name"
    cp -r "tests/fuzz/corpus/$name/." "$corpus"
    local most=$seconds fixed=()
    if [[ -n ${FABLEGRID_FUZZ_SEED:-} ]]; then
        # Addresses and hashes of their own, or a look into the folder each second, lead to other inputs.
        fixed=(env QT_HASH_SEED=0)
        ! setarch -R true 2>/dev/null || fixed+=(setarch -R)
        most=$((seconds * 6))
        options+=("-seed=$FABLEGRID_FUZZ_SEED" -reload=0 "-runs=$((seconds * pace[$target]))")
    fi
    [[ ! -e tests/fuzz/$name.dict ]] || options+=("-dict=tests/fuzz/$name.dict")
    TMPDIR=$scratch/$name QT_QPA_PLATFORM=offscreen QT_QPA_PLATFORMTHEME='' LC_ALL=C.UTF-8 \
        ASAN_OPTIONS=detect_leaks=1:quarantine_size_mb=64 LSAN_OPTIONS=print_suppressions=0 \
        UBSAN_OPTIONS=print_stacktrace=1 \
        "${fixed[@]}" "build/asan/tests/fuzz/$target" -max_total_time="$most" -max_len=4096 -timeout=30 \
        -rss_limit_mb=3000 -detect_leaks=0 -print_final_stats=1 "${options[@]}" \
        -artifact_prefix="$artifacts/$name-" "$corpus" >"$log" 2>&1 </dev/null &
    pids+=($!)
}

touch "$scratch/started"
for target in "${targets[@]}"; do
    start "$target"
done

failed=0
for i in "${!targets[@]}"; do
    target=${targets[i]}
    status=0
    wait "${pids[i]}" || status=$?
    log=build/asan/fuzz/$target.log
    printf '%s: %s executions\n' "$target" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    grep 'cov: .* ft: ' "$log" | tail -n 1 || true
    if ((status != 0)); then
        failed=1
        printf '%s failed, the end of %s:\n' "$target" "$log"
        tail -n 60 "$log"
    fi
done
pids=()

# A slow input leaves an artifact too, and no failure.
found=$(find "$artifacts" -type f -newer "$scratch/started")
if [[ -n $found ]]; then
    printf 'inputs that did harm:\n%s\n' "$found"
    failed=1
fi
exit "$failed"
