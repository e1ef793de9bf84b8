// Entry points and settings of the renderer that no program here uses: identification, keys, a second
// transfer entry, dialogs, switching the screen mode, the log.
#pragma once

#include "base/types.h"

#include <cstdio>

namespace tarn {

u32 PS2EgetLibType();          ///< 1
u32 PS2EgetLibVersion();       ///< 0x10000
const char* PS2EgetLibName();  ///< "Gravel-sdl Driver"

void GSkeyEvent();   ///< does nothing
void GSconfigure();  ///< reads the renderer's configuration again
void GSabout();      ///< does nothing
s32 GStest();        ///< 0

/// Consumes packets up to the end of one with EOP. If `data` is in main memory, stops at its end.
void GSgifTransfer2(const u8* data);

void SaveConfig();      ///< writes conf to "$HOME/.PS2E/Gravelx.cfg"; errors are ignored
void DXclearScr();      ///< fills the display's surface with grey
int DXswitchScrMode();  ///< closes, toggles `fullscreen`, opens again; DXopen's result

// The settings dialogs of other front ends; they do nothing here.
void OnConf_Ok();
void OnConf_Cancel();
void OnAbout_Ok();

inline s32 Log = 0;                 ///< not 0: __Log writes
inline std::FILE* gsLog = nullptr;  ///< where to; not opened here

/// Writes a printf-style text to gsLog.
[[gnu::format(printf, 1, 2)]] void __Log(const char* format, ...);  // NOLINT(bugprone-reserved-identifier)

}  // namespace tarn
