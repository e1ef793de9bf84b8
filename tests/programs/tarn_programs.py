"""What the whole-program tests share: a run directory, runs of tarn-headless, pictures."""

import os
import re
import struct
import subprocess
import tempfile
import unittest
import zlib
from pathlib import Path

BUILD = Path(os.environ["TARN_BUILD"])
SOURCE = Path(__file__).resolve().parents[2]
VRAM_BYTES = 4 << 20


def guest(name):
    """The ELF file of a program of guest/."""
    return BUILD / "guest" / f"{name}.elf"


def elf(words):
    """A program for 0x00100000, as an ELF file with one segment that is also its one executable section."""
    code = struct.pack(f"<{len(words)}I", *words)
    return struct.pack("<16sHHIIIIIHHHHHH8I10I", b"\x7fELF\x01\x01\x01", 2, 8, 1, 0x00100000, 52, 84, 0, 52, 32, 1, 40,
                       1, 0, 1, 124, 0x00100000, 0x00100000, len(code), len(code), 7, 4,
                       0, 1, 6, 0x00100000, 124, len(code), 0, 0, 4, 0) + code


class ProgramTest(unittest.TestCase):
    """A test with a run directory: tarn.ini and a BIOS image are there, outputs go there."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="tarn-test-")
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)
        (self.directory / "bios").mkdir()
        (self.directory / "bios" / "scph10000.bin").write_bytes(bytes(1024))

    def configure(self, program, general="", video=""):
        elf = guest(program) if isinstance(program, str) else program
        (self.directory / "tarn.ini").write_text(f"[General]\nElf={elf}\n{general}\n[Video]\n{video}\n")

    def build(self, sources, *options, complete=False):
        """Builds program.elf from {name: text} with tarn-guest-build; the result has its messages."""
        for name, text in sources.items():
            (self.directory / name).write_text(text)
        environment = {**os.environ, "TARN_GUEST_BUILT": BUILD / "guest" / "library"}
        names = [name for name in sources if not name.endswith(".h")]
        return subprocess.run(["sh", BUILD / "tarn-guest-build", *["--complete-cpu"] * complete, "program.elf", *names,
                               *options], cwd=self.directory, env=environment, capture_output=True, text=True,
                              check=False)

    def run_headless(self, *options, status):
        """Runs to the end and returns the two output streams; the exit status must be the one given."""
        result = subprocess.run([BUILD / "tarn-headless", *options], cwd=self.directory, capture_output=True,
                                timeout=240, check=False)
        output = result.stdout.decode("latin-1")
        messages = result.stderr.decode("latin-1")
        self.assertEqual(result.returncode, status, messages)
        return output, messages

    def output_file(self, name):
        return (self.directory / name).read_bytes()

    def local_memory(self):
        """The words of the file vram.bin, which --dump-vram wrote."""
        data = self.output_file("vram.bin")
        self.assertEqual(len(data), VRAM_BYTES)
        return struct.unpack(f"<{VRAM_BYTES // 4}I", data)


def result_of(registers):
    """What main returned, or a program gave to Exit: a0 among the printed registers, signed."""
    value = int(re.search(r"a0 : ([0-9a-f]{16})", registers).group(1), 16)
    return value - (value >> 63 << 64)


def read_bmp(data):
    """Rows, top first, of (red, green, blue) from an uncompressed BMP of 24 or 32 bits."""
    offset, = struct.unpack_from("<I", data, 10)
    width, height, _, depth = struct.unpack_from("<iiHH", data, 18)
    step = depth // 8
    pitch = (width * step + 3) // 4 * 4
    rows = []
    for y in reversed(range(height)):
        line = data[offset + y * pitch:offset + y * pitch + width * step]
        rows.append([(line[i + 2], line[i + 1], line[i]) for i in range(0, width * step, step)])
    return rows


def paeth(left, above, corner):
    guess = left + above - corner
    return min((left, above, corner), key=lambda each: abs(guess - each))


def read_png(data):
    """Rows of (red, green, blue) from a PNG of 8-bit RGB."""
    width, height, depth, kind = struct.unpack_from(">IIBB", data, 16)
    assert (data[:8], depth, kind) == (b"\x89PNG\r\n\x1a\n", 8, 2)
    lines = zlib.decompress(b"".join(data[m.end():m.end() + struct.unpack_from(">I", data, m.start() - 4)[0]]
                                     for m in re.finditer(b"IDAT", data)))
    predict = (None, lambda left, *_: left, lambda _, above, __: above,
               lambda left, above, _: (left + above) // 2, paeth)
    before, rows, pitch = bytes(width * 3 + 3), [], width * 3 + 1
    for y in range(height):
        kind, line = lines[y * pitch], bytearray(3) + lines[y * pitch + 1:(y + 1) * pitch]
        if kind:
            for i in range(3, len(line)):
                line[i] = line[i] + predict[kind](line[i - 3], before[i], before[i - 3]) & 0xFF
        before = bytes(line)
        rows.append(list(zip(line[3::3], line[4::3], line[5::3])))
    return rows
