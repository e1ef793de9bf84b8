// A picture in main memory that a program draws with the processor, and its way to the screen.
#pragma once

#include "gs.h"
#include "types.h"

/// 32-bit pixels, row by row. The width is a multiple of 4 and the pixels are aligned to 16.
typedef struct {
    u32* pixels;
    u32 width;
    u32 height;
} Canvas;

/// A canvas from the heap.
Canvas newCanvas(u32 width, u32 height);

static inline u32* canvasRow(const Canvas* canvas, u32 y) { return canvas->pixels + y * canvas->width; }

/// Fills a rectangle; the part outside the canvas is left out.
void fillRectangle(const Canvas* canvas, u32 x, u32 y, u32 width, u32 height, u32 colour);

enum { glyphWidth = 5, glyphHeight = 7, glyphAdvance = 6 };

/// The seven rows of a character, bit 4 the leftmost pixel. Capital letters, digits and - . : ! / + = are
/// there, for the complete processor all from ! to ~; everything else is blank.
const u8* glyphOf(char character);

/// One of those that are there for the complete processor only, or null.
const u8* furtherGlyphOf(char character);

/// Draws text with its top left corner at (x, y), each pixel `scale` pixels large, on what is there.
void drawText(const Canvas* canvas, u32 x, u32 y, u32 scale, u32 colour, const char* text);

/// Decimal digits of a number, at most 10 and a final zero byte.
void formatNumber(char* text, u32 number);

/// Copies the canvas to page 0 of local memory and shows it. Stretched presentation takes its first
/// sample of a row from column 1, so that is where the canvas goes; column 0 is left black.
void showCanvas(const Canvas* canvas);
