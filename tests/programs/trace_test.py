"""The trace of a short program, line for line."""

from tarn_programs import ProgramTest

REGISTERS = ("r0 at v0 v1 a0 a1 a2 a3 t0 t1 t2 t3 t4 t5 t6 t7 s0 s1 s2 s3 s4 s5 s6 s7 t8 t9 k0 k1 "
             "gp sp s8 ra hi lo").split()

# What is printed for each instruction: its line, and the registers that differ in the dump after it. None
# stands for a line without a dump: a branch that is taken prints its own at once, then its delay slot
# prints, and then the branch prints the delay slot's line once more.
EXPECTED = [
    ("00100000: lui t0,  10", {"t0": 0x00100000}),
    ("00100004: addiu t1,r0,fffe", {"t1": 0xFFFFFFFFFFFFFFFE}),
    ("00100008: beq r0,r0,100014", None),
    ("0010000c: sw t1, 400(t0)", {}),
    ("0010000c: sw t1, 400(t0)", {}),
    ("00100014: bnel r0,r0,100024", {}),
    ("0010001c: mult t3,t1,t1", {"t3": 4, "lo": 4}),
    ("0010001c: mult t3,t1,t1", {}),  # DI writes no line: the one before it appears again
    ("00100024: fp3 = 00000000 ", {}),  # what the register held before the load
    ("00100028: addiu v1,r0,   4", {"v1": 4}),
    ("00100028: addiu v1,r0,   4", {}),  # SYSCALL writes no line either
]


def expected_trace():
    values = dict.fromkeys(REGISTERS, 0) | {"gp": 0x81F80000, "sp": 0x81F00000}
    lines = []
    for line, changes in EXPECTED:
        lines.append(line)
        if changes is not None:
            values |= changes
            lines += [f"{name} : {values[name]:016x}" for name in REGISTERS]
    return lines


class TraceTest(ProgramTest):
    def test_every_line(self):
        self.configure("trace")
        _, messages = self.run_headless("--trace", "trace.txt", status=3)
        trace = self.output_file("trace.txt").decode()
        self.assertTrue(trace.endswith("\n"))
        self.assertEqual(trace.split("\n")[:-1], expected_trace())
        self.assertIn("Stop at PC = 0x0010002c after 10 instructions", messages)

    def test_stopped_cpu_is_reported(self):
        self.configure("trace")
        _, messages = self.run_headless(status=3)
        self.assertRegex(messages, "(?m)^.*0010002c.*0000000c.*SYSCALL")

    def test_step_limit(self):
        self.configure("trace")
        _, messages = self.run_headless("--steps", "3", status=0)
        # The third step is a branch that takes its delay slot along.
        self.assertIn("Stop at PC = 0x00100014 after 4 instructions", messages)
