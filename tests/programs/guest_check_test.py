"""The check of guest programs: what it refuses, and that it says where."""

import subprocess

from tarn_programs import BUILD, ProgramTest, elf

MFC1, SLL = 0x44020800, 0x00021000  # mfc1 v0, fp1; sll v0, v0, 0
CVT_S = 0x46800860  # cvt.s.w fp1, fp1
CLEAR_AND_MOVE = [0x0002103C, 0x0002103E, 0x44820800]  # dsll32 v0, v0, 0; dsrl32; mtc1 v0, fp1


class GuestCheckTest(ProgramTest):
    def check(self, content, *options):
        path = self.directory / "program.elf"
        path.write_bytes(content)
        result = subprocess.run([BUILD / "guest" / "guest-check", *options, path], capture_output=True,
                                text=True, check=False)
        return result.returncode, result.stderr

    def test_faults(self):
        for name, words, fault in (
                ("all is well", [0x24020063, 0, 0x03E00008, 0], None),
                ("NOR", [0, 0x00021027], "00100004: 00021027 NOR stops"),
                ("C.LE.S", [0x46010036], "C_OLE_S stops"),
                ("a product without a destination", [0x00850018], "MULT writes r0"),
                ("a product with one", [0x00851018], None),
                ("a float's bits in a register", [MFC1, 0], "MFC1 converts"),
                ("a float made an integer", [MFC1, SLL], None),
                ("a signed integer made a float", [0x44820800, CVT_S], "CVT_S reads 64 bits"),
                ("an unsigned one", CLEAR_AND_MOVE + [CVT_S], None),
                ("a conversion at the start", [CVT_S], "CVT_S reads 64 bits")):
            with self.subTest(name):
                status, messages = self.check(elf(words))
                self.assertEqual((status, messages == ""), (0, True) if fault is None else (1, False), messages)
                self.assertIn(fault or "", messages)

    def test_every_instruction(self):
        self.assertIn("BC1TL does not occur", self.check(elf([MFC1]), "--every-instruction")[1])

    def test_broken_files(self):
        whole = elf([0])
        for length in range(0, len(whole), 7):
            self.assertEqual(self.check(whole[:length])[0], 1, f"{length} bytes")
        endless = whole[:104] + b"\xff\xff\xff\xff" + whole[108:]  # the section's size
        self.assertIn("the code at 00100000 is cut off", self.check(endless)[1])
