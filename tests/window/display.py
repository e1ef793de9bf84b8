"""An X server of the tests' own: its pixels, its pointer and keyboard."""

import mmap
import os
import struct
import subprocess
import tempfile
import time
from pathlib import Path

SCREEN = 1024, 768
PATIENCE = 60  # seconds, for machines that are busy with other things


def wait_for(condition, what):
    """Returns the first true value of the condition."""
    limit = time.monotonic() + PATIENCE
    while not (value := condition()):
        if time.monotonic() > limit:
            raise AssertionError(f"in vain: {what}")
        time.sleep(0.01)
    return value


class Display:
    """Xvfb with one screen of 24 bits, whose pixels are read from the file that it maps."""

    mask = 0xFFFFFF  # of a pixel, what is compared

    def __init__(self):
        self.directory = tempfile.TemporaryDirectory(prefix="tarn-window-")
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-fbdir", self.directory.name, "-nolisten", "tcp", "-noreset",
             "-screen", "0", f"{SCREEN[0]}x{SCREEN[1]}x24"], pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as number:
            self.name = ":" + number.readline().strip()
        # What a build with sanitizers is to overlook.
        suppressions = Path(self.directory.name) / "suppressions"
        suppressions.write_text("leak:libX11\nleak:libdbus\nleak:libGLX\n")
        self.environment = {**os.environ, "DISPLAY": self.name, "SDL_VIDEO_WINDOW_POS": "0,0",
                            "LSAN_OPTIONS": f"suppressions={suppressions}:print_suppressions=0"}
        with open(Path(self.directory.name) / "Xvfb_screen0", "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        header = struct.unpack(">25I", self.memory[:100])
        self.pixels, self.pitch = header[0] + 12 * header[19], header[12]

    def close(self):
        self.server.terminate()
        self.server.wait()
        self.memory.close()
        self.directory.cleanup()

    def row(self, y, left=0, right=SCREEN[0]):
        """The pixels of a row, as 0xRRGGBB."""
        start = self.pixels + y * self.pitch
        words = struct.unpack(f"<{right - left}I", self.memory[start + 4 * left:start + 4 * right])
        return [word & self.mask for word in words]

    def pixel(self, x, y):
        return self.row(y, x, x + 1)[0]

    def do(self, *commands):
        """Runs commands of xdotool, given as words, and returns what they print."""
        words = [str(word) for command in commands for word in str(command).split()]
        return subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True,
                              check=False).stdout

    def drag(self, start, end):
        self.do("mousemove {} {} mousedown 1".format(*start), "mousemove {} {} mouseup 1".format(*end))

    def key(self, name):
        """Presses a key while the pointer is in the window, where no pane is; this gives it the keyboard."""
        self.do("mousemove 790 590", f"key {name}")
