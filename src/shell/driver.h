// Declares the emulation driver: the configuration and the three state machines that the main loop calls.
#pragma once

#include "base/types.h"

struct SDL_Surface;

namespace tarn {

/// The surface of the emulated picture. `main` owns it and frees it after the main loop.
inline SDL_Surface* MainScreen = nullptr;

/// State of the start-up and shut-down machines.
struct DriverState {
    u32 tarnInitState = 0;
    u32 IsInitOK = 0;  ///< counts failures in spite of its name
    u32 tarnEndingState = 0;
};

inline DriverState Driver;

/// Reads ./tarn.ini into Settings; 1, or -1 (settings untouched) when it cannot be parsed.
int TarnLoadConfig();

/// One step of start-up, of the run, of shut-down.
void koGUI_TarnInitProc();
void koGUI_TarnProc();
void koGUI_TarnEndingProc();

/// One driver step: an instruction, the DMA controller, vertical-blank pacing.
void driverStep();

}  // namespace tarn
