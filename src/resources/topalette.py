#!/usr/bin/env python3
"""Writes a PNG anew with a palette of at most 256 colours: topalette.py FILE.png ...

A window waits for its icons, and four bytes a pixel take four times as long to read as one. Colours of whole
areas stay as they are; of those of a few pixels, on edges that are smoothed, as many as there is room for stay,
and the others become the nearest of them. Needs ImageMagick.
"""

import collections
import struct
import subprocess
import sys
import zlib

AREA = 1000  # pixels: what is no edge


def pixels_of(path):
    size = subprocess.run(["identify", "-format", "%w %h", path], check=True, capture_output=True, text=True)
    raw = subprocess.run(["convert", path, "-depth", "8", "rgba:-"], check=True, capture_output=True).stdout
    width, height = map(int, size.stdout.split())
    return width, height, list(struct.iter_unpack("4B", raw))


def seen(colour):
    """The colour counts as much as it covers."""
    red, green, blue, alpha = colour
    return (red * alpha / 255, green * alpha / 255, blue * alpha / 255, alpha)


def distance(one, other):
    return max(abs(a - b) for a, b in zip(seen(one), seen(other)))


def palette_for(counts):
    """What each colour becomes, the palette, and the furthest that one moves."""
    colours = [colour for colour, count in counts.items() if count >= AREA] or [max(counts, key=counts.get)]
    nearest = {c: min((distance(c, taken), taken) for taken in colours) for c in counts}
    while len(colours) < 256 and max(nearest.values())[0] > 0:
        furthest = max(nearest, key=lambda c: nearest[c][0])
        colours.append(furthest)
        nearest = {c: min(found, (distance(c, furthest), furthest)) for c, found in nearest.items()}
    mapped = {c: taken for c, (_, taken) in nearest.items()}
    colours.sort(key=lambda c: c[3])  # those that need an alpha come first
    return mapped, colours, max(nearest.values())[0]


def chunk(kind, content):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))


def write(path, width, height, pixels, mapped, colours):
    index = {colour: i for i, colour in enumerate(colours)}
    of = {colour: index[mapped[colour]] for colour in mapped}
    rows = b"".join(
        b"\0" + bytes(of[p] for p in pixels[y * width : (y + 1) * width]) for y in range(height)
    )
    alphas = bytes(c[3] for c in colours).rstrip(b"\xff")
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 3, 0, 0, 0)))
        file.write(chunk(b"PLTE", b"".join(bytes(c[:3]) for c in colours)))
        if alphas:
            file.write(chunk(b"tRNS", alphas))
        file.write(chunk(b"IDAT", zlib.compress(rows, 9)))
        file.write(chunk(b"IEND", b""))


for name in sys.argv[1:]:
    columns, lines, all_pixels = pixels_of(name)
    to, wanted, most = palette_for(collections.Counter(all_pixels))
    write(name, columns, lines, all_pixels, to, wanted)
    print(f"{name}: {len(to)} colours to {len(wanted)}, no part of one by more than {most:.0f} of 255")
