"""A program as argument, and the options that say how it is run, where it stops and what it leaves."""

import shutil
import subprocess

from tarn_programs import BUILD, ProgramTest, elf, guest, read_bmp, read_png

EXIT_7 = [0x24040207, 0x24030004, 0x0000000C]  # a0 = 0x207, v1 = 4 (Exit), syscall
COUNTER = [0x24080000, 0x25080001, 0x1000FFFE, 0]  # addiu t0, 0, 0; addiu t0, t0, 1; b back; nop


class CommandLineTest(ProgramTest):
    """There is neither a configuration nor a BIOS image."""

    def setUp(self):
        super().setUp()
        shutil.rmtree(self.directory / "bios")
        for name, words in ("exit.elf", EXIT_7), ("counter.elf", COUNTER):
            (self.directory / name).write_bytes(elf(words))

    def test_a_program_needs_nothing_else(self):
        _, messages = self.run_headless("exit.elf", status=3)
        self.assertIn("the program has ended, with result 519\n", messages)
        self.run_headless("--exit-status", "exit.elf", status=7)
        self.run_headless("--exit-status", "counter.elf", "--steps=9", status=0)
        (self.directory / "pause.elf").write_bytes(elf([0x27]))
        self.run_headless("--exit-status", "pause.elf", status=3)

    def test_files_that_are_no_programs(self):
        whole = elf(EXIT_7)
        cases = {b"": "is empty", b"#!/bin/sh\n" * 20: "is not an ELF file", whole[:40]: "is cut off in its header",
                 whole[:-4]: r"is cut off: a segment ends at byte \d+ of \d+",
                 whole[:32] + b"\xFF" + whole[33:]: r"is cut off: the table of sections ends at byte 295 of \d+",
                 whole[:18] + b"\x3e" + whole[19:]: "is not for this machine",
                 whole[:16] + b"\x01" + whole[17:]: "is not a program"}
        (self.directory / "bios").mkdir()
        (self.directory / "bios" / "scph10000.bin").write_bytes(bytes(64))
        for contents, reason in cases.items():
            with self.subTest(reason):
                (self.directory / "no.elf").write_bytes(contents)
                _, messages = self.run_headless("no.elf", "--picture=p.bmp", status=1)
                self.assertRegex(messages, rf"^tarn-headless: no\.elf {reason}")
                self.configure(self.directory / "no.elf")
                result = subprocess.run([BUILD / "tarn-headless", "--steps=1"], cwd=self.directory, check=False,
                                        capture_output=True, text=True)
                self.assertRegex(result.stderr, rf"tarn-headless: warning: \S+/no\.elf {reason}")
        _, messages = self.run_headless("missing.elf", status=1)
        self.assertIn("missing.elf cannot be opened: No such file or directory\n", messages)

    def test_settings(self):
        _, messages = self.run_headless("counter.elf", "--steps=1", "-D", "Video:Width=8", "--set=video:HEIGHT=0x4",
                                        "--set", "Video:Bpp=17", "--picture=p.bmp", "-DVideo:Bpp=24", status=0)
        self.assertEqual([len(read_bmp(self.output_file("p.bmp"))[0]), len(read_bmp(self.output_file("p.bmp")))],
                         [8, 4])
        self.assertNotIn("makes no sense", messages, "the last value of a key counts")
        _, messages = self.run_headless("counter.elf", "--steps=1", "-DVideo:Frame_rate=-1", status=0)
        self.assertIn('--set: "Video:Frame_rate" is -1, which makes no sense; it should be 0 or more\n', messages)

    def test_unusable(self):
        for options, complaint in ((["a.elf", "b.elf"], "unexpected argument 'b.elf'"),
                                   (["--steps=1", "--steps=1"], "--steps is given twice"),
                                   (["-D", "Width=1"], "takes Section:Key=VALUE"),
                                   (["-D", "Video:Widht=1"], 'nearest known key is "Video:Width"'),
                                   (["--until=main:0"], "a whole number from 1 "),
                                   (["--picture-every=2"], "--picture FILE"),
                                   (["--gdb=0", "--profile=p"], "do not work with --gdb"),
                                   (["--gdb=0", "--coverage=p"], "do not work with --gdb"),
                                   (["--trace=-", "--picture=-"], "only one output")):
            with self.subTest(options):
                self.assertIn(complaint, self.run_headless(*options, status=2)[1])
        _, messages = self.run_headless("counter.elf", "--until=nowhere", status=1)
        self.assertIn("'nowhere' is neither an address nor a symbol of counter.elf\n", messages)
        _, messages = self.run_headless("counter.elf", "--trace=missing/t", "--profile=p", status=1)
        self.assertEqual(messages, "tarn-headless: cannot write missing/t: No such file or directory\n",
                         "tried before the run")

    def test_until(self):
        for place, steps in (("0x100004", 1), ("0x80100004:3", 5), ("1048584", 2)):
            with self.subTest(place):
                _, messages = self.run_headless("counter.elf", f"--until={place}", status=0)
                self.assertRegex(messages, rf"tarn-headless: reached 0x001000\w\w after {steps} steps")
        _, messages = self.run_headless(guest("cube"), "--until=main", status=0)
        self.assertIn("tarn-headless: reached 0x", messages)
        self.assertIn("step limit", self.run_headless("counter.elf", "--until=0:1", "--steps=9", status=0)[1])

    def test_pictures(self):
        options = [guest("picture"), "-DVideo:Width=32", "-DVideo:Height=24", "--frames=5"]
        self.run_headless(*options, "--picture=./p", "--snapshot=s", "--picture-every=4", status=0)
        self.run_headless(*options, "--picture=p.png", "--snapshot=s.png", "--picture-every=2", status=0)
        picture = read_bmp(self.output_file("p"))
        self.assertEqual(read_png(self.output_file("p.png")), picture)
        self.assertEqual(read_png(self.output_file("s.png")), read_bmp(self.output_file("ssnap001.bmp")))
        self.assertEqual(sorted(path.name for path in self.directory.glob("p-*")), ["p-000002.png", "p-000004", "p-000004.png"])
        self.run_headless(*options, "--picture=p16.bmp", "-DVideo:Bpp=16", status=0)
        self.assertLess(max(abs(one - other) for rows in zip(picture, read_bmp(self.output_file("p16.bmp")))
                            for pixels in zip(*rows) for one, other in zip(*pixels)), 9)

    def test_standard_output(self):
        for option in "--dump-vram=-", "--picture=-":
            result = subprocess.run([BUILD / "tarn-headless", guest("picture"), "--steps=99", "-DGeneral:Debug_GS=1",
                                     "--registers", option], cwd=self.directory, capture_output=True, check=True)
            size = 4 << 20 if "vram" in option else int.from_bytes(result.stdout[2:6], "little")
            self.assertEqual(len(result.stdout), size, "and nothing else")
            self.assertIn(b"fp31", result.stderr)
        self.assertEqual(len(read_bmp(result.stdout)), 240)
