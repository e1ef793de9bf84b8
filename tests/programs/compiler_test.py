"""Random C programs give the same on the host and on the complete processor: a few fixed ones."""

import shutil
import subprocess
import unittest
from pathlib import Path

from tarn_programs import BUILD, SOURCE


@unittest.skipUnless(shutil.which("csmith") and Path("/usr/include/csmith").exists(), "csmith is not installed")
class CompilerTest(unittest.TestCase):
    def test_fixed_seeds(self):
        check = subprocess.run([SOURCE / "scripts" / "check-compiler", "--first", "4", "--count", "4", "--build", BUILD],
                               capture_output=True, text=True, check=False)
        self.assertEqual(check.returncode, 0, check.stdout + check.stderr)
        self.assertRegex(check.stdout, "^[1-4] programs give the same")
