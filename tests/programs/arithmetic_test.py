"""The program arithmetic must end on a green screen."""

from tarn_programs import ProgramTest

GREEN, RED, WHITE = 0x80309020, 0x802020B0, 0x80FFFFFF
FRAME_WIDTH = 384


class ArithmeticTest(ProgramTest):
    def test_green_screen(self):
        self.configure("arithmetic")
        output, _ = self.run_headless("--frames", "10", "--dump-vram", "vram.bin", status=0)
        memory = self.local_memory()
        screen = {memory[y * FRAME_WIDTH + x + 1] for y in range(240) for x in range(320)}
        self.assertEqual(screen, {GREEN, WHITE}, "red" if RED in screen else "not drawn")
        # The only operations that say something are the three overflows among the cases.
        self.assertEqual(output.splitlines(),
                         ["add Integer Overflow", "sub Integer Overflow", "dsubu Integer Overflow"])
