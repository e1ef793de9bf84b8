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

    def test_what_is_refused_and_why(self):
        complement = "volatile int x, y;\nint main(void) {\n    y = ~x;\n    return 0;\n}"
        for text, options, complete, message in (
                ("double half(double x) { return x / 2; } int main(void) { return half(3.0f) > 1; }", ["-O0"], True,
                 "double is not there"),
                ("int fopen(const char*); int main(void) { return fopen(\"x\"); }", [], True,
                 "main.c:1: undefined reference to `fopen'"),
                ("_Thread_local int t; int main(void) { return t; }", [], True, "thread-local variables"),
                ("#include <unistd.h>\nint main(void) { return 0; }", [], True, "unistd.h: No such file"),
                ("#include <stdio.h>\nint main(void) { return 0; }", [], False, "needs --complete-cpu"),
                ("int main(void) { return 0; }", ["further.cc"], False, "C++ needs --complete-cpu"),
                (complement, [], False, "main.c:3: "),
                (complement, [], False, "NOR stops"),
                ("int main(void) { return 0 }", [], True, "main.c:1:")):
            with self.subTest(message):
                build = self.build({"main.c": text}, *options, complete=complete)
                self.assertEqual(build.returncode, 1, build.stderr)
                self.assertIn(message, build.stderr)
                self.assertFalse((self.directory / "program.elf").exists())

    def test_what_is_built(self):
        headers = "".join(f"#include <{name}.h>\n" for name in ("stdint", "stddef", "stdbool", "stdarg", "limits",
                                                                "float", "string"))
        text = headers + "int main(void) { int unused; return CHAR_BIT + (int)sizeof(uint64_t); }"
        for complete in False, True:
            build = self.build({"main.c": text}, "-g", complete=complete)
            self.assertEqual(build.returncode, 0, build.stderr)
            self.assertIn("unused variable", build.stderr)
            self.assertIn(b" -Og", (self.directory / "program.elf").read_bytes())  # gdb sees variables
            self.assertIn(str(self.directory).encode(), (self.directory / "program.elf").read_bytes())  # and sources
