"""Steps a second of whole runs of tarn-headless: plain, traced, and under a debugger."""

import os
import re
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

NO_PICTURE = "-D", "Video:Width=0", "-D", "Video:Height=0"
PICTURE = "-D", "Video:Width=640", "-D", "Video:Height=448"
ELSEWHERE = 0x00180000  # an address that the integer loop never comes to

# So many steps that the 40 ms before the first do not count.
RUNS = {  # name: program, steps, options
    "plain": ("loop", 400_000_000, NO_PICTURE),
    "640x448": ("loop", 400_000_000, PICTURE),
    "bounce": ("bounce", 50_000_000, PICTURE),
    "cube": ("cube", 50_000_000, PICTURE),
    "trace": ("cube", 4_000_000, (*NO_PICTURE, "--trace=/dev/null")),
    "trace-changes": ("cube", 4_000_000, (*NO_PICTURE, "--trace-changes=/dev/null")),
}
DEBUGGED = {  # name: steps, packets ahead of "continue"
    "continue": (400_000_000, ()),
    "continue, breakpoint": (400_000_000, (f"Z0,{ELSEWHERE:x},4",)),
    "continue, watchpoint": (100_000_000, (f"Z2,{ELSEWHERE:x},4",)),
}
SINGLE_STEPS = 2000


def processor_time(process):
    _, status, usage = os.wait4(process.pid, 0)
    if os.waitstatus_to_exitcode(status) != 0:
        sys.exit(f"{process.args[0]} failed")
    return usage.ru_utime + usage.ru_stime


class Debugger:
    """A client of few words, and the machine that it debugs."""

    def __init__(self, command):
        self.process = subprocess.Popen([*command, "--gdb=0"], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        line = b"\n"
        while line and not (match := re.search(rb"debugger on 127\.0\.0\.1:(\d+)", line)):
            line = self.process.stderr.readline()
        if not line:
            sys.exit("there is no port for a debugger")
        self.socket = socket.create_connection(("127.0.0.1", int(match.group(1))))
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.ask("QStartNoAckMode")
        self.socket.sendall(b"+")

    def ask(self, payload):
        """Sends a packet and waits for the reply."""
        self.socket.sendall(f"${payload}#{sum(payload.encode()) & 0xFF:02x}".encode())
        received = b""
        while not re.search(rb"\$[^#]*#..", received):
            data = self.socket.recv(4096)
            if not data:
                sys.exit("the debugged program is gone")
            received += data

    def end(self):
        """The processor time of the machine, which has come to its limit or is ended here."""
        self.socket.close()
        self.process.stderr.close()
        return processor_time(self.process)


def rates_of_one_round(command):
    """Steps a second of each run; `command` makes the command line of a program."""
    rates = {}
    for name, (program, steps, options) in RUNS.items():
        process = subprocess.Popen([*command(program), f"--steps={steps}", *options], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        rates[name] = steps / processor_time(process)
    for name, (steps, points) in DEBUGGED.items():
        debugger = Debugger([*command("loop"), f"--steps={steps}", *NO_PICTURE])
        for point in points:
            debugger.ask(point)
        debugger.ask("c")
        rates[name] = steps / debugger.end()
    debugger = Debugger([*command("loop"), f"--steps={SINGLE_STEPS}", *NO_PICTURE])
    start = time.monotonic()
    for _ in range(SINGLE_STEPS - 1):
        debugger.ask("s")
    rates["debugger's steps"] = (SINGLE_STEPS - 1) / (time.monotonic() - start)
    debugger.ask("c")
    debugger.end()
    return rates


def trace_bytes(command, option):
    """Of a step of the cube."""
    steps = 100_000
    with tempfile.NamedTemporaryFile() as file:
        subprocess.run([*command("cube"), f"--steps={steps}", f"--{option}={file.name}", *NO_PICTURE],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        return Path(file.name).stat().st_size / steps
