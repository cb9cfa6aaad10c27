#!/usr/bin/env bash
# Builds the Debian package and checks it; prints its path: build-package.sh [source folder]
# The source folder is this checkout unless another one is given.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
cd "${1:-$here/..}"

"$here/install-dependencies.sh" package >&2

# What is packed is what ./run and ./test build.
if [[ ! -e build/release/build.ninja ]]; then
    cmake --preset release >&2
fi
cmake --build --preset release --target fablegrid_packed >&2
rm -rf build/package
(umask 022 && cpack --config build/release/CPackConfig.cmake -G DEB -B build/package >&2)
package=$(realpath build/package/*.deb)

desktop-file-validate packaging/linux/*.desktop >&2
appstreamcli validate --no-net build/release/packaging/*.metainfo.xml >&2
mandoc -T lint -W warning build/release/packaging/*.1 >&2
# A warning is to be mended, or overridden with its reason.
complaints=$(lintian --fail-on none --tag-display-limit 0 "$package")
if grep -E '^[EW]:' <<<"$complaints" >&2; then
    echo "lintian complains about $package" >&2
    exit 1
fi
echo "$package"
