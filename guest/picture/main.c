// A test card, 320 x 240: drawn into main memory and shown by one image transfer.
//
// Castellations around the edge show cropping, the grid shows geometry, the disc roundness. In the disc there
// are colour bars, a grey staircase, ramps of the three primaries, and gratings of 1 to 4 pixels.
#include "tarn_guest.h"

enum { width = 320, height = 240, cell = 20, border = 8 };
enum { radius = 104, ringRadius = 101, barsLeft = 56, barWidth = 26, barsRight = barsLeft + 8 * barWidth };

enum Colour {
    BLACK = 0x80101010,
    WHITE = 0x80F0F0F0,
    GROUND = 0x80585048,
    GRID = 0x80A09890,
    INK = 0x80402010,
    TITLE = 0x8040C8FF
};

static const u32 barColours[8] = {0x80C0C0C0, 0x8000C0C0, 0x80C0C000, 0x8000C000,
                                  0x80C000C0, 0x800000C0, 0x80C00000, 0x80000000};

/// What a band of the disc shows, and its first row.
typedef struct {
    u32 top;
    enum { PLAIN, BARS, GREYS, RED_RAMP, GREEN_RAMP, BLUE_RAMP, GRATINGS } content;
} Band;

static const Band bands[] = {{0, PLAIN},        {66, BARS},       {106, GREYS},    {124, RED_RAMP},
                             {136, GREEN_RAMP}, {148, BLUE_RAMP}, {160, GRATINGS}, {184, PLAIN}};

static u32 bandPixel(u32 content, u32 x) {
    u32 bar = (x - barsLeft) / barWidth;
    u32 ramp = x - 32;
    switch (content) {
    case BARS:
        return barColours[bar];
    case GREYS:
        return 0x80000000 | bar * 0x242424;
    case RED_RAMP:
        return 0x80000000 | ramp;
    case GREEN_RAMP:
        return 0x80000000 | ramp << 8;
    case BLUE_RAMP:
        return 0x80000000 | ramp << 16;
    case GRATINGS:
        return (x / (1 + bar / 2) & 1) != 0 ? WHITE : BLACK;
    default:
        return INK;
    }
}

static void drawGround(const Canvas* card) {
    for (u32 y = 0; y < height; y++) {
        u32* row = canvasRow(card, y);
        u32 inCell = y % cell;
        // A row differs from the one above only where a cell or the border begins or a grid line ends.
        if (inCell > 1 && y != border && y != height - border) {
            memcpy(row, canvasRow(card, y - 1), width * sizeof(u32));
            continue;
        }
        u32 edgeRow = y < border || y >= height - border;
        u32 gridRow = inCell == 0;
        for (u32 x = 0; x < width; x++) {
            if (edgeRow || x < border || x >= width - border)
                row[x] = ((x / cell + y / cell) & 1) != 0 ? WHITE : BLACK;
            else
                row[x] = gridRow || x % cell == 0 ? GRID : GROUND;
        }
    }
}

/// Columns from the centre line to the edge of a disc of the given radius in row y. Distances are between
/// pixel centres, in half pixels: the centre is between columns 159 and 160 and rows 119 and 120.
static u32 halfWidth(u32 y, s32 discRadius) {
    s32 dy = 2 * (s32)y - (height - 1);
    s32 room = 4 * discRadius * discRadius - dy * dy;
    u32 columns = 0;
    while ((2 * (s32)columns + 1) * (2 * (s32)columns + 1) <= room)
        columns++;
    return columns;
}

static void drawDisc(const Canvas* card) {
    static u32 pattern[width];
    const Band* band = bands;
    const Band* end = bands + sizeof bands / sizeof bands[0];
    u32 drawn = 0xFF;
    for (u32 y = height / 2 - radius; y < height / 2 + radius; y++) {
        while (band + 1 < end && band[1].top <= y)
            band++;
        if (band->content != drawn) {
            drawn = band->content;
            for (u32 x = 0; x < width; x++)
                pattern[x] = x >= barsLeft && x < barsRight ? bandPixel(drawn, x) : INK;
        }
        u32 outer = halfWidth(y, radius);
        u32 inner = halfWidth(y, ringRadius);
        u32* row = canvasRow(card, y);
        for (u32 x = width / 2 - outer; x < width / 2 + outer; x++)
            row[x] = WHITE;
        for (u32 x = width / 2 - inner; x < width / 2 + inner; x++)
            row[x] = pattern[x];
    }
}

int main(void) {
    Canvas card = newCanvas(width, height);
    drawGround(&card);
    drawDisc(&card);
    drawText(&card, 114, 34, 4, TITLE, "TARN");
    drawText(&card, 106, 191, 2, TITLE, "320 X 240");
    showCanvas(&card);
    waitForever();
}
