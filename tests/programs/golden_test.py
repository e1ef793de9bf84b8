"""The demo programs after a fixed number of vertical blanks, pixel for pixel as in golden/.

The pictures there were looked at once, by eye, and found right; golden/NAME.png is what was seen. Both
moving programs show a moment of their animation, which comes earlier or later when their code changes: then
look at the new picture, which a failure leaves beside the old one as NAME.new.png, and put it in its place, or
beside it as NAME.gcc-VERSION.png when it is the code of that compiler that is slower or faster.
"""

import os
import struct
import subprocess
import zlib
from pathlib import Path

from tarn_programs import ProgramTest, read_bmp

GOLDEN = Path(__file__).parent / "golden"
COMPILER = subprocess.run([os.environ.get("GUEST_CC", "mipsel-linux-gnu-gcc"), "-dumpversion"], capture_output=True,
                          text=True, check=True).stdout.split(".")[0].strip()


def png(width, height, lines):
    """A PNG of 8-bit RGB from its lines, each behind a zero: none of them is filtered."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def lines_of(picture):
    """The lines of such a PNG."""
    return zlib.decompress(picture[41:-16])


class GoldenTest(ProgramTest):
    def compare(self, program):
        """Holds shown.bmp against the golden picture."""
        rows = read_bmp(self.output_file("shown.bmp"))
        lines = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in row) for row in rows)
        golden = GOLDEN / f"{program}.gcc-{COMPILER}.png"
        if not golden.exists():
            golden = GOLDEN / f"{program}.png"
        if not golden.exists() or lines_of(golden.read_bytes()) != lines:
            new = GOLDEN / f"{program}.new.png"
            new.write_bytes(png(len(rows[0]), len(rows), lines))
            self.fail(f"the picture differs from {golden.name}: look at {new}")

    def test_programs(self):
        for program, frames, video in (("cube", 60, ""), ("primitives", 40, ""), ("bounce", 60, ""),
                                       ("picture", 40, "Width=400\nHeight=300\nBpp=24\nStretch=0")):
            with self.subTest(program):
                self.configure(program, video=video)
                self.run_headless("--frames", str(frames), "--picture", "shown.bmp", status=0)
                self.compare(program)

    def test_raytrace(self):
        """The picture is that of an interpreter written apart from this one, to the last bit. Computed on the host, whose
        floats round to nearest, 246 pixels differ by more than 2 in a channel."""
        self.configure("raytrace", general="Complete_cpu=1")
        self.run_headless("--picture", "shown.bmp", status=3)
        self.compare("raytrace")
