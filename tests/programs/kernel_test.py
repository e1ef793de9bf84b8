"""The diagnostics of the program kernel, line for line, and its verdict on the answers of the calls."""

import re
from pathlib import Path

from tarn_programs import ProgramTest

# Without the addresses, but for those among the arguments; of those, only where they are. What is printed whatever
# the flags say is marked with an exclamation mark.
EXPECTED = (Path(__file__).parent / "golden" / "kernel.txt").read_text("latin-1")


class KernelTest(ProgramTest):
    def lines(self, output):
        return re.sub(r"\b(0x)?(00)?10[0-9a-f]{4}\b", r"\1ADDRESS", re.sub("(?m)^0010[0-9a-f]{4} : ", "", output)).splitlines()

    def test_every_call_is_logged(self):
        self.configure("kernel", general="Debug_syscall=1")
        output, _ = self.run_headless(status=3)
        self.assertEqual(self.lines(output), [line.removeprefix("!") for line in EXPECTED.splitlines()])

    def test_all_answers_are_right(self):
        self.configure("kernel")
        output, messages = self.run_headless("--registers", status=3)
        always = [line[1:] for line in EXPECTED.splitlines() if line.startswith("!")]
        self.assertEqual(self.lines(output)[:len(always)], always)
        self.assertRegex(output, r"\ba0 : ?0{16}\b", "kernel counts wrong answers in a0")
        self.assertRegex(messages, "(?m)^.*0010.*0000000c.*SYSCALL", "where it stops")
        for done in ("Init:Copy Program To Memory: Done", "Init:Copy Section To Memory: Done"):
            self.assertIn(done, messages.splitlines())
