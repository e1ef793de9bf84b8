"""What the tests of debugging share: a machine that waits for a debugger, a small client, sessions of gdb."""

import re
import shutil
import socket
import subprocess
import unittest

from tarn_programs import BUILD, ProgramTest, guest

withGdb = unittest.skipUnless(shutil.which("gdb-multiarch"), "gdb-multiarch is not installed")


def packet(payload):
    return b"$" + payload + b"#%02x" % (sum(payload) & 0xFF)


class Client:
    """A debugger of few words: sends bytes, reads replies."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=30)
        self.received = b""

    def close(self):
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def reply(self):
        while not (match := re.search(rb"\$([^#]*)#..", self.received)):
            data = self.socket.recv(4096)
            if not data:
                raise ConnectionError(self.received)
            self.received += data
        self.acknowledgements = self.received[:match.start()]
        self.received = self.received[match.end():]
        return match.group(1)

    def ask(self, payload):
        self.send(packet(payload))
        return self.reply()


class DebuggedTest(ProgramTest):
    def start(self, program, *options):
        """Starts tarn-headless waiting for a debugger; its port is in self.port."""
        self.configure(program)
        self.machine = subprocess.Popen([BUILD / "tarn-headless", "--gdb", "0", *options], cwd=self.directory,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        self.addCleanup(self.machine.stderr.close)
        self.addCleanup(self.machine.wait)
        self.addCleanup(self.machine.kill)
        line = ""
        while not (match := re.search(r"debugger on 127\.0\.0\.1:(\d+)", line)):
            line = self.machine.stderr.readline()
            self.assertTrue(line, "no port")
        self.port = int(match.group(1))

    def end(self, status):
        """Waits for the end of tarn-headless and returns what else it said."""
        _, messages = self.machine.communicate(timeout=60)
        self.assertEqual(self.machine.returncode, status, messages)
        return messages


class SessionTest(DebuggedTest):
    def gdb(self, program, *commands):
        """The output of gdb-multiarch for the commands, given once it is connected."""
        setup = f"file {guest(program) if isinstance(program, str) else program}", f"target remote 127.0.0.1:{self.port}"
        (self.directory / "commands").write_text("\n".join([*setup, *commands]))
        return subprocess.run(["gdb-multiarch", "-nx", "-batch", "-x", "commands"], cwd=self.directory,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=240, check=False).stdout

    def expect(self, output, *patterns):
        """Each pattern must be found behind the one before."""
        position = 0
        for pattern in patterns:
            match = re.compile(pattern, re.MULTILINE).search(output, position)
            self.assertTrue(match, f"no '{pattern}' from character {position} on in:\n{output}")
            position = match.end()
