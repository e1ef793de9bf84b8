// Declares the display output: the renderer's configuration, the conversion to the host surface, snapshots.
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

/// The display's own state.
struct GsDisplayState {
    GsConfig conf{};
    SDL_Surface* buffer = nullptr;  ///< the destination surface, not owned
    s32 depth = 0;                  ///< conf.bpp as DXopen found it
    s32 DXinit = 0;                 ///< 1 while open
};

inline GsDisplayState GsHost;

void LoadConfig();  ///< reads ./tarn.ini again, for the renderer's keys
void SaveConfig();  ///< writes conf to "$HOME/.PS2E/Gravelx.cfg"
int DXopen();       ///< 0, or -1
void DXclose();
void DXclearScr();
int DXswitchScrMode();
void DXupdScrBlit();  ///< chooses the conversion by depth and stretch
void DXupdate();      ///< presents the displayed rectangle
void OnConf_Ok();
void OnConf_Cancel();
void OnAbout_Ok();

}  // namespace tarn
