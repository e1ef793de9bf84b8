// The emulation driver: the configuration and the three state machines that the main loop calls.
#pragma once

#include "base/types.h"
#include "shell/run_control.h"

namespace tarn {

/// The state of the three state machines.
struct DriverState {
    u32 tarnInitState = 0;
    u32 IsInitOK = 0;  ///< number of failures, in spite of its name
    u32 tarnEndingState = 0;
    u32 farewell = 2000;  ///< milliseconds that the messages of shut-down stay visible
    const char* biosPath = "bios/scph10000.bin";
    bool restReported = false;       ///< the current pause has been reported
    void (*reportRest)() = nullptr;  ///< called once for each pause, unless it is null
    void (*started)() = nullptr;     ///< called when start-up is over, unless it is null
    void (*look)() = nullptr;        ///< called between two parts of the run, unless it is null
    RunControl run;
};

inline DriverState Driver;

/// Reads ./tarn.ini into Settings. Returns 1, or -1 (and no change) if it cannot be parsed.
int TarnLoadConfig();

/// The idle procedures of the main loop: a step of start-up, of the run, of shut-down.
void koGUI_TarnInitProc();
void koGUI_TarnProc();
void koGUI_TarnEndingProc();

}  // namespace tarn
