#!/usr/bin/env bash
# Takes the guide's pictures from the real program and saves the sample story that they show. It brings its own
# virtual display; run it again when the window has changed, and look at what it made.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

packaging/install-dependencies.sh test
if [[ ! -e build/release/build.ninja ]]; then
    cmake --preset release
fi
cmake --build --preset release --target guidepictures
build/release/tests/walk/guidepictures docs/guide/images docs/examples/the-lighthouse.scene
