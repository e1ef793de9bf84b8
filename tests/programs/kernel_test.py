"""The diagnostics of the program kernel, line for line, and its verdict on the answers of the calls."""

import re

from tarn_programs import ProgramTest

# Without the addresses, but for those among the arguments; of those, only where they are. What is printed whatever
# the flags say is marked with an exclamation mark.
EXPECTED = """\
SYSCALL_RFU060 0x3c 60 
SYSCALL_RFU061 0x3d 61 
SYSCALL_SetGsCrt 0x2 2 
|???
SYSCALL_GsGetIMR 0x70 112 
|???
SYSCALL_GsPutIMR 0x71 113 
|A0	= ff00
SYSCALL_iGsPutIMR 0x8f -113 
SYSCALL_iGsGetIMR 0x90 -112 
SYSCALL_UKN_1 0x9c -100 
|???
SYSCALL_FlushCache 0x64 100 
SYSCALL_CreateSema 0x40 64 
SYSCALL_CreateSema 0x40 64 
SYSCALL_RFU061 0x3d 61 
SYSCALL_RFU061 0x3d 61 
SYSCALL__EnableDmac 0x16 22 
|Channel: 5
SYSCALL__EnableDmac 0x16 22 
|Channel: 5
SYSCALL_AddDmacHandler 0x12 18 
|channel:  5, Address: 0xADDRESS
SYSCALL_sceSifSetDma 0x77 119 
|A0	= ADDRESS, A1 = 2 
SYSCALL_sceSifSetDma 0x77 119 
|A0	= ADDRESS, A1 = 1 
!DMA:Sif_0 : Start
!|DmaHandler Add: ADDRESS
SYSCALL_sceSifSetDma 0x77 119 
|A0	= ADDRESS, A1 = 1 
SYSCALL_sceSifSetDChain 0x78 120 
!|84 
SYSCALL_sceSifSetDChain 0x78 120 
!
!DMA Channel n\xb0 05
!Channel Control register: 184
!Memory address          : 300000
!Quadra-word counter     : 0
!Tag address             : 0
!Assembler Reserved 0    : 0
!Assembler Reserved 1    : 0
!???                     : 0
!|84 
SYSCALL_sceSifGetReg 0x7a 122 
|a0=4
SYSCALL_Exit 0x4 4 
"""

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
