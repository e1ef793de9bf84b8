"""The window as a tool: extra keys, the caption, why the processor paused, a debugger with the picture in sight."""

import re
import socket
from pathlib import Path

from debugged import Client, packet
from display import wait_for
from tarn_programs import elf, read_bmp, read_png
from windowed import BODY, WindowCase

EMU, OPCODES, REGISTERS = (10, 283, 583, 170), (343, 10, 250, 262), (604, 10, 180, 443)  # side by side

BLANK = 28659  # steps
TRACE_LINES = 1, 3  # of the two steps of the loop: addiu; beq, nop, and the nop again
STOPS = elf([0x24020001, 0x8C020000, 0x1000FFFF, 0])  # li v0, 1; lw v0, 0(r0); b .; nop


def free_port():
    with socket.socket() as any_port:
        any_port.bind(("127.0.0.1", 0))
        return any_port.getsockname()[1]


class ToolsTest(WindowCase):
    def caption(self, state, step=r"\d+", pace="as fast as possible"):
        """Waits for a caption; returns the step that it names."""
        def named():
            match = re.fullmatch(rf"Tarn - \S+, step ({step}), {pace}: {state}\n",
                                 self.display.do(f"getwindowname {self.window}"))
            return match and [int(match.group(1))]
        return wait_for(named, f"{state} at {step}")[0]

    def key(self, name):
        self.display.do("mousemove 5 5", f"key {name}")

    def await_register(self, slot, name, value):
        self.await_line(REGISTERS, slot, f"{name} : {value:016x}")

    def await_position(self, step, state, line=0):
        """Waits until caption and panes show the loop, which has two steps and counts in the first."""
        self.caption(state, step)
        self.await_register(8, "t0", (step + 1) // 2)
        self.await_line(OPCODES, line, f"> 0010000{'4: beq' if step % 2 else '0: addiu'}")

    def test_extra_keys(self):
        self.configure(Path("loop.elf"), general="Steps_per_poll=1000\nExtra_keys=1", video="Fit_window=1")
        self.start(EMU)
        self.caption(r"running at \d+ frames/s")
        self.key("F1")
        step = self.caption("paused")
        self.await_position(step, "paused")
        line = 0
        for _ in range(2):
            self.key("F5")
            line += TRACE_LINES[step % 2]
            step += 1
            self.await_position(step, "paused", line)
        for _ in range(2):
            self.key("F6")
            step += BLANK - (step + 1) % BLANK
            self.await_position(step, "paused")
        self.key("F7")
        self.caption("paused", step, "paced to 60 frames/s")
        self.key("F12")
        self.key("F12")
        self.await_line(EMU, 12, "Screenshot: screenshot-002.png")
        picture = read_png(self.output_file("screenshot-001.png"))
        self.assertEqual((len(picture), len(picture[0]), self.output_file("screenshot-002.png")),
                         (240, 320, self.output_file("screenshot-001.png")))
        self.key("F2")
        self.caption(r"running at (5\d|6[0-5]) frames/s", pace="paced to 60 frames/s")

    def test_the_picture_goes_on_with_the_trace(self):
        self.configure("bounce", general="Steps_per_poll=8192\nExtra_keys=1\nDebug_op=1", video="Fit_window=1")
        self.start(EMU)

        def pages():
            return int(Path(f"/proc/{self.tarn.pid}/statm").read_text().split()[1])

        def picture():
            return [self.display.row(y, 11, 331) for y in range(32, 272)]

        seen, before = picture(), pages()
        for _ in range(3):
            wait_for(lambda: picture() != seen, "another picture")
            seen = picture()
        self.assertLess(pages() - before, 2000)
        for x, y, w, _ in OPCODES, REGISTERS:
            self.assertNotEqual({BODY}, set(self.display.row(y + 27, x + 3, x + w - 10)))

    def test_why_the_processor_paused(self):
        (self.directory / "loop.elf").write_bytes(STOPS)
        self.configure(Path("loop.elf"), general="Extra_keys=1", video="Fit_window=1")
        with open(self.directory / "messages", "w", encoding="ascii") as messages:
            self.start(EMU, ready="  0x00100000 to 0x01fffffe", stderr=messages)
        place = r"the CPU paused at PC 0x00100008, last instruction 0x8c020000 \(LW\)"
        cause = "the load of 4 bytes at 0x00000000 failed: nothing is there, a null pointer; the nearest is main memory, " \
            "0x00100000 to 0x01fffffe"
        self.caption(f"{place}: {re.escape(cause)}", 2)
        self.assertRegex((self.directory / "messages").read_text(),
                         rf"\Atarn: {place} after 2 steps and 0 vertical blanks\n(tarn: .*\n)*tarn: {cause}\n\Z")

    def command(self, client, text):
        return bytes.fromhex(client.ask(b"qRcmd," + text.encode().hex().encode()).decode()).decode()

    def test_debugger(self):
        port = free_port()
        self.configure(Path("loop.elf"), general=f"Steps_per_poll=1000\nExtra_keys=1\nGdb_port={port}", video="Fit_window=1")
        self.start(EMU, ready="A debugger can attach")
        self.caption(r"running at \d+ frames/s")
        client = Client(port)
        self.addCleanup(client.close)
        self.assertEqual(client.ask(b"?"), b"S05")
        held = "stopped by the debugger"
        step = self.caption(held)
        self.await_position(step, held)
        for command, way in (b"s", 1), (b"bs", -1), (b"bs", -1):
            self.assertEqual(client.ask(command), b"S05")
            step += way
            self.await_position(step, held, TRACE_LINES[(step - 1) % 2] if way > 0 else 0)
        self.command(client, "goto 100")
        self.await_position(100, held)
        self.assertEqual(client.ask(b"P4=efbeadde00000000"), b"OK")
        self.await_register(4, "a0", 0xDEADBEEF)
        self.key("F5")
        self.await_line(EMU, 12, "The debugger controls the machine")
        client.send(packet(b"c"))
        self.caption(r"running at \d+ frames/s")
        self.key("F1")
        self.assertEqual(client.reply(), b"S02")
        client.close()
        self.key("F2")
        self.caption(r"running at \d+ frames/s")
        client = Client(port)
        client.send(packet(b"k"))
        self.await_line(EMU, 7, "killed by the debugger")
        client.close()

    def test_the_picture_of_the_moment(self):
        self.configure("picture", general=f"Steps_per_poll=8192\nGdb_port={(port := free_port())}", video="Fit_window=1")
        self.run_headless("--frames", "3", "--picture", "then.bmp", status=0)
        self.run_headless("--frames", "40", "--picture", "now.bmp", status=0)
        self.start(EMU, ready="A debugger can attach")

        def await_picture(name):
            picture = [[red << 16 | green << 8 | blue for red, green, blue in row]
                       for row in read_bmp(self.output_file(name))]
            wait_for(lambda: [self.display.row(y, 11, 331) for y in range(32, 272)] == picture, name)

        await_picture("now.bmp")
        client = Client(port)
        self.addCleanup(client.close)
        client.ask(b"?")
        now = re.search(r"step (\d+)", self.command(client, "step")).group(1)
        for command, name in ("frame 3", "then.bmp"), (f"goto {now}", "now.bmp"), ("frame 3", "then.bmp"):
            self.command(client, command)
            await_picture(name)
