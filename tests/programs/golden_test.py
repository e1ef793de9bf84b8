"""The demo programs after a fixed number of vertical blanks, word for word as in golden/.

The pictures there were looked at once, by eye, and found right; golden/NAME.png is what was seen. Both
moving programs show a moment of their animation, which comes earlier or later when their code changes, be
it by the compiler: then look at the new picture, which a failure leaves beside the old one as NAME.new.png,
and put it in its place.
"""

import struct
import zlib
from pathlib import Path

from tarn_programs import ProgramTest, read_bmp

GOLDEN = Path(__file__).parent / "golden"
WIDTH, HEIGHT = 320, 240


def read_png(data):
    """Rows of (red, green, blue) from a PNG as write_png writes it."""
    position, pixels = 8, b""
    while position < len(data):
        length, kind = struct.unpack_from(">I4s", data, position)
        if kind == b"IDAT":
            pixels += data[position + 8:position + 8 + length]
        position += 12 + length
    lines, pitch = zlib.decompress(pixels), 1 + 3 * WIDTH
    return [[tuple(lines[y * pitch + x:y * pitch + x + 3]) for x in range(1, pitch, 3)] for y in range(HEIGHT)]


def write_png(rows):
    """A PNG of 8-bit RGB, no line of it filtered."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    lines = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in row) for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


class GoldenTest(ProgramTest):
    def check(self, program, frames):
        self.configure(program)
        self.run_headless("--frames", str(frames), "--picture", "shown.bmp", status=0)
        rows = read_bmp(self.output_file("shown.bmp"))
        golden = GOLDEN / f"{program}.png"
        expected = read_png(golden.read_bytes()) if golden.exists() else None
        if rows != expected:
            new = GOLDEN / f"{program}.new.png"
            new.write_bytes(write_png(rows))
            self.fail(f"the picture differs from {golden.name}: look at {new}")

    def test_programs(self):
        for program, frames in ("cube", 60), ("primitives", 40), ("bounce", 60):
            with self.subTest(program):
                self.check(program, frames)
