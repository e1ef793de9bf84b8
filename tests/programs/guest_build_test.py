"""Programs as users build them, with tarn-guest-build: what comes out runs and is right."""

import re
import subprocess

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

# Long and odd ways between the blanks: the answers come at the same distance from each.
BLANKS = """
#include "tarn_guest.h"
int main(void) {
    u32 at[4];
    for (u32 i = 0; i < 4; i++) {
        waitFrame();
        at[i] = stepCount();
        waitSteps(i * 20011);
    }
    for (u32 i = 1; i < 4; i++)
        if ((at[i] - at[0]) % stepsPerFrame != 0)
            return -1;
    return (int)at[0];
}
"""

# What compiles into calls of the library, or of nothing: the line of the first check that fails, or 0.
ORDINARY = r"""
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
typedef long long ll;
typedef unsigned long long ull;
#define CHECK(x) do { if (!(x)) exit(__LINE__); } while (0)
volatile int vi = -7, vj = 3;
volatile unsigned vu = 4000000000u;
volatile ll vl = -1234567890123456789ll, vm = 987654321;
volatile ull vul = 0xfedcba9876543210ull;
volatile float vf = 2.5f, vg = -3.75f;
static int nested(int n) {
    int add(int x) { return x + n; }
    int (*volatile p)(int) = add;
    return p(5);
}
int main(void) {
    CHECK(vi / vj == -2 && vi % vj == -1 && vu / 7 == 571428571 && ~vi == 6);
    CHECK(vl / vm == -1249999988ll && vl % vm == -1234567890123456789ll % 987654321);
    CHECK(vul / (ull)vm == 0xfedcba9876543210ull / 987654321u && vl * vm == (ll)((ull)vl * (ull)vm));
    CHECK((ull)vu * vu == 16000000000000000000ull && (vul >> vj) == 0x1fdb97530eca8642ull);
    CHECK((vl >> vj) == -154320986265432099ll && vl < vm && (vul << vj) == 0xf6e5d4c3b2a19080ull);
    __int128 wide = (__int128)vl * vm;
    CHECK((ll)(wide >> 64) == -66099812 && (ll)(wide / vm) == vl && (int)(wide % 1000) == -269);
    CHECK((int)vf == 2 && (int)vg == -3 && (ll)vg == -3 && (ull)vf == 2 && (unsigned)vf == 2);
    CHECK((float)vu == 4000000000.0f && (float)vi == -7.0f && (float)vl < -1.2e18f && (float)vul > 1.8e19f);
    CHECK(vf >= 2.5f && vf <= 2.5f && !(vf < vg) && vf * vg == -9.375f && __builtin_sqrtf(vf * vf) == 2.5f);
    CHECK(__builtin_popcount(vu) == 13 && __builtin_clz(vj) == 30 && __builtin_ctz(vu) == 11);
    CHECK(__builtin_clzll(vul) == 0 && __builtin_ctzll(vul) == 4 && __builtin_popcountll(vul) == 32);
    int overflown;
    CHECK(__builtin_add_overflow(0x7fffffff, vj, &overflown) && nested(vj) == 8);
    char text[64] = "hello";
    memmove(text + 1, text, 6);
    CHECK(!strcmp(text, "hhello") && strlen(text) == 6 && !memcmp(text, "hhe", 3));
    snprintf(text, sizeof text, "%03d|%s|%c|%llx|%6.2f|%-4d|", vi, "ok", 65, vul, vg, vj);
    CHECK(!strcmp(text, "-07|ok|A|fedcba9876543210| -3.75|3   |"));
    snprintf(text, sizeof text, "%hhd|%hx|%o|%#o|%#x|%#X|%#x|%#.0f", 0x1ff, 0x12345, 8, 8, 0xabc, 255, 0, vg);
    CHECK(!strcmp(text, "-1|2345|10|010|0xabc|0XFF|0|-4."));
    snprintf(text, sizeof text, "%.3d|%06.2d|%-*d|%*d|%.*s|%+ d|%.0d|%#6x|%lld", 7, -5, 4, 1, -3, 2, 2, "long", 6, 0,
             0xa, vl);
    CHECK(!strcmp(text, "007|   -05|1   |2  |lo|+6||   0xa|-1234567890123456789"));
    char* blocks[20];
    for (int i = 0; i < 20; i++)
        blocks[i] = memset(malloc(100 * i + 1), i, 100 * i + 1);
    for (int i = 0; i < 20; i += 2)
        free(blocks[i]);
    char* again = malloc(150);
    for (int i = 1; i < 20; i += 2)
        CHECK(blocks[i][0] == i && blocks[i][100 * i] == i);
    CHECK(again < blocks[19] && malloc(0x7f000000) == 0);
    return 0;
}
"""

# A static object, a virtual function, a template, a lambda, new, a header of the library.
PLUSPLUS = """
#include "tarn_guest.h"
#include <array>
struct Shape { virtual ~Shape() {} virtual int area() const = 0; };
struct Square : Shape { int side; Square(int s) : side(s) {} int area() const override { return side * side; } };
static Square five(5);
template <typename T> T twice(T x) { return x + x; }
int main() {
    Shape* shape = new Square(4);
    std::array<int, 2> areas{shape->area(), five.area()};
    auto all = [&](int more) { return areas[0] + areas[1] + more; };
    delete shape;
    return all(twice(1));
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

    def test_the_complete_processor(self):
        for level in "-O0", "-O2", "-Os":
            with self.subTest(level):
                self.assertEqual(self.run_program({"main.c": ORDINARY}, level, "-w", complete=True), 0)
        if subprocess.run(["mipsel-linux-gnu-gcc", "-print-prog-name=cc1plus"], capture_output=True, text=True,
                          check=True).stdout.startswith("/"):
            self.assertEqual(self.run_program({"main.cc": PLUSPLUS}, complete=True), 43)
        self.assertEqual(self.run_program({"main.c": BLANKS}, complete=True), 28660)  # the first comes with 28658

    def test_what_is_refused_and_why(self):
        complement = "volatile int x, y;\nint main(void) {\n    y = ~x;\n    return 0;\n}"
        for text, options, complete, message in (
                ("double half(double x) { return x / 2; } int main(void) { return half(3.0f) > 1; }", ["-O0"], True,
                 "double is not there"),
                ("long double twice(long double x) { return x * 2; } int main(void) { return twice(1) > 1; }", [], True,
                 "main.c: long double is not there"),
                ("int fopen(const char*); int main(void) { return fopen(\"x\"); }", [], True,
                 re.compile("main.c:1:.*undefined reference to `fopen'")),
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
                self.assertRegex(build.stderr, message if isinstance(message, re.Pattern) else re.escape(message))
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
