"""The window: what it shows, pixel by pixel, how it reacts to mouse and keys, how it ends, why it does not start."""

import subprocess
import time
from pathlib import Path

from display import wait_for
from tarn_programs import BUILD, read_bmp
from windowed import BODY, EMU, LAST_LINE, OPCODES, REGISTERS, TITLE_BAR, VIDEO, WindowCase


class WindowTest(WindowCase):
    def test_panes_and_text(self):
        self.start()
        self.await_panes(VIDEO, EMU, OPCODES, REGISTERS)
        self.assertEqual(self.display.do(f"getwindowname {self.window}"), " Tarn 0.03 - loop.elf\n")
        self.await_line(EMU, LAST_LINE - 1, "GS:OK")
        for (x, y, _, _), title in (VIDEO, "VideoOutput"), (EMU, "EmuOutput"), (REGISTERS, "CpuRegisters"):
            self.assertTrue(self.shows(title, x + 2, y + 2, self.title_font, TITLE_BAR), title)

    def test_picture(self):
        self.configure("picture", general="Steps_per_poll=8192")
        self.run_headless("--frames", "40", "--picture", "picture.bmp", status=0)
        picture = [[red << 16 | green << 8 | blue for red, green, blue in row]
                   for row in read_bmp(self.output_file("picture.bmp"))]
        self.start()
        wait_for(lambda: [self.display.row(y, 11, 331) for y in range(32, 272)] == picture, "the picture")

    def test_dragging_and_shading(self):
        self.start()
        drag = self.display.drag
        drag((50, 20), (80, 60))
        self.await_panes((40, 50, *VIDEO[2:]), EMU, OPCODES, REGISTERS)
        drag((60, 65), (0, 0))
        self.await_panes((0, 0, *VIDEO[2:]), EMU, OPCODES, REGISTERS)
        drag((600, 20), (600, 320))
        self.await_panes((0, 0, *VIDEO[2:]), EMU, OPCODES, (520, 310, *REGISTERS[2:]))
        drag((520, 290), (620, 490))  # the frame of Opcodes is no part of its title bar
        drag((745, 290), (735, 150))
        others = (510, 142, *OPCODES[2:]), (520, 310, *REGISTERS[2:])
        self.await_panes((0, 0, *VIDEO[2:]), EMU, *others)
        for x, height in (491, 22), (509, 170), (510, 170), (500, 22):
            drag((x, 300), (x + 50, 300))
            self.await_panes((0, 0, *VIDEO[2:]), (*EMU[:3], height), *others)
        drag((490, 300), (495, 310))
        self.await_panes((0, 0, *VIDEO[2:]), (15, 292, 500, 22), *others)

    def test_panes_side_by_side(self):
        for depth, mask, picture, size, panes in (
                (16, 0xF8FCF8, (320, 240), (795, 464),
                 ((10, 10, 322, 262), (10, 283, 583, 170), (343, 10, 250, 262), (604, 10, 180, 443))),
                (24, 0xFFFFFF, (640, 448), (924, 672),
                 ((10, 10, 642, 470), (10, 491, 642, 170), (663, 421, 250, 240), (663, 10, 250, 400))),
                (32, 0xFFFFFF, (64, 48), (713, 421),
                 ((10, 10, 240, 170), (10, 191, 501, 219), (261, 10, 250, 170), (522, 10, 180, 400)))):
            with self.subTest(depth):
                self.display.mask = mask
                self.configure(Path("loop.elf"), general="Steps_per_poll=1000",
                               video="Fit_window=1\nBpp={}\nWidth={}\nHeight={}".format(depth, *picture))
                video, messages, opcodes, registers = panes
                self.start(messages)
                self.await_panes(*panes, size=size)
                self.assertIn("{}x{}".format(*size), self.display.do(f"getwindowgeometry {self.window}"))
                self.display.do("mousemove 5 5", "key F1")
                x, y, w, _ = messages
                corner = x + w - 10, y + 10
                self.display.drag(corner, corner)
                self.await_panes(video, (x, y, w, 22), opcodes, registers, size=size)
                self.display.drag(corner, corner)
                self.display.drag((opcodes[0] + 10, opcodes[1] + 10), (opcodes[0] - 20, opcodes[1] + 40))
                self.await_panes(video, messages, (opcodes[0] - 30, opcodes[1] + 30, *opcodes[2:]), registers, size=size)
                self.tarn.kill()
                self.tarn.wait()

    def counter(self):
        """What t0 looks like in the pane CpuRegisters."""
        return [self.display.row(y, 523, 690) for y in range(32 + 8 * 11, 32 + 9 * 11)]

    def assert_stands_still(self):
        """Fails when the counter goes on changing."""
        def still():
            before = self.counter()
            time.sleep(0.2)  # thousands of instructions
            return self.counter() == before
        wait_for(still, "a stop")

    def assert_counts(self):
        before = self.counter()
        wait_for(lambda: self.counter() != before, "the machine runs")

    def test_keys(self):
        self.start()
        key = self.display.key
        key("F3")
        self.await_line(REGISTERS, 28, "gp : 0000000081f80000")
        self.assert_counts()
        key("F1")
        self.assert_stands_still()
        key("a")
        self.assertTrue(self.shows("t0 : 00000", 523, 32 + 8 * 11, self.text_font, BODY))
        key("F2")
        self.assert_counts()
        key("F3")
        self.assert_stands_still()
        start = time.monotonic()
        key("Escape")
        self.await_line(EMU, LAST_LINE - 4, "...Stop Interpreter")
        self.await_line(EMU, LAST_LINE - 3, "Stop at PC = 0x0010000")
        self.await_line(EMU, LAST_LINE, "FreeMemory: Main - SpecialArea - GS Register - Bios")
        self.assertEqual(self.tarn.communicate()[0], "Destroy koGUI\n")
        self.assertGreaterEqual(time.monotonic() - start, 2, "leaves time to read")
        self.assertEqual(self.tarn.returncode, 1)

    def test_failures(self):
        def remove(name):
            return lambda: (self.directory / name).unlink()

        def nothing():
            pass

        # In the words of SDL 1.2, or of the library that stands in for it.
        no_device = "Couldn't initialize SDL: (No available video device|x11 not available)\n"
        no_mode = "Couldn't set video mode: (Invalid bits per pixel .*|Unsupported bits-per-pixel)\n"
        failed = "tarn: start-up failed\n.*"
        for name, spoil, environment, output, messages in (
                ("no display", nothing, {"DISPLAY": ""}, "", no_device),
                ("no such depth", lambda: self.configure("kernel", video="Bpp=7"), {}, "",
                 './tarn.ini: "Video:Bpp" is 7, .*' + no_mode),
                ("no program named", lambda: self.configure(Path("")), {}, "Destroy koGUI\n",
                 failed + "Error opening :.*"),
                ("no program", lambda: self.configure(Path("missing.elf")), {}, "Destroy koGUI\n",
                 failed + "Error opening :missing.elf.*"),
                ("no BIOS", remove("bios/scph10000.bin"), {}, "Destroy koGUI\n",
                 failed + "Error opening bios/scph10000.bin\n.*"),
                ("no configuration", remove("tarn.ini"), {}, "Destroy koGUI\n",
                 r"cannot parse file \[./tarn.ini\]\n" + failed),
                ("no fonts", remove("data"), {}, "Couldnt load Font1\n", "")):
            with self.subTest(name):
                self.configure(Path("loop.elf"))
                spoil()
                result = subprocess.run([BUILD / "tarn"], cwd=self.directory, text=True, capture_output=True,
                                        env={**self.display.environment, **environment}, timeout=60, check=False)
                self.assertEqual((result.returncode, result.stdout), (1, output))
                self.assertRegex(result.stderr, rf"(?s)\A{messages}\Z")
