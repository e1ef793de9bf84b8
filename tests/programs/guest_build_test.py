"""Programs as users build them, with tarn-guest-build: what comes out runs and is right."""

from tarn_programs import ProgramTest, result_of

# lessThan() between a comparison and the branch on it: 4 pairs of arguments, 2 bits a pair.
COMPARISONS = """
#include "tarn_guest.h"
static s32 both(f32 a, f32 b, f32 c, f32 d) {
    s32 second = lessThan(c, d);
    return a < b ? second + 2 : second;
}
int main(void) {
    static volatile f32 one = 1.0f, two = 2.0f;
    f32 low = one, high = two;
    s32 result = 0;
    for (s32 i = 0; i < 4; i++)
        result = result * 4 + both(i < 2 ? low : high, i < 2 ? high : low, i & 1 ? low : high, i & 1 ? high : low);
    return result;
}
"""


class GuestBuildTest(ProgramTest):
    def run_program(self, sources, *options, complete=False):
        """The result of main, of a program built from {name: text}."""
        build = self.build(sources, *options, complete=complete)
        self.assertEqual(build.returncode, 0, build.stderr)
        self.configure(self.directory / "program.elf", general="Complete_cpu=1" if complete else "")
        output, _ = self.run_headless("--registers", "--steps", "200000000", status=3)
        return result_of(output)

    def test_comparisons_keep_their_flag(self):
        for level in "-Os", "-O2", "-O3":
            with self.subTest(level):
                self.assertEqual(self.run_program({"main.c": COMPARISONS}, level), 0b10110001)
