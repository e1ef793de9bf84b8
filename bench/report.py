#!/usr/bin/env python3
"""Runs the benchmarks, and what they are compared with, and prints the ratios with their floors and goals.

usage: report.py BUILD_DIRECTORY [--quick] [--output FILE.json]

scripts/bench calls it. Every figure is a median; times are processor times of the process that is measured, except
for the programs in a window, where the display server works too.
"""

import argparse
import contextlib
import json
import math
import os
import select
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import whole_programs

SOURCE = Path(__file__).resolve().parents[1]
LOOPS = "alu", "mixed", "float"
EMULATORS = {  # name in the table: command, interface of the program
    "qemu-mipsel": (["qemu-mipsel"], "o32"),
    "qemu-mipsel -singlestep": (["qemu-mipsel", "-singlestep"], "o32"),
    "qemu-mipsn32el": (["qemu-mipsn32el"], "n32"),
    "qemu-mipsn32el -singlestep": (["qemu-mipsn32el", "-singlestep"], "n32"),
}
SINGLE_STEP = "-one-insn-per-tb"  # what newer releases call -singlestep
TURNS = {"alu": 6_000_000, "mixed": 4_000_000, "float": 3_000_000}  # about half a second of single steps
PROGRAMS = "loop", "bounce", "cube"  # run in a window; the first draws nothing
TURNS_PER_LINE = 20_000
TURNS_PER_TRACED_LINE = 2
STEPS_PER_TRACED_LINE = 22  # of the integer loop


class Measurements:
    """Rates in items a second, by name."""

    def __init__(self, build, repetitions):
        self.build = build
        self.repetitions = repetitions
        self.rates = {}
        self.turns = {}  # of a benchmark, a second
        self.seconds = {}  # of one primitive, for those that have it
        self.bytes = {}  # of a step, by kind of trace
        self.runs = {}  # of a benchmark, as it reports them

    def ratio(self, name, against):
        """Of two rates in items, or, when either counts none, in whole turns; None where one is not measured."""
        for rates in self.rates, self.turns:
            if name in rates and against in rates:
                return rates[name] / rates[against]
        return None

    def run_benchmarks(self, selection, repetitions):
        result = subprocess.run(
            [self.build / "bench" / "tarn-bench", f"--benchmark_filter={selection}",
             f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.1",
             "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
        for entry in json.loads(result.stdout)["benchmarks"]:
            if entry["run_type"] == "iteration":
                self.runs.setdefault(entry["run_name"].split("/iterations:")[0], []).append(entry)
        for name, entries in self.runs.items():
            def median(key):
                return statistics.median(entry[key] for entry in entries)
            self.turns[name] = 1e9 / median("cpu_time")
            if "items_per_second" in entries[0]:
                self.rates[name] = median("items_per_second")
            if "primitive" in entries[0]:
                self.seconds[name] = median("primitive")

    def run_loops(self, directory):
        """How often the loops turn a second, here and in MIPS user-mode emulators; each round measures them all."""
        commands = {}
        for name, (command, interface) in EMULATORS.items():
            if shutil.which(command[0]) is None:
                print(f"{command[0]} is not installed (Debian package qemu-user): no comparison with it")
                continue
            command = [SINGLE_STEP if word == "-singlestep" and has_option(command[0], SINGLE_STEP) else word
                       for word in command]
            for loop in LOOPS:
                turns = TURNS[loop] * (1 if len(command) > 1 else 10)
                program = directory / f"{loop}-{interface}-{turns}"
                write_guest(self.build, program, loop, interface, turns)
                program.chmod(0o755)
                commands[f"{name}/{loop}"] = turns, [*command, program]
        times = {name: [] for name in commands}
        for _ in range(self.repetitions):
            self.run_benchmarks("^cpu/", 1)
            for name, (_, command) in commands.items():
                times[name].append(processor_time(command))
        for name, (turns, _) in commands.items():
            self.rates[name] = turns / statistics.median(times[name])

    def run_whole_programs(self, directory):
        """Steps a second of whole runs; each round measures them all."""
        write_guest(self.build, directory / "alu.elf", "alu", "console", TURNS_PER_LINE)

        def command(program):
            elf = directory / "alu.elf" if program == "loop" else self.build / "guest" / f"{program}.elf"
            return [self.build / "tarn-headless", elf, "--quiet"]
        rounds = [whole_programs.rates_of_one_round(command) for _ in range(self.repetitions)]
        for name in rounds[0]:
            self.rates[f"whole/{name}"] = statistics.median(rates[name] for rates in rounds)
        for option in "trace", "trace-changes":
            self.bytes[option] = whole_programs.trace_bytes(command, option)

    def run_programs(self, directory):
        """The speed of whole programs, without a window and in one, by turns; and of a trace in a window."""
        if shutil.which("Xvfb") is None:
            print("Xvfb is not installed (Debian package xvfb): no comparison with the window")
            return
        write_guest(self.build, directory / "loop.elf", "mixed", "console", TURNS_PER_LINE)
        for name in PROGRAMS:
            elf = directory / "loop.elf" if name == "loop" else self.build / "guest" / f"{name}.elf"
            run = prepare(directory / name, elf)
            with display() as environment, Running(self.build / "tarn-headless", run, os.environ) as headless, \
                    Running(self.build / "tarn", run, environment) as window:
                headless.settle()
                window.settle()
                rates = [(headless.rate(), window.rate()) for _ in range(self.repetitions)]
            self.rates[f"program/{name}/headless"] = statistics.median(rate for rate, _ in rates)
            self.rates[f"program/{name}/window"] = statistics.median(rate for _, rate in rates)
        write_guest(self.build, directory / "traced.elf", "alu", "console", TURNS_PER_TRACED_LINE)
        run = prepare(directory / "traced", directory / "traced.elf", "Debug_op = 1")
        with display() as environment, Running(self.build / "tarn", run, environment) as window:
            window.settle(expected=2)
            lines = statistics.median(window.rate() for _ in range(self.repetitions))
            self.turns["program/traced/window"] = lines * STEPS_PER_TRACED_LINE


class Running:
    """A program that runs only while it is measured, and prints lines at a rate that is in step with its work."""

    def __init__(self, binary, directory, environment):
        self.output, terminal = os.openpty()  # on a terminal each line comes at once
        self.process = subprocess.Popen([binary], cwd=directory, env=environment, stdin=subprocess.DEVNULL,
                                        stdout=terminal, stderr=subprocess.DEVNULL)
        os.close(terminal)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        os.close(self.output)

    def lines(self, seconds):
        """How many lines come within this time; its end is the last one."""
        start = last = time.monotonic()
        count = 0
        while (rest := start + seconds - time.monotonic()) > 0:
            if not select.select([self.output], [], [], rest)[0]:
                break
            count += os.read(self.output, 1 << 16).count(b"\n")
            last = time.monotonic()
        return count, last - start

    def settle(self, expected=10):
        limit = time.monotonic() + 10
        while self.lines(0.1)[0] < expected:
            if time.monotonic() > limit:
                sys.exit(f"{self.process.args[0]} does not start")
        self.process.send_signal(signal.SIGSTOP)

    def rate(self):
        """Lines a second."""
        self.process.send_signal(signal.SIGCONT)
        self.lines(0.1)
        count, seconds = self.lines(0.5)
        self.process.send_signal(signal.SIGSTOP)
        return count / seconds


def write_guest(build, path, loop, interface, turns):
    subprocess.run([build / "bench" / "tarn-bench-guest", loop, interface, str(turns), path], check=True)


def has_option(program, option):
    return option[1:] in subprocess.run([program, "-help"], capture_output=True, text=True, check=False).stdout


def processor_time(command):
    return whole_programs.processor_time(subprocess.Popen(command, stdout=subprocess.DEVNULL))


def prepare(directory, elf, more=""):
    """A run directory for the program, as fast as it goes, with a line for each write to a register of the GS."""
    (directory / "bios").mkdir(parents=True)
    (directory / "bios" / "scph10000.bin").write_bytes(bytes(1024))
    (directory / "data").symlink_to(SOURCE / "data")
    (directory / "tarn.ini").write_text(
        f'[General]\nElf = "{elf.resolve()}"\nSteps_per_poll = 8192\nDebug_GS = 1\n{more}\n[Video]\nWidth = 320\nHeight = 240\n')
    return directory


@contextlib.contextmanager
def display():
    """The environment of a window on a virtual display."""
    reader, writer = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                               "-noreset"], pass_fds=[writer], stderr=subprocess.DEVNULL)
    os.close(writer)
    try:
        with os.fdopen(reader) as number:
            yield {**os.environ, "DISPLAY": ":" + number.readline().strip(), "SDL_VIDEODRIVER": "x11"}
    finally:
        server.terminate()
        server.wait()


def target_rows():
    """What is measured, against what, the floor and the goal of the ratio."""
    yield "the loop with a display of 640x448", "whole/640x448", "whole/plain", 0.5, 0.9
    for run, floor, goal in ("continue", 0.4, 0.8), ("continue, breakpoint", 0.4, 0.8), \
            ("continue, watchpoint", 0.03, 0.1):
        yield f"gdb: {run}", f"whole/{run}", "whole/plain", floor, goal
    for program in PROGRAMS:
        yield f"in a window, {program}", f"program/{program}/window", f"program/{program}/headless", 0.5, 0.8
    yield "trace in a window", "program/traced/window", "reference/SDL_UpperBlit/800x600", 0.15, 0.3
    single = "qemu-mipsel -singlestep"
    for loop in "alu", "mixed":
        yield f"single steps, {loop} loop", f"cpu/{loop}/MipsUpdateCpu", f"{single}/{loop}", 0.5, 1.0
    for loop in "alu", "mixed":
        yield f"batch runner, {loop} loop", f"cpu/{loop}/runSteps", f"{single}/{loop}", 2.0, 4.5
    yield "flat triangle, whole screen", "draw/triangle/F/640x448", "reference/SDL_FillRect/640x448", 0.5, 1.0
    for routine in "G", "FTDecal", "FTModulate":
        yield f"triangle {routine}, whole screen", f"draw/triangle/{routine}/640x448", \
            "reference/pixman_nearest/256x256_to_640x448", 0.3, 0.6
    for routine in "FTDecal", "FTModulate":
        yield f"triangle {routine} with depth", f"draw/triangle/{routine}_Z/640x448", \
            f"draw/triangle/{routine}/640x448", 0.5, 0.7
    yield "1:1 presentation, 32 bit", "present/32/640x448", "reference/memcpy/640x448", 0.25, 0.5
    for depth in 15, 16, 24, 32:
        yield f"stretched presentation, {depth} bit", f"present/{depth}/stretched/512x224_to_640x448", \
            f"present/{depth}/640x448", 0.3, 0.6
    yield "redraw of the whole window", "window/redraw/everything", "reference/SDL_UpperBlit/800x600", 0.15, 0.4


def more_rows():
    """Ratios without a target."""
    for run in "bounce", "cube", "trace", "trace-changes":
        yield f"whole run, {run}", f"whole/{run}", "whole/plain"
    for emulator in EMULATORS:
        for way in "MipsUpdateCpu", "driverStep", "runSteps":
            for loop in LOOPS:
                yield f"{way}, {loop} loop", f"cpu/{loop}/{way}", f"{emulator}/{loop}"
    yield "flat triangle with depth", "draw/triangle/F_Z/640x448", "draw/triangle/F/640x448"
    yield "textured sprite", "draw/sprite/T32/640x448", "reference/pixman_nearest/256x256_to_640x448"
    yield "image upload", "transfer/upload32/640x448", "reference/memcpy/640x448"
    yield "local move", "transfer/move/640x448", "reference/memcpy/640x448"
    yield "redraw of the traces' panes", "window/redraw/trace", "reference/SDL_UpperBlit/800x600"
    yield "redraw of the picture alone", "window/redraw/picture", "reference/SDL_UpperBlit/800x600"


def verdict(value, floor, goal, smaller=False):
    def reached(limit):
        return value <= limit if smaller else value >= limit
    return "goal" if reached(goal) else "floor" if reached(floor) else "MISSED"


def absolute_rows(measurements):
    """What is not a ratio: figure, unit, floor, goal, and whether a smaller one is better."""
    rates = measurements.rates
    if "whole/plain" in rates:
        for what, name, floor, goal in (("the integer loop", "plain", 400, 1000), ("--trace, cube", "trace", 2, 4),
                                        ("--trace-changes, cube", "trace-changes", 2, 4)):
            yield what, rates[f"whole/{name}"] / 1e6, "million steps/s", floor, goal, False
        yield "gdb: steps", rates["whole/debugger's steps"], "steps/s", 1000, 5000, False
        yield "--trace-changes, cube", measurements.bytes["trace-changes"], "bytes a step", 100, 60, True
    for name, seconds in sorted(measurements.seconds.items()):
        if name.startswith("draw/triangle/") and name.endswith("/8x8"):
            yield f"8x8 triangle {name.split('/')[2]}", seconds * 1e9, "ns each", 400, 150, True


def number(value):
    """With three digits, but none behind those of a whole number."""
    return f"{value:.{max(0, 2 - math.floor(math.log10(value)))}f}" if value > 0 else "0"


def print_table(measurements):
    def row(what, against, floor, goal, value, smaller=False):
        return what, against, f"{floor:g}", f"{goal:g}", number(value), verdict(value, floor, goal, smaller)
    rows = [row(what, unit, floor, goal, value, smaller)
            for what, value, unit, floor, goal, smaller in absolute_rows(measurements)]
    rows[5:5] = [row(what, against, floor, goal, measurements.ratio(name, against))
                 for what, name, against, floor, goal in target_rows()
                 if measurements.ratio(name, against) is not None]
    print_columns(("what", "against", "floor", "goal", "measured", "reaches"), rows)
    print()
    print_columns(("more ratios", "against", "measured"),
                  [(what, against, number(measurements.ratio(name, against))) for what, name, against in more_rows()
                   if measurements.ratio(name, against) is not None])


def print_columns(titles, rows):
    """As a Markdown table."""
    widths = [max(len(row[i]) for row in [titles, *rows]) for i in range(len(titles))]
    for row in titles, ["-" * width for width in widths], *rows:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path)
    parser.add_argument("--quick", action="store_true", help="one repetition instead of five")
    parser.add_argument("--output", type=Path, help="a JSON file for all figures")
    options = parser.parse_args()
    measurements = Measurements(options.build.resolve(), 1 if options.quick else 5)
    with tempfile.TemporaryDirectory(prefix="tarn-bench-") as directory:
        measurements.run_benchmarks("-^cpu/", measurements.repetitions)
        measurements.run_whole_programs(Path(directory))
        measurements.run_loops(Path(directory))
        measurements.run_programs(Path(directory))
    if options.output:
        options.output.write_text(json.dumps({"rates": measurements.rates, "seconds": measurements.seconds}, indent=1))
    model = next((line.split(":")[1].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                  if line.startswith("model name")), "unknown processor")
    print(f"{model}, {os.cpu_count()} processors, medians of {measurements.repetitions}\n")
    print_table(measurements)


if __name__ == "__main__":
    main()
