// The emulation driver: the configuration and the three state machines that the main loop calls.
#pragma once

#include "base/types.h"
#include "shell/frame_pacer.h"

namespace tarn {

/// State of the start-up and shut-down machines and of the run.
struct DriverState {
    u32 tarnInitState = 0;
    u32 IsInitOK = 0;  ///< counts failures in spite of its name
    u32 tarnEndingState = 0;
    u32 farewell = 2000;  ///< milliseconds for which shut-down leaves its messages to be read
    const char* biosPath = "bios/scph10000.bin";
    bool restReported = false;       ///< the pause that lasts has been reported
    void (*reportRest)() = nullptr;  ///< called once for each pause, unless it is null
    FramePacer pacer;
};

inline DriverState Driver;

/// Reads ./tarn.ini into Settings; 1, or -1 (settings untouched) when it cannot be parsed.
int TarnLoadConfig();

/// The idle procedures: one step of start-up, of the run, of shut-down.
void koGUI_TarnInitProc();
void koGUI_TarnProc();
void koGUI_TarnEndingProc();

}  // namespace tarn
