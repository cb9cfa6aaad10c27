#!/usr/bin/env bash
# Opens the most demanding files of under 100 kB with the release build, one in each process, and fails if one
# takes a second of processor time or 100 MB of memory; thousands of tabs, or of events in one place, have limits of
# their own. Words choose files: tests/fuzz/limits.sh chain title
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

packaging/install-dependencies.sh run
if [[ ! -e build/release/build.ninja ]]; then
    cmake --preset release >/dev/null
fi
cmake --build --preset release --target filelimits

LC_ALL=C.UTF-8 exec build/release/tests/fuzz/filelimits "$@" </dev/null
