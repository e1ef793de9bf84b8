"""What a program prints."""

from tarn_programs import ProgramTest

PROGRAM = """\
#include "tarn_guest.h"
int main(void) {
    print("numbers: ");
    static const s32 numbers[] = {0, 7, -1, 2147483647, -2147483647 - 1};
    for (u32 i = 0; i < 5; i++, print(" "))
        printNumber(numbers[i]);
    printHex(0x0123ABCD);
    print("\\n\\nlast");
    return 0x107;
}
"""


class ConsoleTest(ProgramTest):
    def test_print(self):
        built = self.build({"main.c": PROGRAM})
        self.assertEqual(built.returncode, 0, built.stderr)
        self.configure(self.directory / "program.elf", general="Console=1")
        self.assertEqual(self.run_headless("--exit-status", status=7)[0],
                         "numbers: 0 7 -1 2147483647 -2147483648 0123abcd\n\nlast")
        self.configure(self.directory / "program.elf")
        self.assertIn("DMA Adress Non-Impl.  1000f180 h (i:", self.run_headless(status=3)[0])
