// The layout of local memory, and declarations shared by the parts of the program.
#pragma once

#include "tarn_guest.h"

enum { screenWidth = 320, screenHeight = 240, horizon = 140 };

/// Two frame buffers, used alternately, and the background that each frame starts from. Stretched
/// presentation shows columns 1 to 320.
enum { frameWidth64 = 6, framePages = 45, backgroundPage = 2 * framePages };

/// Drawing coordinates of the screen's top left corner: far enough from 0 for sprites that start outside.
enum { origin = 1024 };

/// Sizes of the balls, from the horizon to the front.
enum { layerCount = 3, ballColours = 5 };
extern const u32 ballSizes[layerCount];
static inline u32 shadowHeight(u32 ballSize) { return ballSize / 4; }

/// Steps of a spin.
enum { spinSteps = 16 };

enum { letterWidth = 12, letterHeight = 16, logoWidth = 32, logoHeight = 48 };

/// The colour of the floor's lines, by rows below the horizon.
static inline u32 floorColour(u32 rows) {
    return gsColour(40 + 2 * rows, 20 + rows / 2, 80 + rows * 3 / 2, 0x80);
}

/// Draws the sky, the mountains and the floor into the background.
void drawBackground(void);

/// Uploads all textures and palettes to local memory.
void uploadTextures(void);

/// TEX0 values; texel (0, 0) is the top left one of a ball or a shadow.
u64 ballTexture(u32 layer, u32 colour, u32 spin);
u64 shadowTexture(u32 layer);
u64 fontTexture(void);
u64 logoTexture(void);

/// Texel coordinates of a character (space to underscore) in the font, and of a letter in the logo.
static inline u32 letterLeft(u32 index) { return index % 4 * 16; }
static inline u32 letterTop(u32 index) { return index / 4 * 16; }
static inline u32 logoLeft(u32 index) { return index % 2 * logoWidth; }
static inline u32 logoTop(u32 index) { return index / 2 * logoHeight; }

extern const char logo[];
