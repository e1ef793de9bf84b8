// A picture in main memory, drawn by the processor and copied to the screen.
#pragma once

#include "gs.h"
#include "types.h"

/// 32-bit pixels, row by row. The width is a multiple of 4 and the pixels are aligned to 16.
typedef struct {
    u32* pixels;
    u32 width;
    u32 height;
} Canvas;

/// Allocates a canvas.
Canvas newCanvas(u32 width, u32 height);

static inline u32* canvasRow(const Canvas* canvas, u32 y) { return canvas->pixels + y * canvas->width; }

/// Fills a rectangle, clipped to the canvas.
void fillRectangle(const Canvas* canvas, u32 x, u32 y, u32 width, u32 height, u32 colour);

enum { glyphWidth = 5, glyphHeight = 7, glyphAdvance = 6 };

/// The seven rows of a character; bit 4 is the leftmost pixel. The described processor has capital letters,
/// digits and - . : ! / + =, the complete one all of ! to ~. Other characters are blank.
const u8* glyphOf(char character);

/// A character that only the complete processor has, or null.
const u8* furtherGlyphOf(char character);

/// Draws text with its top left corner at (x, y), magnified by `scale`. The background is not changed.
void drawText(const Canvas* canvas, u32 x, u32 y, u32 scale, u32 colour, const char* text);

/// Writes the decimal digits of a number, at most 10, and a zero byte.
void formatNumber(char* text, u32 number);

/// Copies the canvas to page 0 of local memory and displays it. Stretched presentation samples a row from
/// column 1 on, so the canvas starts there, and column 0 is black.
void showCanvas(const Canvas* canvas);
