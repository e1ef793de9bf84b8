// The settings that the configuration file makes.
#pragma once

#include "base/types.h"

namespace tarn {

/// All zero until TarnLoadConfig has run. A flag is on if it equals 1.
struct TarnSettings {
    char ElfToExecute[256] = {};      ///< path of the guest program, zero-terminated
    u8 debug_op = 0;                  ///< 1: trace every instruction (F3 toggles it)
    u8 debug_dma = 0;                 ///< 1: log DMA register traffic
    u8 debug_print_syscall = 0;       ///< 1: log every system call
    u8 debug_gs = 0;                  ///< 1: log GS register accesses
    u16 koGUI_MainScreenW = 0;        ///< width of MainScreen in pixels
    u16 koGUI_MainScreenH = 0;        ///< height of MainScreen in pixels
    u16 koGUI_MainScreenBPP = 0;      ///< bits per pixel of the window and of MainScreen
    u16 koGUI_MainScreenStretch = 0;  ///< not used: the renderer has its own copy

    // Opt-in keys. 0 means that the program behaves as if the key did not exist.
    u32 stepsPerPoll = 0;  ///< "General:Steps_per_poll": more than 1 batches driver steps
    u32 frameRate = 0;     ///< "Video:Frame_rate": vertical blanks shown per second at most
    u8 console = 0;        ///< "General:Console": 1 passes on what the guest writes to its serial port
    u8 completeCpu = 0;    ///< "General:Complete_cpu": 1 chooses the complete processor
    u8 blend = 0;          ///< "Video:Blend": 1 sends primitives with ABE through the blender
    u8 fitWindow = 0;      ///< "Video:Fit_window": 1 lays the panes out side by side
    u8 extraKeys = 0;  ///< "General:Extra_keys": 1 adds keys, and a caption that says what the machine does
    u16 gdbPort = 0;   ///< "General:Gdb_port": where the window listens for a debugger, if not 0
};

inline TarnSettings Settings;

}  // namespace tarn
