"""The test card: calculated anew, pixel by pixel, and compared with local memory and with what is shown."""

from tarn_programs import ProgramTest, read_bmp

WIDTH, HEIGHT, FRAME_WIDTH = 320, 240, 384
FRAMES = "40"  # vertical blanks until the card is drawn, and some

BLACK, WHITE = 0x80101010, 0x80F0F0F0
GROUND, GRID, INK, TITLE = 0x80585048, 0x80A09890, 0x80402010, 0x8040C8FF
BARS = [0xC0C0C0, 0x00C0C0, 0xC0C000, 0x00C000, 0xC000C0, 0x0000C0, 0xC00000, 0x000000]  # blue first

GLYPHS = {
    "T": ["#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  "],
    "A": [" ### ", "#   #", "#   #", "#####", "#   #", "#   #", "#   #"],
    "R": ["#### ", "#   #", "#   #", "#### ", "# #  ", "#  # ", "#   #"],
    "N": ["#   #", "##  #", "# # #", "#  ##", "#   #", "#   #", "#   #"],
    "X": ["#   #", "#   #", " # # ", "  #  ", " # # ", "#   #", "#   #"],
    "3": [" ### ", "#   #", "    #", "  ## ", "    #", "#   #", " ### "],
    "2": [" ### ", "#   #", "    #", "  ## ", " #   ", "#    ", "#####"],
    "0": [" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### "],
    "4": ["   # ", "  ## ", " # # ", "#  # ", "#####", "   # ", "   # "],
    " ": [" " * 5] * 7,
}


def in_text(text, left, top, scale, x, y):
    if x < left or y < top:
        return False
    row, (index, column) = (y - top) // scale, divmod((x - left) // scale, 6)
    return row < 7 and index < len(text) and column < 5 and GLYPHS[text[index]][row][column] == "#"


def in_disc(radius, x, y):
    return (2 * x - 319) ** 2 + (2 * y - 239) ** 2 <= (2 * radius) ** 2


def disc_pixel(x, y):
    bar = (x - 56) // 26
    if not 66 <= y < 184 or not 0 <= bar < 8:
        return INK
    if y < 106:
        return 0x80000000 | BARS[bar]
    if y < 124:
        return 0x80000000 | 36 * bar << 16 | 36 * bar << 8 | 36 * bar
    if y < 160:
        return 0x80000000 | (x - 32) << 8 * ((y - 124) // 12)
    return WHITE if x // (1 + bar // 2) % 2 else BLACK


def card_pixel(x, y):
    if in_text("TARN", 114, 34, 4, x, y) or in_text("320 X 240", 106, 191, 2, x, y):
        return TITLE
    if in_disc(104, x, y):
        return disc_pixel(x, y) if in_disc(101, x, y) else WHITE
    if not (8 <= x < WIDTH - 8 and 8 <= y < HEIGHT - 8):
        return WHITE if (x // 20 + y // 20) % 2 else BLACK
    return GRID if x % 20 == 0 or y % 20 == 0 else GROUND


# Local memory from its start: the card lies in columns 1 to 320 of a frame 384 pixels wide.
MEMORY = [card_pixel(x - 1, y) if 0 < x <= WIDTH else 0 for y in range(HEIGHT) for x in range(FRAME_WIDTH)]


def shown(x, y):
    word = MEMORY[y * FRAME_WIDTH + x]
    return word & 0xFF, word >> 8 & 0xFF, word >> 16 & 0xFF


class PictureTest(ProgramTest):
    def test_local_memory(self):
        self.configure("picture")
        self.run_headless("--frames", FRAMES, "--dump-vram", "vram.bin", status=0)
        memory = list(self.local_memory())
        for at in range(0, len(MEMORY), FRAME_WIDTH):
            self.assertEqual(memory[at:at + FRAME_WIDTH], MEMORY[at:at + FRAME_WIDTH], f"row {at // FRAME_WIDTH}")
        self.assertFalse(any(memory[len(MEMORY):]), "nothing else is written")

    def test_pictures(self):
        for width, height, depth, stretch in (640, 480, 32, 1), (200, 150, 24, 1), (100, 80, 24, 0):
            self.configure("picture", video=f"Width={width}\nHeight={height}\nBpp={depth}\nStretch={stretch}")
            self.run_headless("--frames", FRAMES, "--picture", "shown.bmp", status=0)
            rows = read_bmp(self.output_file("shown.bmp"))
            across, down = (WIDTH * 65536 // width, HEIGHT * 65536 // height) if stretch else (65536, 65536)
            for y in range(height):  # stretched, the samples start one column in
                expected = [shown(stretch + (x * across >> 16), y * down >> 16) for x in range(width)]
                self.assertEqual(rows[y], expected, f"row {y} of {width}x{height}x{depth}, stretch {stretch}")
