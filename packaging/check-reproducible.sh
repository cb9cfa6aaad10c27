#!/usr/bin/env bash
# Builds the package here and once more from a copy in another folder, and compares programs and package.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

other=$(mktemp -d)
trap 'rm -rf "$other"' EXIT
git ls-files -z | xargs -0 cp --parents --target-directory="$other"
# A checkout has the times of its making.
find "$other" -exec touch --date=2001-01-01 {} +

SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
here_package=$(packaging/build-package.sh)
other_package=$(packaging/build-package.sh "$other")

sums() { sha256sum "$1" "$2" | cut -d' ' -f1 | uniq | wc -l; }
for program in fablegrid fablegrid-story; do
    sha256sum "build/release/src/$program" "$other/build/release/src/$program"
    if [[ $(sums "build/release/src/$program" "$other/build/release/src/$program") -ne 1 ]]; then
        echo "$program is not the same when it is built in another folder." >&2
        exit 1
    fi
done
sha256sum "$here_package" "$other_package"
if [[ $(sums "$here_package" "$other_package") -ne 1 ]]; then
    echo "The package is not the same when it is built in another folder." >&2
    exit 1
fi
echo "Programs and package are the same from two folders."
