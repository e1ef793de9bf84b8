"""The demo programs after a fixed number of vertical blanks, pixel for pixel as in golden/.

The pictures there were looked at once, by eye, and found right; golden/NAME.png is what was seen. Both
moving programs show a moment of their animation, which comes earlier or later when their code changes: then
look at the new picture, which a failure leaves beside the old one as NAME.new.png, and put it in its place, or
beside it as NAME.gcc-VERSION.png when it is the code of that compiler that is slower or faster.
"""

import os
import subprocess
from pathlib import Path

from tarn_programs import ProgramTest, read_png

GOLDEN = Path(__file__).parent / "golden"
COMPILER = subprocess.run([os.environ.get("GUEST_CC", "mipsel-linux-gnu-gcc"), "-dumpversion"], capture_output=True,
                          text=True, check=True).stdout.split(".")[0].strip()


class GoldenTest(ProgramTest):
    def compare(self, program, *options, status=0):
        """Runs a program and holds its picture against the golden one."""
        golden = GOLDEN / f"{program}.gcc-{COMPILER}.png"
        if not golden.exists():
            golden = GOLDEN / f"{program}.png"
        new = GOLDEN / f"{program}.new.png"
        self.run_headless(*options, "--picture", new, status=status)
        self.assertTrue(golden.exists() and read_png(golden.read_bytes()) == read_png(new.read_bytes()),
                        f"the picture differs from {golden.name}: look at {new}")
        new.unlink()

    def test_programs(self):
        for program, frames, video in (("cube", 60, ""), ("primitives", 40, ""), ("bounce", 60, ""),
                                       ("picture", 40, "Width=400\nHeight=300\nBpp=24\nStretch=0")):
            with self.subTest(program):
                self.configure(program, video=video)
                self.compare(program, "--frames", str(frames))

    def test_raytrace(self):
        """The picture is that of an interpreter written apart from this one, to the last bit. Computed on the host, whose
        floats round to nearest, 246 pixels differ by more than 2 in a channel."""
        self.configure("raytrace", general="Complete_cpu=1")
        self.compare("raytrace", status=3)
