// Drawing with the processor, and showing the result.
#include "canvas.h"

#include "kernel.h"
#include "packet.h"

Canvas newCanvas(u32 width, u32 height) {
    return (Canvas){allocate(width * height * sizeof(u32)), width, height};
}

void fillRectangle(const Canvas* canvas, u32 x, u32 y, u32 width, u32 height, u32 colour) {
    u32 right = x + width < canvas->width ? x + width : canvas->width;
    u32 bottom = y + height < canvas->height ? y + height : canvas->height;
    for (; y < bottom; y++) {
        u32* row = canvasRow(canvas, y);
        for (u32 column = x; column < right; column++)
            row[column] = colour;
    }
}

void drawText(const Canvas* canvas, u32 x, u32 y, u32 scale, u32 colour, const char* text) {
    for (; *text != 0; text++, x += glyphAdvance * scale) {
        const u8* rows = glyphOf(*text);
        for (u32 row = 0; row < glyphHeight; row++)
            for (u32 column = 0; column < glyphWidth; column++)
                if ((rows[row] << column & 0x10) != 0)
                    fillRectangle(canvas, x + column * scale, y + row * scale, scale, scale, colour);
    }
}

void formatNumber(char* text, u32 number) {
    u32 divisor = 1;
    while (number / divisor >= 10)
        divisor *= 10;
    for (; divisor != 0; divisor /= 10)
        *text++ = (char)('0' + number / divisor % 10);
    *text = 0;
}

void showCanvas(const Canvas* canvas) {
    u32 width64 = canvas->width / 64 + 1;  // at least one column to spare
    uploadImage(canvas->pixels, canvas->width, canvas->height, 0, width64, 1, 0);
    writeDevice64(GS_DISPFB1, gsDispfb(0, width64, PSM_32, 0, 0));
    writeDevice64(GS_DISPLAY1, gsDisplay(canvas->width, canvas->height));
    writeDevice64(GS_PMODE, gsPmode(1));
}
