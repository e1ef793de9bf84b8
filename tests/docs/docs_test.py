"""The documents: their recipes run, and what they list is what the code has.

A block of shell commands is preceded by a comment, <!-- recipe --> or <!-- recipe: FILE -->: the commands run
here, with Tarn installed and in one shell a document, or the named test or script does what they say. A block of
source is written to the file that its comment <!-- file: NAME --> names before the recipes run. The lines of a block
of text after <!-- output: NAME --> are then in that file, but for their numbers.
"""

import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from tarn_programs import BUILD, read_bmp

SOURCE = Path(__file__).resolve().parents[2]
PAGES = {path.relative_to(SOURCE).as_posix(): path.read_text()
         for path in sorted([*SOURCE.glob("*.md"), *SOURCE.glob("docs/*.md")])}
README, GUESTS = PAGES["README.md"], PAGES["docs/guest-programming.md"]
MAN = {path.name: path.read_text().replace("\\-", "-") for path in sorted((SOURCE / "docs/man").glob("*.1"))}
TARGETS = "src", "tests", "docs", "scripts", "guest", "data", "fuzz", "bench", "cmake"


def source(path):
    return (SOURCE / path).read_text()


def rows(page, head):
    """The rows of the table that begins with this line, as lists of cells."""
    start = page.index(head + "\n")
    table = page[start:page.index("\n\n", start)].splitlines()[2:]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in table]


def blocks(page, language):
    """(comment before it, if any, and text) of the fenced blocks of one language."""
    return re.findall(rf"(?:^<!-- ([^\n]*) -->\n)?^```{language}\n(.*?)^```", page, re.MULTILINE | re.DOTALL)


class RecipesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory(prefix="tarn-test-")
        cls.addClassCleanup(directory.cleanup)
        cls.directory = Path(directory.name)
        subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.directory / "usr"], check=True,
                       stdout=subprocess.DEVNULL)

    def run_recipes(self, name):
        """Types in what the page says, and returns where."""
        place = self.directory / name.replace("/", "-")
        place.mkdir()
        for comment, text in blocks(PAGES[name], "c"):
            if comment.startswith("file: "):
                (place / comment[6:]).write_text(text)
        script = f"PATH={self.directory}/usr/bin:$PATH\n" + "".join(
            text for comment, text in blocks(PAGES[name], "sh") if comment == "recipe")
        result = subprocess.run(["sh", "-eux", "-c", script], cwd=place, capture_output=True, text=True, timeout=240,
                                check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        for comment, text in blocks(PAGES[name], "text"):
            output = (place / comment.removeprefix("output: ")).read_text()
            self.assertIn(*(re.sub(r"0x[0-9a-f]+|[0-9a-f]*\d[0-9a-f]*", "N", each) for each in (text, output)))
        return place

    def test_every_recipe_is_run(self):
        for name, page in PAGES.items():
            for comment, text in blocks(page, "sh"):
                self.assertRegex(comment, r"^recipe(: |$)", f"{name}: who runs this?\n{text}")
                self.assertTrue((SOURCE / comment[8:]).exists(), f"{name}: {comment}")

    def test_readme(self):
        place = self.run_recipes("README.md")
        picture = read_bmp((place / "expected.bmp").read_bytes())
        corners = [picture[y][x] for x, y in ((160, 24), (45, 218), (274, 218))]
        self.assertEqual([max(range(3), key=pixel.__getitem__) for pixel in corners], [0, 1, 2])
        self.assertEqual(picture[10][10], (0, 0, 0))
        for output in "trace.txt", "registers.txt", "gs-memory.bin", "gs-memory.png", "triangle.png", "hello.png":
            self.assertGreater((place / output).stat().st_size, 0)
        self.assertEqual((place / "output.txt").read_text(), "The sum is 55.\n")
        self.assertRegex((place / "profile.txt").read_text(), r"(?m)^ *[\d,]+ .*:waitForever$")

    def test_guest_programming(self):
        self.run_recipes("docs/guest-programming.md")


class NamesTest(unittest.TestCase):
    def test_files_exist(self):
        for name, page in PAGES.items():
            for path in re.findall(rf"`((?:{'|'.join(TARGETS)})/[\w./-]+)", page):
                if not re.search(r"/[A-Z]+(_|$|/)", path):  # stands for any name
                    self.assertTrue((SOURCE / path).exists(), f"{name}: {path}")
            for link in re.findall(r"\]\(([\w./-]+)\)", page):
                self.assertTrue((SOURCE / name).parent.joinpath(link).exists(), f"{name}: {link}")

    def test_functions_are_where_the_pages_say(self):
        for name, page in PAGES.items():
            for function, path in re.findall(r"`(\w+)`\s\(`([\w./-]+)`\)", page):
                self.assertTrue(re.search(rf"\b{function}\b", source(path)), f"{name}: {function} in {path}")

    def test_programs(self):
        documented = {row[0].strip("`") for row in rows(README, "| demo program | what it is |")}
        self.assertEqual(documented, {path.parent.name for path in SOURCE.glob("guest/*/main.c")})

    def test_presets(self):
        documented = {row[0].strip("`") for row in rows(PAGES["CONTRIBUTING.md"], "| preset | what for |")}
        self.assertEqual(documented, set(re.findall(r'"name": "(\w+)"', source("CMakePresets.json"))) - {"base"})


class OptionsTest(unittest.TestCase):
    def setUp(self):
        self.usage = subprocess.run([BUILD / "tarn-headless", "--help"], capture_output=True, text=True,
                                    check=True).stdout
        self.options = set(re.findall(r"^  (--[a-z-]+)", self.usage, re.MULTILINE))
        self.assertIn("--steps", self.options)

    def test_lists_are_complete(self):
        manual = MAN["tarn-headless.1"]
        section = manual[manual.index(".SH OPTIONS"):manual.index(".SH DEBUGGING")]
        self.assertEqual(set(re.findall(r"^\.BI? (--[a-z-]+)", section, re.MULTILINE)), self.options)

    def test_no_other_is_used(self):
        for name, page in {**PAGES, **MAN}.items():
            for command in re.findall(r"^tarn-headless.*", page, re.MULTILINE):
                self.assertLessEqual(set(re.findall(r"(?<= )--[a-z-]+", command)), self.options, name)

    def test_exit_statuses(self):
        manual = MAN["tarn-headless.1"]
        self.assertEqual(set(re.findall(r"(\d) (?:when|for)", self.usage)),
                         set(re.findall(r"^\.B (\d)$", manual, re.MULTILINE)))


class KeysTest(unittest.TestCase):
    """Each key has its default in the manual."""

    def test_lists_are_complete(self):
        known = [key for _, key in re.findall(r'\{"(\w+)", "(\w+)"', source("src/shell/configuration_check.cpp"))]
        self.assertEqual(set(known), set(re.findall(r"^(\w+) =", source("data/tarn.ini"), re.MULTILINE)))
        reads = {key: default or "0" for key, default in re.findall(r'\("\w+:(\w+)"(?:, (\d+))?\)',
                                                                   source("src/shell/configuration.cpp"))}
        manual = MAN["tarn.1"][MAN["tarn.1"].index(".SH CONFIGURATION"):MAN["tarn.1"].index(".SH EXIT STATUS")]
        entries = {}
        for head, text in re.findall(r'^\.TP\n\.BR? (.*)\n((?s:.*?))(?=^\.TP|^\.S|\Z)', manual, re.MULTILINE):
            names = re.findall(r"\b[A-Z]\w+", head)
            entries.update(zip(names, re.findall(r"\d+", text[text.find("Default"):])))
        self.assertEqual(entries, {key: reads[key] for key in known if key != "Elf"})


class MachineTest(unittest.TestCase):
    def test_instructions(self):
        lists = source("src/r5900/integer_list.h") + source("src/r5900/fpu_list.h")
        there = set(re.findall(
            r'^    (?:onlyDescribed\()?{\w+, \d+, "(\w+) ?", '
            r'(?!stop}|unsupported}|breakpoint}|Table::|"[^"]*", \w+, stop,)', lists, re.MULTILINE))
        listed = re.findall(r"`(\w+)`", "".join(row[1] for row in rows(GUESTS, "| group | instructions |")))
        self.assertEqual(sorted(listed), sorted(there))
        for page in README, GUESTS:
            self.assertRegex(page, rf"{len(there)}\s+instructions")

    def test_kernel_calls(self):
        calls = re.findall(r"^ +(STOPS|CONTINUES|PUZZLES|WORKS)\((0x..), (\w+)\)", source("src/kernel/syscall_list.h"),
                           re.MULTILINE)
        served = [(number, name) for family, number, name in calls if family != "STOPS"]
        listed = rows(GUESTS, "| call | name | what it does |")
        self.assertEqual([(number, name.strip("`")) for number, name, _ in listed], served)
        self.assertIn(f"{len(served)} calls; the table has the names of {len(calls)}", GUESTS)


if __name__ == "__main__":
    unittest.main()
