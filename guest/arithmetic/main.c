// Tries every instruction of the processor and shows the result: a green screen, or a red one with the
// number of failures and the first of them.
#include "operations.h"

enum { width = 320, height = 240, shownNames = 10 };
enum Colour { GREEN = 0x80309020, RED = 0x802020B0, WHITE = 0x80FFFFFF };

static u32 tried;
static u32 failures;
static const char* failedNames[shownNames];

/// The initial contents of the block for loads and stores.
static const Quadword pattern[2] = {{0x8786858483828180, 0x7F7E7D7C8B8A8988}, {0, 0}};
static Quadword block[2];

static void run(const Case* cases, u32 inMemory) {
    for (; cases->name != 0; cases++) {
        memcpy(block, pattern, sizeof block);
        u64 result = cases->operation(inMemory ? (u32)block : cases->a, cases->b);
        tried++;
        if (result == cases->expected)
            continue;
        if (failures < shownNames)
            failedNames[failures] = cases->name;
        failures++;
    }
}

static void show(void) {
    char number[11];
    Canvas screen = newCanvas(width, height);
    u32 ground = failures == 0 ? GREEN : RED;
    fillQuadwords(screen.pixels, (u64)ground << 32 | ground, width * height / 4);

    drawText(&screen, 40, 20, 4, WHITE, "ARITHMETIC");
    formatNumber(number, tried);
    drawText(&screen, 40, 64, 2, WHITE, number);
    drawText(&screen, 100, 64, 2, WHITE, "CASES");
    formatNumber(number, failures);
    drawText(&screen, 40, 90, 6, WHITE, number);
    drawText(&screen, 40, 142, 2, WHITE, failures == 0 ? "ALL WELL" : "FAILURES:");
    for (u32 i = 0; i < failures && i < shownNames; i++)
        drawText(&screen, 40 + i % 2 * 140, 164 + i / 2 * 14, 1, WHITE, failedNames[i]);
    showCanvas(&screen);
}

int main(void) {
    run(integerCases, 0);
    run(branchCases, 0);
    run(memoryCases, 1);
    run(floatCases, 0);
    run(libraryCases, 0);
    show();
    waitForever();
}
