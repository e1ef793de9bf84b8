"""What packagers do: a build with their own flags, the source archive, the Debian package unpacked and used."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from tarn_programs import BUILD

SOURCE = Path(__file__).resolve().parents[2]
MAN_PAGES = sorted((SOURCE / "docs" / "man").glob("*.1"))


class ManPagesTest(unittest.TestCase):
    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_they_are_well_formed(self):
        for page in MAN_PAGES:
            result = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", page], capture_output=True, text=True,
                                    check=True)
            self.assertEqual(result.stderr, "", page)


class SourcesTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="tarn-test-")
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)

    def configure(self, source, *options):
        return subprocess.run(["cmake", "-S", source, "-B", self.directory / "build", "-DTARN_TESTS=OFF",
                               "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", *options], capture_output=True, text=True,
                              env={**os.environ, "LC_ALL": "C"}, check=False)

    @unittest.skipUnless((SOURCE / ".git").exists(), "the list of files is git's")
    def test_the_archive_is_the_repository_and_keeps_flags(self):
        subprocess.run(["cpack", "--config", BUILD / "CPackSourceConfig.cmake", "-B", self.directory / "pack"],
                       cwd=self.directory, check=True, stdout=subprocess.DEVNULL)
        archive, = (self.directory / "pack").glob("*.tar.xz")
        subprocess.run(["tar", "-xf", archive], cwd=self.directory, check=True)
        source = self.directory / archive.name.removesuffix(".tar.xz")
        files = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=SOURCE,
                               capture_output=True, text=True, check=True).stdout.split("\n")
        packed = {path.relative_to(source).as_posix() for path in source.rglob("*") if path.is_file()}
        self.assertEqual(packed ^ {path for path in files if (SOURCE / path).is_file()}, set())
        result = self.configure(source, "-DCMAKE_CXX_FLAGS=-DPACKAGER", "-DCMAKE_CXX_FLAGS_RELEASE=-O2")
        self.assertEqual(result.returncode, 0, result.stderr)
        commands = (self.directory / "build" / "compile_commands.json").read_text()
        self.assertIn(" -DPACKAGER -O2 ", commands)
        for flag in "-Werror", "-O3", "-falign":
            self.assertNotIn(flag, commands)

    @unittest.skipUnless(os.uname().machine == "x86_64", "takes a compiler that has -m32")
    def test_a_host_that_cannot_work_is_refused(self):
        result = self.configure(SOURCE, "-DCMAKE_C_FLAGS=-m32", "-DCMAKE_CXX_FLAGS=-m32",
                                "-DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY")
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("64-bit little-endian", result.stderr)


@unittest.skipUnless(shutil.which("dpkg-shlibdeps"), "dpkg-dev is not installed")
@unittest.skipIf("TARN_SANITIZE:BOOL=ON" in (BUILD / "CMakeCache.txt").read_text(), "not a build to package")
class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory(prefix="tarn-test-")
        cls.addClassCleanup(directory.cleanup)
        cls.directory = Path(directory.name)
        subprocess.run(["cpack", "-G", "DEB", "--config", BUILD / "CPackConfig.cmake", "-B", cls.directory / "pack"],
                       cwd=cls.directory, check=True, stdout=subprocess.DEVNULL)
        cls.package, = (cls.directory / "pack").glob("*.deb")
        subprocess.run(["dpkg-deb", "-x", cls.package, cls.directory / "root"], check=True)
        cls.usr = cls.directory / "root" / "usr"

    def run_program(self, name, *arguments, directory=None, status=0):
        result = subprocess.run([self.usr / "bin" / name, *arguments], cwd=directory or self.directory,
                                capture_output=True, encoding="latin-1", timeout=120, check=False)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return result.stdout + result.stderr

    def test_contents(self):
        files = {str(path.relative_to(self.usr)) for path in self.usr.rglob("*") if path.is_file()}
        expected = {"bin/tarn", "share/applications/tarn.desktop", "share/doc/tarn/copyright",
                    "share/tarn/guest/lib/tarn.ld", "share/doc/tarn/examples/picture/main.c",
                    "share/doc/tarn/changelog.gz", "share/icons/hicolor/scalable/apps/tarn.svg",
                    *(f"share/man/man1/{page.name}.gz" for page in MAN_PAGES)}
        self.assertLessEqual(expected, files)
        self.assertEqual([path for path in files if path.endswith((".a", ".o", ".unchecked", ".py"))], [])
        depends = subprocess.run(["dpkg-deb", "-f", self.package, "Depends"], capture_output=True, text=True,
                                 check=True).stdout
        for library in "libsdl1.2debian", "libiniparser", "libc6":
            self.assertIn(library, depends)

    @unittest.skipUnless(shutil.which("lintian"), "lintian is not installed")
    def test_lintian_has_nothing_to_say(self):
        result = subprocess.run(["lintian", "--allow-root", "--fail-on=error,warning", self.package],
                                capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def test_a_directory_is_prepared(self):
        self.assertIn("stand-in", self.run_program("tarn-setup", "demo"))
        demo = self.directory / "demo"
        self.assertTrue((demo / "data" / "font_1.bmp").exists())
        self.run_program("tarn-headless", "--frames", "2", directory=demo)
        # What is there stays, but for the program when one is named.
        (demo / "bios" / "scph10000.bin").write_bytes(b"mine")
        settings = (demo / "tarn.ini").read_text().replace("Width = 320", "Width = 640")
        (demo / "tarn.ini").write_text(settings)
        self.assertEqual(self.run_program("tarn-setup", ".", directory=demo), "")
        self.assertEqual((demo / "tarn.ini").read_text(), settings)
        odd = self.directory / "a & b#1|2.elf"
        odd.write_bytes((self.usr / "share/tarn/guest/kernel.elf").read_bytes())
        self.assertEqual(self.run_program("tarn-setup", "demo", odd), "")
        self.assertIn("Width = 640", (demo / "tarn.ini").read_text())
        self.assertEqual((demo / "bios" / "scph10000.bin").read_bytes(), b"mine")
        self.assertIn("(SYSCALL)", self.run_program("tarn-headless", directory=demo, status=3))
        for name in 'quote".elf', "semi;colon.elf", "long" * 60 + ".elf":
            (self.directory / name).touch()
            self.assertIn("cannot hold", self.run_program("tarn-setup", "refused", name, status=1))
        self.assertIn("usage:", self.run_program("tarn-setup", "--walk", status=2))
        for arguments, complaint in ((odd,), "tarn-setup DIRECTORY"), (("refused", "/bin/sh"), "not a program for"):
            self.assertIn(complaint, self.run_program("tarn-setup", *arguments, status=1))
        self.assertFalse((self.directory / "refused").exists())

    def test_the_check_comes_with_the_installed_library(self):
        (self.directory / "bad.c").write_text("int main(void) { __asm__(\"nor $2, $3, $4\"); return 0; }\n")
        self.run_program("tarn-guest-build", "bad.elf", "bad.c", status=1)
        self.assertFalse((self.directory / "bad.elf").exists())
