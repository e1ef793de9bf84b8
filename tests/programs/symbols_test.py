"""What is said of a program in its own words: pauses, profiles and coverage, read with the tools that others use."""

import re
import subprocess
from pathlib import Path

from tarn_programs import ProgramTest, elf

SOURCE = (Path(__file__).parent / "counted.S").read_text()  # each line says how often it runs
LEAF = "jr      $31                     # 4"


class SymbolsTest(ProgramTest):
    def assemble(self, source):
        (self.directory / "count.S").write_text(source)
        subprocess.run(["mipsel-linux-gnu-gcc", "-march=r5900", "-mabi=n32", "-msingle-float", "-mno-abicalls", "-fno-pic", "-G0", "-g",
                        "-nostdlib", "-static", "-Wa,--keep-locals", "-Wl,--discard-none,--build-id=none,-Ttext=0x100000,-Tdata=0x110000,-e_start", "count.S",
                        "-o", "count.elf"], cwd=self.directory, check=True)
        self.configure(self.directory / "count.elf")

    def tool(self, *command):
        return subprocess.run(command, cwd=self.directory, check=True, capture_output=True, text=True).stdout

    def reported(self, *options):
        """The lines that follow the one that says where the CPU paused."""
        messages = self.run_headless(*options, status=3)[1]
        report = messages[messages.index("the CPU paused"):messages.index("...Stop")]
        return [line.removeprefix("tarn-headless: ") for line in report.splitlines()[1:]]

    def expected_counts(self):
        return {number: int(count) for number, line in enumerate(SOURCE.splitlines(), 1)
                for count in re.findall(r"# (\d+)$", line)}

    def test_profile(self):
        self.assemble(SOURCE)
        messages = self.run_headless("--profile=a.out", "--dump-vram=vram.bin", status=3)[1]
        drawn = sum(word != 0 for word in self.local_memory())
        total = sum(self.expected_counts().values())
        self.assertIn(f"after {total} instructions", messages)
        self.run_headless("--profile=b.out", "--trace=/dev/null", status=3)
        self.assertEqual(self.output_file("a.out"), self.output_file("b.out"), "one by one as in runs")

        report = self.tool("callgrind_annotate", "--threshold=100", "--inclusive=yes", "a.out")
        costs = {name: tuple(int(number) for number in re.sub(r"\(.*?\)", "", line).split())
                 for line, name in re.findall(r"^( *\d.*) \S*count.S:(\w+)$", report, re.MULTILINE)}
        self.assertEqual(costs, {"_start": (total, 50, 28), "outer": (46, 0, 0), "work": (22, 0, 0),
                                 "leaf": (8, 0, 0), "draw": (9, 50, 28)})
        self.assertEqual(drawn, 50)
        self.assertEqual({int(line) for line in re.findall(r"(?m)^calls=.*\n(\d+) ", self.output_file("a.out").decode())},
                         {number for number, line in enumerate(SOURCE.splitlines(), 1) if re.search(r"\bj(al)? ", line)})
        source = self.tool("callgrind_annotate", "--threshold=100", "a.out")
        for number, count in self.expected_counts().items():
            text = re.escape(SOURCE.splitlines()[number - 1])
            self.assertRegex(source, rf"(?m)^ *{count or '[.]'} .*{text}$")

    def test_coverage(self):
        self.assemble(SOURCE)
        self.run_headless("--coverage=once.info", status=3)
        self.tool("lcov", "-q", "-a", "once.info", "-a", "once.info", "-o", "twice.info")
        for name, runs in ("once.info", 1), ("twice.info", 2):
            text = self.output_file(name).decode()
            counts = {int(line): int(count) for line, count in re.findall(r"^DA:(\d+),(\d+)$", text, re.MULTILINE)}
            self.assertEqual(counts, {line: count * runs for line, count in self.expected_counts().items()})
            functions = {name: int(count) for count, name in re.findall(r"^FN(?:DA:|A:\d+,)(\d+),(\w+)$", text, re.MULTILINE)}
            self.assertEqual(functions, {"_start": runs, "outer": 3 * runs, "work": 2 * runs, "leaf": 4 * runs,
                                         "unused": 0, "draw": runs})
        self.assertRegex(self.tool("genhtml", "-o", "html", "once.info"), r"functions\.+: 83\.3% \(5 of 6 functions\)")
        self.assertTrue(list((self.directory / "html").rglob("count.S.gcov.html")))

    def test_where_and_how(self):
        self.assemble(SOURCE)
        lines = SOURCE.splitlines()
        at = {name: lines.index(next(line for line in lines if text in line)) + 1
              for name, text in (("exit", "syscall"), ("outer", "jal     outer"), ("first", "jal     work"), ("second", "jal     leaf"),
                                 ("jump", "j       leaf"), ("leaf", LEAF))}
        self.assertEqual(self.reported(), [f"in _start+0x30 (count.S:{at['exit']})",
                                           "the program has ended, with result 5"])
        slot, load = "        nop                             # 4", "        lw      $2, 0x10($0)"
        for leaf, place in (SOURCE.replace(LEAF, load.lstrip()), f"leaf (count.S:{at['leaf']})"), \
                           (SOURCE.replace(LEAF + "\n" + slot, LEAF + "\n" + load), f"leaf+0x4 (count.S:{at['leaf'] + 1})"):
            self.assemble(leaf)
            self.assertEqual(self.reported(), [
                "in " + place, f"called from work+0x8 (count.S:{at['second']})",
                f"called from outer+0x18 (count.S:{at['first']})", f"called from _start+0x4 (count.S:{at['outer']})",
                "the load of 4 bytes at 0x00000010 failed: nothing is there, a null pointer; the nearest is main memory, "
                "0x00100000 to 0x01fffffe"])

        self.assemble(SOURCE.replace("function work\n", "function work\n        lui     $29, 0x7000\n"))
        self.assertEqual([re.sub(" [(].*| of 8.*", "", line) for line in self.reported()],
                         ["in work+0x8", "called from outer+0x18", "the store"], "where the stack has ended")

    def test_what_to_do(self):
        for words, advice, *options in (
                ([0x000001F4], "a division by zero", "--complete-cpu"),
                ([0x3C080010, 0x8D000002], None, "--complete-cpu"),
                ([0x24030005, 0x0000000C], "the kernel call 0x05, RFU005, is not there (arguments 0x0, 0x0, 0x0, 0x0)"),
                ([0x2403001A, 0x0000000C], "the kernel call 0x1a, which has no name, is not there (arguments 0x0, 0x0, 0x0, 0x0)"),
                ([0x3C081200, 0xA1000000], "the store of 1 byte at 0x12000000 failed: only words and doublewords work in "
                 "the registers of the GS, 0x12000000 to 0x12001080"),
                ([0x3C087000, 0xFD000008], "the store of 8 bytes at 0x70000008 failed: nothing is there; the nearest is "
                 "the BIOS image, 0x1fc00000 to 0x1ffffffe"),
                ([0x3C082000, 0xA100FFFE], "the store of 1 byte at 0x1ffffffe failed: only loads of words and bytes work in "
                 "the BIOS image, 0x1fc00000 to 0x1ffffffe"),
                ([0xAC001000], "the store of 4 bytes at 0x00001000 failed: nothing is there; the nearest is main memory, "
                 "0x00100000 to 0x01fffffe"),
                ([0x00000027], "the complete processor has this instruction: General:Complete_cpu = 1, or "
                 "--complete-cpu"),
                ([0x3C08E000, 0x01000008, 0],
                 "there is no code outside main memory: a wrong function pointer or return address")):
            with self.subTest(advice):
                program = self.directory / "words.elf"
                program.write_bytes(elf(words))
                self.configure(program)
                self.assertEqual(self.reported(*options), [advice] if advice else [])
