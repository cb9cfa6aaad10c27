#!/usr/bin/env bash
# Renders the PNG and ICO files of this folder from the SVG files beside them.
# The results are kept in the tree, so building the application needs neither rsvg-convert nor icotool;
# run this after a drawing has changed (Debian packages: librsvg2-bin, imagemagick, icoutils, icnsutils).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/Assets"

# render SVG WIDTH HEIGHT PNG
render() {
    rsvg-convert --width "$2" --height "$3" --output "$4" "$1"
}

render "Logo/logo - Square (Fill) - App 1.svg" 1024 1024 "Logo/logo - Square (Fill) - App 1.png"
render "Logo/logo - Fill Clipped 4.svg" 646 696 "Logo/logo - Fill Clipped 4.png"
render "Icons/Add Node.svg" 1024 1024 "Icons/Add Node.png"
# Each window reads these, some of them twice.
../topalette.py "Logo/logo - Square (Fill) - App 1.png" "Logo/logo - Fill Clipped 4.png" "Icons/Add Node.png"

# The sizes that Theme/index.theme names.
for size in 32 48 64 72 96 144; do
    render Theme/dialog-question.svg "$size" "$size" "Theme/dialog-question-$size.png"
done

sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
bitmaps=()
for size in 16 24 32 48 64 72 96 128; do
    render "Logo/logo - Transparent Clipped.svg" "$size" "$size" "$sizes/$size.png"
    bitmaps+=("$sizes/$size.png")
done
# The largest image stays a PNG inside the icon file, as Windows recommends; as a bitmap it would take 270 kB.
render "Logo/logo - Transparent Clipped.svg" 256 256 "$sizes/256.png"
icotool --create --output "Logo/logo - Transparent Clipped.ico" "${bitmaps[@]}" --raw "$sizes/256.png"

# What desktops show for the program; the scalable one is the drawing itself.
hicolor=../../../packaging/linux/icons
mkdir -p "$hicolor"
for size in 16 22 24 32 48 64 128 256 512; do
    render "Logo/logo - Square (Fill) - App 1.svg" "$size" "$size" "$hicolor/$size.png"
done
png2icns ../../../packaging/macos/fablegrid.icns "$hicolor"/{16,32,48,128,256,512}.png >/dev/null
