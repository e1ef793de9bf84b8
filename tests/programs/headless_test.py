"""The command line of tarn-headless: options, exit statuses, outputs that can and cannot be written."""

import fcntl
import gzip
import re
import signal
import subprocess
import termios
import time
from pathlib import Path

from tarn_programs import BUILD, VRAM_BYTES, ProgramTest, elf

PROGRAM = BUILD / "tarn-headless"


class HeadlessTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.configure("picture", video="Width=32\nHeight=24")

    def test_unusable_arguments(self):
        for options, complaint in ((["--steps"], "requires an argument"), (["--steps", ""], "not ''"),
                                   (["--steps", "-1"], "not '-1'"), (["--steps", " 1"], "not ' 1'"),
                                   (["--frames", "1x"], "not '1x'"), (["--frames", "0x10"], "not '0x10'"),
                                   (["--steps", "18446744073709551616"], "not '18446744073709551616'"),
                                   (["--stepps=1"], "unrecognized option"), (["-q"], "invalid option"),
                                   (["--registers=1"], "doesn't allow an argument")):
            with self.subTest(options):
                output, messages = self.run_headless(*options, status=2)
                self.assertEqual(output, "")
                self.assertRegex(messages, f"{complaint}(.|\n)*Try 'tarn-headless --help'.")

    def test_version_and_limits(self):
        self.assertEqual(self.run_headless("--version", status=0), ("tarn-headless 0.3\n", ""))
        for options, end in ((["--steps", "0"], "step limit reached after 0 steps and 0 vertical blanks"),
                             (["--steps", "77", "--frames", "1"], "step limit reached after 77 steps"),
                             (["--frames", "0"], "frame limit reached after 0 steps"),
                             (["--frames", "2", "--steps=18446744073709551615"],
                              "frame limit reached after 57317 steps and 2 vertical blanks")):
            with self.subTest(options):
                self.assertIn(f"tarn-headless: {end}", self.run_headless(*options, status=0)[1])

    def test_traces(self):
        def unzstd(data):
            return subprocess.run(["zstd", "-dcq"], input=data, capture_output=True, check=True).stdout

        for option, step in (("--trace", r"0010\w{4}: .+\n(\w{2} : \w{16}\n){34}"),
                             ("--trace-changes", r"(# _start(\+0x\w+)?.*\n)?0010\w{4}: \w+\s.*\n")):
            _, messages = self.run_headless("--steps", "9", option, "whole", status=0)
            self.assertRegex(messages, r"Stop at PC = 0x0010\w{4} after \d+ instructions")
            whole = self.output_file("whole").decode()
            self.assertRegex(whole, f"^({step}){{2}}")
            for name, unpack in ("part", bytes), ("part.gz", gzip.decompress), ("part.zst", unzstd):
                with self.subTest(option, name=name):
                    self.run_headless("--steps=9", "--trace-from=1", "--trace-steps=1", option, name, status=0)
                    part = unpack(self.output_file(name)).decode()
                    self.assertRegex(part, f"^{step}$")
                    self.assertIn(part.split("\n", part.startswith("#"))[-1], whole)

    def test_failed_start_writes_what_there_is(self):
        (self.directory / "bios" / "scph10000.bin").unlink()
        _, messages = self.run_headless("--picture", "p.bmp", "--dump-vram", "vram.bin", "--trace", "t", status=1)
        self.assertIn("FATAL ERROR while emulator initialisation....Sorry Exiting\n", messages)
        self.assertIn("tarn-headless: start-up failed\n", messages)
        self.assertIn("tarn-headless: cannot write vram.bin: there is no GS memory\n", messages)
        self.assertTrue(self.output_file("p.bmp").startswith(b"BM"))
        self.assertEqual(self.output_file("t"), b"")

    def test_lost_outputs(self):
        for option in "--picture", "--dump-vram", "--trace", "--profile", "--coverage":
            for path, reason in (("/dev/full", "No space left on device"), (".", "Is a directory"),
                                 ("missing/file", "No such file or directory")):
                with self.subTest(option, path=path):
                    _, messages = self.run_headless("--steps=99", option, path, status=1)
                    self.assertEqual(messages.count(f"tarn-headless: cannot write {path}: {reason}\n"), 1, messages)
        _, messages = self.run_headless("--frames=1", "--picture=/proc/self/fd/1", "--picture-every=1", status=1)
        self.assertIn("tarn-headless: cannot write /proc/self/fd/1-000001: No such file or directory", messages)
        self.configure("picture", video="Bpp=4")
        _, messages = self.run_headless("--steps=99", "--picture=p.bmp", status=1)
        self.assertIn("tarn-headless: cannot write p.bmp: 4 bpp BMP files not supported", messages)
        self.configure("picture", video="Bpp=64")
        output, messages = self.run_headless("--steps=99", "--picture=p.bmp", status=1)
        self.assertIn("CreateRGBSurface failed: No pixels of 64 bits\n", output)
        self.assertIn("tarn-headless: cannot write p.bmp: there is no picture\n", messages)
        _, messages = self.run_headless("--steps=99", "--snapshot=missing/", "--dump-vram=vram.bin", status=1)
        self.assertIn("tarn-headless: cannot write missing/snapNNN.bmp: No such file or directory", messages)
        self.assertEqual(len(self.output_file("vram.bin")), VRAM_BYTES, "the others are whole")

    def test_lost_standard_streams(self):
        for redirection, status in ((">/dev/full", 1), (">&-", 1), ("| true", 1), ("2>&-", 0), ("2>/dev/full", 0),
                                    ("<&- >&- 2>&-", 1)):
            with self.subTest(redirection):
                command = f"'{PROGRAM}' --steps 99 --registers --dump-vram vram.bin {redirection}"
                result = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=self.directory,
                                        capture_output=True, timeout=60, check=False)
                self.assertEqual(result.returncode, status, result.stderr)
                self.assertEqual(set(self.output_file("vram.bin")), {0}, "no text got into the file")

    def test_files_that_may_not_grow(self):
        command = f"ulimit -f 100; '{PROGRAM}' --steps 99 --registers --dump-vram vram.bin"
        result = subprocess.run(["bash", "-c", command], cwd=self.directory, capture_output=True, text=True,
                                check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("tarn-headless: cannot write vram.bin: File too large", result.stderr)
        self.assertIn("fp31", result.stdout)

    def test_where_the_processor_paused(self):
        nor, branch = 0x27, 0x10000003
        for words, where in (([nor], "PC 0x00100000, instruction 0x00000027 (NOR)"),
                             ([branch, nor], "PC 0x00100010, last instruction 0x00000027 (NOR)"),
                             ([0x3C014000, 0x00200008, 0], "PC 0x40000000, last instruction 0x00000000 (SLL)")):
            with self.subTest(where):
                self.configure(self.directory / "stops.elf")
                (self.directory / "stops.elf").write_bytes(elf(words))
                self.assertIn(f"the CPU paused at {where} after", self.run_headless("--steps", "4", status=3)[1])

    def test_a_signal_while_the_reader_is_slow(self):
        # lui at, 0x1001; sw zero, -0x7000(at), which is reported; b to the store; nop
        (self.directory / "talks.elf").write_bytes(elf([0x3C011001, 0xAC209000, 0x1000FFFE, 0]))
        self.configure(self.directory / "talks.elf")
        with subprocess.Popen([PROGRAM], cwd=self.directory, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL) as machine:
            def blocked():
                waiting = int.from_bytes(fcntl.ioctl(machine.stdout, termios.FIONREAD, bytes(4)), "little")
                state = Path(f"/proc/{machine.pid}/stat").read_text().rpartition(")")[2].split()[0]
                return waiting > fcntl.fcntl(machine.stdout, fcntl.F_GETPIPE_SZ) - 4096 and state == "S"
            while not blocked():
                time.sleep(0.01)
            machine.send_signal(signal.SIGINT)
            time.sleep(0.2)  # or it finds room again before it notices
            reports = re.findall(rb"10009000 h \(i:(\d+)\)", machine.stdout.read())
        self.assertEqual(machine.returncode, 0)
        self.assertEqual([int(cycle) for cycle in reports], [2 + 3 * i for i in range(len(reports))])

    def test_signals(self):
        for number in signal.SIGINT, signal.SIGTERM:
            with self.subTest(number), subprocess.Popen([PROGRAM, "--dump-vram", "vram.bin"], cwd=self.directory,
                                                        stderr=subprocess.PIPE, text=True) as machine:
                while machine.stderr.readline() != "Start Interpreter....\n":
                    pass
                machine.send_signal(number)
                messages = machine.stderr.read()
                self.assertEqual(machine.wait(), 0)
                self.assertIn("tarn-headless: stopped by a signal after ", messages)
                self.assertIn("...Stop Interpreter\n", messages)
                self.local_memory()
