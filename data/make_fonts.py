#!/usr/bin/env python3
"""Makes font_1.bmp and font_2.bmp from font_1.txt and font_2.txt, or checks that they are up to date.

A glyph source begins with settings, one a line: "rows" of every glyph, blank rows "above" them, "bold" 1 to
thicken every stroke by a pixel to the right, the "colour" of the strokes (red, green, blue). Then come the
glyphs, several side by side: a line that names the characters, separated by blanks, and below it their rows,
"#" for a pixel and "." for none, the columns of each as wide as the glyph is. A line that begins with ";" is a
comment. All characters from "!" to "~" must be there, in this order.

In the picture the glyphs stand in one strip. Every pixel of the top row that differs from its first one marks
a column of a glyph, and the bottom-left pixel has the colour that is transparent. Each glyph is followed by a
blank column of its own, which spaces the letters, and a column of no glyph, which separates the markers.
"""
import argparse
import pathlib
import struct
import sys

KEY = (255, 0, 255)
MARKER = (255, 255, 0)
CHARACTERS = [chr(code) for code in range(33, 127)]


def read_source(path):
    """The settings, and the glyphs by character: lists of rows, each a string of "#" and "."."""
    settings, glyphs, block = {}, {}, []
    lines = [line for line in path.read_text(encoding="ascii").splitlines() if not line.startswith(";")]
    for line in lines + [""]:
        if line.strip():
            block.append(line.split())
            continue
        if block and not settings:
            settings = {words[0]: [int(word) for word in words[1:]] for words in block}
        elif block:
            names, rows = block[0], block[1:]
            if len(rows) != settings["rows"][0] or any(len(row) != len(names) for row in rows):
                sys.exit(f"{path}: the glyphs {' '.join(names)} are not {settings['rows'][0]} full rows")
            for column, name in enumerate(names):
                glyph = [row[column] for row in rows]
                if len({len(row) for row in glyph}) != 1 or set("".join(glyph)) - set("#."):
                    sys.exit(f"{path}: glyph {name} is ragged")
                glyphs[name] = glyph
        block = []
    if list(glyphs) != CHARACTERS:
        sys.exit(f"{path}: the glyphs are not those from ! to ~ in order")
    return settings, glyphs


def thickened(row):
    """The row with every stroke one pixel wider to the right."""
    return "".join("#" if "#" in pair else "." for pair in zip(row + ".", "." + row))


def draw(settings, glyphs):
    """The picture, a list of rows of (red, green, blue)."""
    colour = tuple(settings["colour"])
    above = settings["above"][0]
    height = 1 + above + settings["rows"][0]
    columns = [[KEY] * height]
    for character in CHARACTERS:
        rows = glyphs[character]
        if settings["bold"][0]:
            rows = [thickened(row) for row in rows]
        for x in range(len(rows[0]) + 1):
            ink = [row[x] == "#" if x < len(row) else False for row in rows]
            columns.append([MARKER] + [KEY] * above + [colour if dot else KEY for dot in ink])
        columns.append([KEY] * height)
    return [list(row) for row in zip(*columns)]


def bmp(picture):
    """The picture as the bytes of an uncompressed 24-bit BMP file."""
    height, width = len(picture), len(picture[0])
    padding = bytes(-3 * width % 4)
    pixels = b"".join(
        b"".join(bytes((blue, green, red)) for red, green, blue in row) + padding for row in reversed(picture)
    )
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54) + header + pixels


def main():
    parser = argparse.ArgumentParser(description="Makes the font images from their glyph sources.")
    parser.add_argument("--check", action="store_true", help="only say which images are out of date")
    check = parser.parse_args().check
    directory = pathlib.Path(__file__).resolve().parent
    stale = False
    for name in ("font_1", "font_2"):
        image = directory / f"{name}.bmp"
        data = bmp(draw(*read_source(directory / f"{name}.txt")))
        if not check:
            image.write_bytes(data)
        elif not image.exists() or image.read_bytes() != data:
            print(f"{image} is out of date: run {sys.argv[0]}")
            stale = True
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main())
