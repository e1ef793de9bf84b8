// The display output: the renderer's configuration, the conversion to the host surface, snapshots.
#pragma once

#include "base/types.h"

struct SDL_Surface;

namespace tarn {

/// The renderer's configuration; these seven words are also what SaveConfig writes.
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
};

/// A conversion of local memory to destination pixels. `source` is the word of local memory where the
/// displayed buffer starts, its rows are the fbw of the displayed circuit apart; `pitch` is in bytes. Nothing
/// is written beyond GsHost.buffer's width and height, nothing read but local memory, which wraps.
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
};

inline GsDisplayState GsHost;

void LoadConfig();      ///< reads ./tarn.ini again, for the renderer's keys; all zero when it cannot
void SaveConfig();      ///< writes conf to "$HOME/.PS2E/Gravelx.cfg"; says nothing when it cannot
int DXopen();           ///< opens the display on `buffer`, in grey; 0, or -1 when fullscreen is asked for
void DXclose();         ///< lets go of `buffer`, which stays its owner's to free
void DXclearScr();      ///< fills `buffer` with grey
int DXswitchScrMode();  ///< closes, switches `fullscreen` over, opens again; DXopen's result
void DXupdScrBlit();    ///< chooses the conversion by depth and stretch
void DXupdate();        ///< presents the displayed rectangle on `buffer`

// The settings dialogs of other front ends; they do nothing here.
void OnConf_Ok();
void OnConf_Cancel();
void OnAbout_Ok();

}  // namespace tarn
