#!/usr/bin/env bash
# Which lines and branches of src/ the tests without a window reach. Fails below 95 % of the lines.
#   tests/coverage.sh [folder for the HTML report, default build/coverage/report]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

packaging/install-dependencies.sh ci
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -LE walk -j "$(nproc)" </dev/null

report=${1:-build/coverage/report}
mkdir -p "$report"
# An exception that nobody throws is a branch to gcc; those would hide the ones that are written.
gcovr --root . --filter src/ --object-directory build/coverage \
    --exclude-throw-branches --exclude-unreachable-branches --print-summary --fail-under-line 95 \
    --html-details "$report/index.html" --txt "$report/lines.txt"
