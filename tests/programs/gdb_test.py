"""Debugging over a real connection: gdb-multiarch against guest programs, and what a bad client does."""

import signal
import socket
import unittest

from debugged import Client, DebuggedTest, SessionTest, packet, withGdb


@withGdb
class GdbTest(SessionTest):
    def test_a_session(self):
        self.start("kernel")
        output = self.gdb(
            "kernel", "set var failures = 0x1234", "p/x *(int*)((unsigned)&failures | 0x80000000)", "set $pc = 0",
            "load", "p/x $pc == (unsigned)&_start", "p/x $status", "break main", "continue", "backtrace 1", "x/i $pc",
            "stepi", "p/x $pc - (unsigned)&main", "set $v0 = -2", "p $v0", "p/x $v0", "set $f3 = 1.5", "p $f3",
            "break onSif0", "continue", "finish", "p failures", "detach")
        self.expect(output, r"^\$1 = 0x1234$", "Loading section .text", r"^\$2 = 0x1$", r"^\$3 = 0x10900001$",
                    r"Breakpoint 1, main", "#0  main", "=> 0x", r"\$4 = 0x4", r"\$5 = -2", r"\$6 = 0xfffffffffffffffe",
                    r"\$7 = 1\.5", "Breakpoint 2, onSif0", "^sif ", r"\$\d+ = 0", "detached")
        self.assertIn("(SYSCALL)", self.end(3))

    def test_watchpoints_and_signals(self):
        self.start("kernel")
        output = self.gdb("kernel", "watch handlerEntered", "rwatch transfers", "continue", "info symbol $pc",
                          "x/i $pc - 4", "delete", "awatch handlerEntered", "continue", "delete", "continue", "p $v1",
                          "x/i $pc", "continue", "kill")
        self.expect(output, "Hardware watchpoint 1", "Hardware read watchpoint 2", r"^Old value = 0$",
                    r"^New value = 1$", "^onSif0", r"sw\t", "Hardware access .* 3", "^Value = 1$|^New value",
                    "SIGSYS", r"\$1 = 4", r"=> .*syscall", "SIGSYS", "killed")
        self.assertIn("killed by the debugger", self.end(0))

    def test_the_run_ends_at_its_limit(self):
        self.start("picture", "--frames", "2", "--picture", "end.bmp")
        self.expect(self.gdb("picture", "continue"), "exited normally")
        self.assertIn("frame limit reached", self.end(0))
        self.assertTrue(self.output_file("end.bmp").startswith(b"BM"))


class ClientTest(DebuggedTest):
    def test_interrupting_and_the_end_by_a_signal(self):
        self.start("picture")
        client = Client(self.port)
        for resumed in b"c", b"C05":
            client.send(packet(resumed) + b"\x03")
            self.assertEqual(client.reply(), b"S02")
        client.send(packet(b"c"))
        self.machine.send_signal(signal.SIGTERM)
        self.assertEqual(client.reply(), b"W00")
        client.close()
        self.assertIn("stopped by a signal", self.end(0))

    def test_bad_packets_and_dropped_connections(self):
        self.start("picture", "--frames", "3")
        client = Client(self.port)
        with self.assertRaises(ConnectionRefusedError):
            socket.create_connection(("127.0.0.2", self.port))
        registers = client.ask(b"g")
        client.send(b"-")  # once more
        self.assertEqual(client.reply(), registers)
        client.send(b"$g#00")  # wrong checksum
        self.assertEqual(client.socket.recv(1), b"-")
        client.send(bytes(range(4, 36)) * 1000 + b"}}$$$##$m#$#-")
        client.send(b"$" + b"A" * 1000000 + b"#00")
        client.send(b"$m1000")
        client.close()

        client = Client(self.port)
        self.assertEqual(client.ask(b"g"), registers, "the machine stands where it stood")
        client.send(packet(b"M100000," + b"f" * 15 + b":" + b"00" * 100000))
        self.assertEqual(client.reply(), b"E07")
        for _ in range(100):  # asks for a lot and takes nothing
            client.send(packet(b"m100000,2000"))
        client.close()

        for _ in range(2):  # what one debugger asks for is not there for the next
            client = Client(self.port)
            self.assertEqual((client.ask(b"g"), client.acknowledgements), (registers, b"+"))
            self.assertEqual(client.ask(b"QStartNoAckMode"), b"OK")
            self.assertEqual((client.ask(b"g"), client.acknowledgements), (registers, b""))
            client.close()
        client = Client(self.port)
        client.send(packet(b"c"))
        client.close()  # the machine runs on
        self.assertIn("frame limit reached", self.end(0))

    def test_a_port_that_is_taken(self):
        self.start("kernel")
        _, messages = self.run_headless("--gdb", str(self.port), status=1)
        self.assertIn("cannot bind", messages)
        for port in ("65536", "-1", "12x", ""):
            _, messages = self.run_headless("--gdb", port, status=2)
            self.assertIn("--gdb takes a whole number from 0 to 65535", messages)
        self.machine.send_signal(signal.SIGTERM)
        self.assertIn("stopped by a signal", self.end(0))
