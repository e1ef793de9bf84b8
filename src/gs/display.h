// The display output: the renderer's configuration, the conversion to the host surface, snapshots.
#pragma once

#include "base/types.h"
#include "gs/local_memory.h"

struct SDL_Surface;

namespace tarn {

/// The renderer's configuration.
struct GsConfig {
    s32 width = 0;  ///< of the host surface, pixels
    s32 height = 0;
    s32 bpp = 0;  ///< 15, 16, 24 or 32
    s32 fullscreen = 0;
    s32 showFps = 0;
    s32 frameSkip = 0;
    s32 stretch = 0;  ///< not 0: the displayed rectangle fills the surface
};

/// Source rectangle in pixels of the GS frame buffer.
struct GsRectangle {
    s32 x = 0;
    s32 y = 0;
    s32 w = 0;
    s32 h = 0;

    bool operator==(const GsRectangle&) const = default;
};

/// The part of local memory that a vertical blank shows.
struct GsPicture {
    u32 base = 0;    ///< word at which the displayed buffer starts
    u32 stride = 0;  ///< words from one row to the next
    GsRectangle rectangle{};

    bool operator==(const GsPicture&) const = default;
};

/// Converts local memory to destination pixels. `source` is the index of the displayed buffer's first word;
/// its rows are GsHost.picture.stride words apart. `pitch` is in bytes. Writes nothing outside GsHost.buffer,
/// and reads only local memory, which wraps.
using ScrBlitOperation = void (*)(u8* destination, const u32* source, const GsRectangle& rectangle,
                                  s32 pitch);

/// 1:1, centred or clipped, to 15, 16, 24 and 32 bits a pixel.
void ScrBlit15(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit16(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit24(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit32(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);

/// Stretched to the configured width and height.
void ScrBlit15S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit16S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit24S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);
void ScrBlit32S(u8* destination, const u32* source, const GsRectangle& rectangle, s32 pitch);

/// The display's own state.
struct GsDisplayState {
    GsConfig conf{};
    SDL_Surface* buffer = nullptr;  ///< the destination surface, not owned
    s32 depth = 0;                  ///< conf.bpp as DXopen found it
    s32 DXinit = 0;                 ///< 1 while open
    ScrBlitOperation ScrBlit = nullptr;
    s32 pixelBytes = 0;  ///< size of the pixels that ScrBlit writes

    // The picture of the last vertical blank. It is converted when something is about to read the surface or
    // to change what the picture shows, whichever comes first.
    GsPicture picture{};
    WordRange pictureWords{};    ///< what converting it may read
    bool pictureDue = false;     ///< the surface does not show it yet
    bool pictureIntact = false;  ///< its words have not changed since
    bool pictureNew = false;     ///< takeNewPicture has not reported it
};

inline GsDisplayState GsHost;

void LoadConfig();    ///< reads the renderer's keys of ./tarn.ini again; all zero on failure
void fillWithGrey();  ///< all of `buffer`, if there is one
int DXopen();         ///< opens the display on `buffer`, in grey; 0, or -1 when fullscreen is asked for
void DXclose();       ///< forgets `buffer`, which its owner frees
void DXupdScrBlit();  ///< chooses the conversion by depth and stretch
void DXupdate();      ///< makes the displayed rectangle the picture that `buffer` shows

/// Draws the picture of the last vertical blank on `buffer`. Call it before reading the surface.
void presentPicture();

/// Whether a vertical blank has shown a different picture since the last call.
bool takeNewPicture();

/// Call it before anything other than vertical blanks and drawing changes the pixels of `buffer`, the
/// conversion, or the machine: the next blank's picture then counts as new.
void forgetPicture();

/// Call it before words of local memory change.
inline void beforeWrite(WordRange words) {
    if (GsHost.pictureIntact && overlap(words, GsHost.pictureWords)) [[unlikely]] {
        forgetPicture();
    }
}

/// The same for all words that a primitive of the current context can change.
void beforeDrawing();

}  // namespace tarn
