"""Going back: the session of docs/debugging.md with the real gdb, its other commands, reports and saved states."""

import random
import re

from debugged import Client, SessionTest, withGdb
from tarn_programs import SOURCE

PAGE = (SOURCE / "docs" / "debugging.md").read_text()
PROGRAM = re.search(r"<!-- file: wild.c -->\n```c\n(.*?)```", PAGE, re.DOTALL).group(1)
SESSION = [line for block in re.findall(r"<!-- session -->\n```\n(.*?)```", PAGE, re.DOTALL)
           for line in block.splitlines()]


class ReverseTest(SessionTest):
    """Tests on the program of the page."""

    def setUp(self):
        super().setUp()
        result = self.build({"wild.c": PROGRAM}, "-g")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.program = self.directory / "program.elf"
        self.configure(self.program)

    @withGdb
    def test_the_session_of_the_page(self):
        self.start(self.program)
        output = self.gdb(self.program, "set confirm off", *[line[6:] for line in SESSION if line.startswith("(gdb) ")],
                          "kill")
        self.expect(output, *[re.sub(r"0x[0-9a-f]{8}", "0x[0-9a-f]{8}", re.escape(line))
                              for line in SESSION if not line.startswith("(gdb) ")])
        self.end(0)

    @withGdb
    def test_every_command_in_both_directions(self):
        self.start(self.program)
        output = self.gdb(
            self.program, "set confirm off", "reverse-stepi", "break walk", "continue", "continue", "reverse-continue",
            "break remember", "continue", "continue", "reverse-finish", "p i", "reverse-step", "reverse-next",
            "delete", "rwatch player.lives", "continue", "reverse-continue", "set var player.lives = 9",
            "reverse-stepi", "continue", "delete", "continue", "kill")
        beginning = "No more reverse-execution history|Reached end of recorded history"  # before gdb 16, and since
        self.expect(output, beginning, "Breakpoint 1, walk .*=6", "Breakpoint 1, walk .*=3",
                    "Breakpoint 1, walk .*=6", "Breakpoint 2, remember .*=0", "Breakpoint 2, remember .*=1",
                    "^21.*remember", r"\$1 = 1", r"^20\t", r"^19\t", "watchpoint 3", r"^Value = 5\n0x(\w+) in main",
                    r"^Value = 5\n0x(\w+) in main", beginning, "^Value = 9", "SIGSYS", "killed")
        self.end(0)

    def test_monitor_commands(self):
        self.start(self.program)
        client = Client(self.port)

        def monitor(command):
            return bytes.fromhex(client.ask(b"qRcmd," + command.encode().hex().encode()).decode()).decode()

        self.assertIn("monitor goto STEP", monitor("help"))
        self.assertEqual(client.ask(b"c"), b"S0c")
        for command, pattern in (
                ("step", r"step \d+, vertical blank 1, PC 0x[0-9a-f]{8} _start"),
                ("last-write player+0x20", r"remember\+0xc \(wild.c:13\): 0x00000003 -> 0x00000005$"),
                ("last-write 10008000 4", r"no store"),
                ("history 2", r"^\d+  .*\n\d+  _start.*SYSCALL.* \(paused\)$"),
                ("goto 10", r"step 10, vertical blank 0"),
                ("frame 1", r"step 28658, vertical blank 1, .* waitSteps"),
                ("frame 2", "no such"), ("goto 99999999", "history goes from step 0 to"), ("goto x", "a number is missing"),
                ("picture there.bmp", "written"), ("last-write nowhere", "an address"),
                ("last-write player 0", "1 to 65536 bytes are"), ("last-write player 65537", "1 to 65536 bytes are")):
            self.assertRegex(monitor(command), re.compile(pattern, re.MULTILINE))
        self.assertTrue(self.output_file("there.bmp").startswith(b"BM"))
        self.assertRegex(monitor("step"), "step 28658,")
        self.assertEqual(client.ask(b"c"), b"S0c")
        address, store = re.search(r"0x(\w+): last store at step (\d+)", monitor("last-write player+0x20")).groups()
        point = f"2,{address},4".encode()
        self.assertEqual((client.ask(b"Z" + point), client.ask(b"bc")), (b"OK", f"T05watch:{address};".encode()))
        self.assertIn(f"step {int(store) + 1},", monitor("step"), "behind the store")
        client.ask(b"z" + point)
        self.assertEqual(client.ask(b"bc"), b"T05replaylog:begin;")
        self.assertEqual(client.ask(b"bs"), b"T05replaylog:begin;")
        client.send(b"$k#6b")
        client.close()
        self.end(0)

    def test_reports_without_a_debugger(self):
        _, messages = self.run_headless("--history", "3", "--last-write", "player+0x20", status=3)
        self.assertRegex(messages, r"\n\d+  _start\+0x\w+ \(start.S:\d+\)  .*SYSCALL.*\(paused\)\n")
        self.assertRegex(messages, r"last store at step \d+, PC 0x\w+ remember\+0xc \(wild.c:13\): 0x00000003 -> 0x00000005\n")
        for watched, status, message in (("100000:0", 2, "1 to 65536 bytes"), ("nothing", 1, "neither an address nor"),
                                         ("1000x", 1, "neither an address nor")):
            _, messages = self.run_headless("--last-write", watched, status=status)
            self.assertIn(message, messages)

    def test_a_run_that_is_cut_is_the_same(self):
        outputs = "--trace", "trace.txt", "--picture", "end.bmp", "--dump-vram", "vram.bin", "--registers"

        def ended(*options):
            registers, _ = self.run_headless(*options, *outputs, status=0)
            self.assertIn("r0 : ", registers)
            return (registers, self.output_file("end.bmp"), self.output_file("vram.bin")), self.output_file("trace.txt")

        self.configure("picture", video="Width=320\nHeight=240\nBpp=32")
        self.run_headless("--frames", "1", "--save-state", "first.state", status=0)
        whole, trace = ended("--load-state", "first.state", "--steps", "32000")
        for cut in random.Random(1).sample(range(28700, 32000), 3):
            _, before = ended("--load-state", "first.state", "--steps", str(cut), "--save-state", "cut.state")
            end, after = ended("--load-state", "cut.state", "--steps", "32000")
            self.assertEqual(end, whole, cut)
            self.assertEqual(before + after, trace, cut)

        state = self.output_file("cut.state")
        self.configure("cube")
        for contents, reason in ((state, "of another program"), (state[:100], "of another program"), (b"", "not a saved"),
                                 (b"x" * 100, "not a saved"), (state[:8] + b"\7" + state[9:], "another version")):
            (self.directory / "bad.state").write_bytes(contents)
            _, messages = self.run_headless("--load-state", "bad.state", status=1)
            self.assertIn(reason, messages)
        _, messages = self.run_headless("--load-state", "no.state", status=1)
        self.assertIn("No such file", messages)
