"""What tarn-headless says on standard error beside the machine's own lines: warnings, and how far it has come."""

import fcntl
import os
import pty
import re
import signal
import struct
import subprocess
import termios
import threading
from pathlib import Path

from tarn_programs import BUILD, ProgramTest, guest

SOURCE = Path(__file__).resolve().parents[2]


class ConfigurationWarningsTest(ProgramTest):
    def warnings(self, text):
        (self.directory / "tarn.ini").write_text(text)
        _, messages = self.run_headless("--steps", "1", status=0)
        return [line for line in messages.splitlines() if line.startswith("./tarn.ini: ")]

    def test_warnings(self):
        elf = f"[General]\nElf={guest('kernel')}\n"
        unknown = './tarn.ini: unknown key "{}" is ignored; the nearest known key is "{}"'
        number = './tarn.ini: "{}" is "{}", which is not a number; it is taken as {}'
        sense = './tarn.ini: "{}" is {}, which makes no sense; it should be {}'
        cases = {
            "DEBUG_GS = 0x1\n[video]\nWIDTH = 0320\n": [],
            "Debug_opp=1\nSteps_per_pol=1\n": [unknown.format("general:debug_opp", "General:Debug_op"),
                                               unknown.format("general:steps_per_pol", "General:Steps_per_poll")],
            "Width=640\n": [unknown.format("general:width", "Video:Width")],
            "[Vidoe]\nHeight=1\n": [unknown.format("vidoe:height", "Video:Height")],
            "[Vid]\n[Video]\n": ['./tarn.ini: unknown section "vid" is ignored; the nearest known section is "Video"'],
            "[Video]\nWidth=640x480\nHeight=tall\nBpp=\n": [number.format("Video:Width", "640x480", 640),
                                                           number.format("Video:Height", "tall", 0),
                                                           number.format("Video:Bpp", "", 0)],
            "Debug_op=2\n[Video]\nWidth=0\nHeight=65536\nBpp=17\nFrame_rate=-1\n": [
                sense.format("General:Debug_op", 2, "0 or 1"),
                sense.format("Video:Width", 0, "a number from 1 to 16383"),
                sense.format("Video:Height", 65536, "a number from 1 to 16383"),
                sense.format("Video:Bpp", 17, "15, 16, 24 or 32"),
                sense.format("Video:Frame_rate", -1, "0 or more")],
            "\x1b\x7f2J=1\n": [unknown.format("general:??2j", "General:Elf")],
        }
        for text, expected in cases.items():
            with self.subTest(text):
                self.assertEqual(self.warnings(elf + text), expected, "each warning once")

        many = self.warnings(elf + "".join(f"key{i} = 1\n" for i in range(1000)))
        self.assertEqual(len(many), 21)
        self.assertEqual(many[-1], "./tarn.ini: further warnings are left out")

    def test_a_byte_order_mark_and_a_trace_to_nowhere_are_named(self):
        (self.directory / "tarn.ini").write_bytes(b"\xEF\xBB\xBF[General]\n")
        self.assertIn("./tarn.ini begins with a UTF-8 byte-order mark", self.run_headless(status=1)[1])
        self.configure("kernel", general="Debug_op=1")
        self.assertIn("warning: Debug_op is 1", self.run_headless("--steps=1", status=0)[1])
        self.assertNotIn("warning", self.run_headless("--steps=1", "--trace=t", status=0)[1])

    def test_the_sample_has_no_warning(self):
        sample = (SOURCE / "data" / "tarn.ini").read_text()
        self.assertEqual(self.warnings(sample.replace("program.elf", str(guest("kernel")))), [])


class ProgressTest(ProgramTest):
    def on_terminal(self, *options, standard_output_too=False, seconds=None, columns=0):
        """What a terminal on standard error receives of a run that a signal ends: after some time, or when it has
        shown its line several times."""
        self.configure("picture", general="Debug_GS=1\nDebug_dma=1")
        controller, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 25, columns, 0, 0))
        with subprocess.Popen([BUILD / "tarn-headless", *options], cwd=self.directory, stderr=terminal,
                              stdout=terminal if standard_output_too else subprocess.DEVNULL) as machine:
            os.close(terminal)
            if seconds is not None:
                threading.Timer(seconds, machine.send_signal, [signal.SIGINT]).start()
            received = b""
            try:
                while data := os.read(controller, 4096):
                    received += data
                    if received.count(b"\r\x1b[K") >= 3:
                        machine.send_signal(signal.SIGINT)
            except OSError:  # the terminal's other end is closed
                pass
            os.close(controller)
            self.assertEqual(machine.wait(), 0, received)
        return received.decode("latin-1")

    def test_a_line_that_updates_itself(self):
        for both in False, True:
            text = self.on_terminal(standard_output_too=both)
            shown = text[text.index("Start Interpreter"):]
            lines = re.findall(r"(\d+) steps, (\d+) frames, [0-9.]+ million steps per second\r\x1b\[K", shown)
            self.assertGreaterEqual(len(lines), 3)
            self.assertEqual(lines, sorted(lines, key=lambda line: int(line[0])))
            # No other text has the line before it: what a terminal shows is the last text after each erasure.
            for line in text.split("\r\n"):
                self.assertNotIn("steps per second", line.split("\r\x1b[K")[-1])
        narrow = self.on_terminal(columns=12).split("\r\x1b[K")
        self.assertTrue(all(len(text) == 11 for text in narrow[1:-1]) and len(narrow) > 2, "the last column stays free")

    def test_no_line_unless_on_a_terminal(self):
        self.assertNotIn("per second", self.on_terminal("--quiet", seconds=1))
        with subprocess.Popen([BUILD / "tarn-headless"], cwd=self.directory, stderr=subprocess.PIPE,
                              stdout=subprocess.DEVNULL) as machine:
            threading.Timer(1, machine.send_signal, [signal.SIGINT]).start()
            self.assertNotIn(b"per second", machine.stderr.read())
