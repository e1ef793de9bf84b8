"""The diagnostics of the program kernel, line for line, and its verdict on the answers of the calls."""

import re

from tarn_programs import Elf, ProgramTest, guest

# {name} stands for the address of a call's SYSCALL instruction, {&name} for that of a function or variable. What
# is printed whatever the flags say is marked with an exclamation mark.
EXPECTED = """\
{start0} : SYSCALL_RFU060 0x3c 60 
{start1} : SYSCALL_RFU061 0x3d 61 
{SetGsCrt} : SYSCALL_SetGsCrt 0x2 2 
|???
{GsGetIMR} : SYSCALL_GsGetIMR 0x70 112 
|???
{GsPutIMR} : SYSCALL_GsPutIMR 0x71 113 
|A0	= ff00
{iGsPutIMR} : SYSCALL_iGsPutIMR 0x8f -113 
{iGsGetIMR} : SYSCALL_iGsGetIMR 0x90 -112 
{call9C} : SYSCALL_UKN_1 0x9c -100 
|???
{FlushCache} : SYSCALL_FlushCache 0x64 100 
{CreateSema} : SYSCALL_CreateSema 0x40 64 
{CreateSema} : SYSCALL_CreateSema 0x40 64 
{setupHeap} : SYSCALL_RFU061 0x3d 61 
{setupHeap} : SYSCALL_RFU061 0x3d 61 
{EnableDmac} : SYSCALL__EnableDmac 0x16 22 
|Channel: 5
{EnableDmac} : SYSCALL__EnableDmac 0x16 22 
|Channel: 5
{AddDmacHandler} : SYSCALL_AddDmacHandler 0x12 18 
|channel:  5, Address: 0x{&onSif0}
{sceSifSetDma} : SYSCALL_sceSifSetDma 0x77 119 
|A0	= {&transfers}, A1 = 2 
{sceSifSetDma} : SYSCALL_sceSifSetDma 0x77 119 
|A0	= {&transfers}, A1 = 1 
!DMA:Sif_0 : Start
!|DmaHandler Add: {&onSif0}
{sceSifSetDma} : SYSCALL_sceSifSetDma 0x77 119 
|A0	= {&transfers}, A1 = 1 
{sceSifSetDChain} : SYSCALL_sceSifSetDChain 0x78 120 
!|84 
{sceSifSetDChain} : SYSCALL_sceSifSetDChain 0x78 120 
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
{sceSifGetReg} : SYSCALL_sceSifGetReg 0x7a 122 
|a0=4
{start2} : SYSCALL_Exit 0x4 4 
"""

class KernelTest(ProgramTest):
    def expected(self, logged):
        elf = Elf(guest("kernel"))

        def address(match):
            name = match.group(1)
            if name.startswith("&"):
                # Values of arguments are printed without leading zeros.
                return f"{elf.symbols[name[1:]]:x}" if name == "&transfers" else f"{elf.symbols[name[1:]]:08x}"
            start = re.fullmatch(r"start(\d)", name)
            return f"{elf.system_call('_start', int(start[1])) if start else elf.system_call(name):08x}"

        lines = re.sub(r"\{(&?\w+)\}", address, EXPECTED).splitlines()
        return [line.removeprefix("!") for line in lines if logged or line.startswith("!")]

    def test_every_call_is_logged(self):
        self.configure("kernel", general="Debug_syscall=1")
        output, _ = self.run_headless(status=3)
        self.assertEqual(output.splitlines(), self.expected(logged=True))

    def test_all_answers_are_right(self):
        self.configure("kernel")
        output, messages = self.run_headless("--registers", status=3)
        always = self.expected(logged=False)
        self.assertEqual(output.splitlines()[:len(always)], always)
        self.assertRegex(output, r"\ba0 : ?0{16}\b", "kernel counts wrong answers in a0")
        for done in ("Init:Copy Program To Memory: Done", "Init:Copy Section To Memory: Done"):
            self.assertIn(done, messages.splitlines())
