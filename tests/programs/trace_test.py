"""The trace of a short program, line for line."""

from tarn_programs import ProgramTest

REGISTERS = ("r0 at v0 v1 a0 a1 a2 a3 t0 t1 t2 t3 t4 t5 t6 t7 s0 s1 s2 s3 s4 s5 s6 s7 t8 t9 k0 k1 "
             "gp sp s8 ra hi lo").split()

# What is printed for each instruction: its line, and the registers that differ in the dump after it. None
# stands for a line without a dump: a branch that is taken prints its own at once, then its delay slot
# prints, and then the branch prints the delay slot's line once more.
EXPECTED = [
    ("00100000: lui t0,  10", {"t0": 0x00100000}),
    ("00100004: ori\tt0,t0, 200", {"t0": 0x00100200}),
    ("00100008: addiu t1,r0,fffe", {"t1": 0xFFFFFFFFFFFFFFFE}),
    ("0010000c: sw t1,   4(t0)", {}),
    ("00100010: lwu t2,   4(t0)", {"t2": 0x00000000FFFFFFFE}),
    ("00100014: beq r0,r0,100020", None),
    ("00100018: nop", {}),
    ("00100018: nop", {}),
    ("00100020: bnel r0,r0,100038", {}),
    ("00100028: mult t3,t1,t1", {"t3": 4, "lo": 4}),
    ("0010002c: jal   100038", None),
    ("00100030: addu t4,t1,t0", {"t4": 0x001001FE, "ra": 0x00100034}),
    ("00100030: addu t4,t1,t0", {}),
    ("00100030: addu t4,t1,t0", {}),  # DI writes no line: the one before it appears again
    ("0010003c: mfc0 t5,PRiD,0", {"t5": 0x2E20}),
    ("00100040: dsll32 t6,t5,   4", {"t6": 0x0002E20000000000}),
    ("00100044: mtc1 t3,fp1", {}),
    ("00100048: add_s fp2,fp1,fp1", {}),
    ("0010004c: fp3 = 00000000 ", {}),  # what the register held before the load
    ("00100050: sltiu v0,t0,       8", {}),
    ("00100054: sll v0,t1,3", {"v0": 0xFFFFFFFFFFFFFFF0}),
    ("00100058: addiu v1,r0,   4", {"v1": 4}),
    ("00100058: addiu v1,r0,   4", {}),  # SYSCALL writes no line either
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
        self.assertIn("Stop at PC = 0x0010005c after 21 instructions", messages)

    def test_stopped_cpu_is_reported(self):
        self.configure("trace")
        _, messages = self.run_headless(status=3)
        report = [line for line in messages.splitlines() if "0000000c" in line]
        self.assertEqual(len(report), 1, messages)
        self.assertIn("0010005c", report[0])
        self.assertIn("SYSCALL", report[0])

    def test_step_limit(self):
        self.configure("trace")
        _, messages = self.run_headless("--steps", "6", status=0)
        # The sixth step is a branch that takes its delay slot along.
        self.assertIn("Stop at PC = 0x00100020 after 7 instructions", messages)
