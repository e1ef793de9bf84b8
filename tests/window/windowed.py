"""What the tests of the window share: what it shows, and starting it."""

import shutil
import subprocess
import unittest
from pathlib import Path

from display import Display, wait_for
from tarn_programs import BUILD, ProgramTest, elf, read_bmp

DATA = Path(__file__).resolve().parents[2] / "data"

BACKGROUND, FRAME, TITLE_BAR, SHADE_BOX, BODY = 0x006999, 0x002549, 0x006589, 0xCCCCCC, 0
VIDEO, EMU, OPCODES, REGISTERS = (10, 10, 322, 262), (10, 282, 500, 170), (520, 282, 250, 170), (520, 10, 180, 400)
LAST_LINE = 12  # of EmuOutput, counted from 0

LOOP = elf([0x25080001, 0x1000FFFE, 0])  # addiu t0, t0, 1; beq r0, r0, back to it; nop


class Font:
    """The glyphs of a font image, as rows of 0xRRGGBB, or None where they are transparent."""

    def __init__(self, path):
        rows = [[red << 16 | green << 8 | blue for red, green, blue in row] for row in read_bmp(path.read_bytes())]
        self.height = len(rows)
        marked = [pixel != rows[0][0] for pixel in rows[0]]
        self.glyphs = {}
        for start in (x for x in range(1, len(marked)) if marked[x] and not marked[x - 1]):
            end = marked.index(False, start)
            self.glyphs[chr(33 + len(self.glyphs))] = [
                [None if pixel == rows[-1][0] else pixel for pixel in row[start:end]] for row in rows[1:]]
        self.glyphs[" "] = [[None] * len(row) for row in self.glyphs["!"]]
        self.ink = {pixel for glyph in self.glyphs.values() for row in glyph for pixel in row} - {None}

    def rows(self, text, ground):
        """What the text looks like."""
        return [[ground if pixel is None else pixel for character in text for pixel in self.glyphs[character][y]]
                for y in range(self.height - 1)]


class WindowCase(ProgramTest):
    @classmethod
    def setUpClass(cls):
        for tool, package in ("Xvfb", "xvfb"), ("xdotool", "xdotool"):
            if shutil.which(tool) is None:
                raise unittest.SkipTest(f"{tool} is not installed (Debian package {package})")
        cls.display = Display()
        cls.addClassCleanup(cls.display.close)
        cls.title_font, cls.text_font = Font(DATA / "font_1.bmp"), Font(DATA / "font_2.bmp")
        cls.text_colours = cls.title_font.ink | cls.text_font.ink | {TITLE_BAR, BODY}

    def setUp(self):
        super().setUp()
        (self.directory / "data").symlink_to(DATA)
        (self.directory / "loop.elf").write_bytes(LOOP)
        self.configure(Path("loop.elf"), general="Steps_per_poll=1000")
        self.display.mask = 0xFFFFFF
        self.display.do("mousemove 1010 760")

    def start(self, messages=EMU, ready="Start Interpreter....", stderr=None):
        """Starts the program and waits for the last line in EmuOutput."""
        self.tarn = subprocess.Popen([BUILD / "tarn"], cwd=self.directory, env=self.display.environment,
                                     stdout=subprocess.PIPE, stderr=stderr, text=True)
        self.addCleanup(self.tarn.stdout.close)
        self.addCleanup(self.tarn.wait)
        self.addCleanup(self.tarn.kill)
        self.await_line(messages, (messages[3] - 22) // 11 - 1, ready)
        self.window = int(self.display.do("search --name Tarn").split()[0])

    def shows(self, text, x, y, font, ground):
        return all(self.display.row(y + i, x, x + len(row)) == [pixel & self.display.mask for pixel in row]
                   for i, row in enumerate(font.rows(text, ground)))

    def await_line(self, pane, line, text):
        """Waits for a line of a text pane that begins with the text."""
        x, y = pane[0] + 3, pane[1] + 22 + line * self.text_font.height
        wait_for(lambda: self.shows(text, x, y, self.text_font, BODY), text)

    def expected(self, panes):
        """Frames, bars and bodies in their order; None where text may stand."""
        picture = [[BACKGROUND & self.display.mask] * 1024 for _ in range(768)]

        def fill(colour, left, top, width, height):
            for row in picture[top:top + height]:
                row[left:left + width] = [colour and colour & self.display.mask] * width

        for x, y, w, h in panes:
            for line in ((x, y, w + 1, 1), (x + w, y, 1, h + 1), (x, y + h, w + 1, 1), (x, y, 1, h + 1),
                         (x, y + 21, w - 1, 1)):
                fill(FRAME, *line)
            fill(TITLE_BAR, x + 1, y + 1, w - 2, 20)
            fill(None, x + 2, y + 2, 90, self.title_font.height - 1)
            fill(SHADE_BOX, x + w - 22, y + 3, 16, 16)
            fill(BODY if (w, h) == panes[0][2:] else None, x + 1, y + 22, w - 2, h - 22)
        return picture

    def await_panes(self, *panes, size=(800, 600)):
        """Waits until the whole window looks as if it had these panes, the last on top, whatever their text."""
        picture = self.expected(panes)
        colours = {colour & self.display.mask for colour in self.text_colours}

        def equal():
            return all(got == want or want is None and got in colours
                       for y in range(size[1]) for want, got in zip(picture[y], self.display.row(y, 0, size[0])))

        self.display.do("mousemove 1010 760")
        wait_for(equal, f"panes at {panes}")
