// The three state machines: start-up, run and shut-down. Each call makes a step.
#include "shell/driver.h"

#include "base/diagnostics.h"
#include "gs/gs.h"
#include "loader/copy.h"
#include "loader/input_files.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "machine/settings.h"
#include "memory/allocation.h"
#include "r5900/operation.h"
#include "r5900/stop.h"
#include "shell/session.h"
#include "symbols/elf_symbols.h"

namespace tarn {
namespace {

constexpr int releaseYear = 2002;
constexpr const char* buildDate = "20021004";

constexpr u8 mainLoopEnds = 2;  // any value of `running` but 1

void countFailure(u8 succeeded) { Driver.IsInitOK += succeeded != 0 ? 0 : 1; }

void failFor(const char* message) {
    PrintToEmuOutput(message);
    TarnGUI.running = mainLoopEnds;
}

void allocateMemory() {
    countFailure(MipsMemoryAlloc());
    countFailure(MipsSpecialAreaMemoryAlloc());
    countFailure(MipsGSAreaMemoryAlloc());
    countFailure(MipsBiosMemoryAlloc());
}

void openRenderer() {
    GSinit();
    if (GSopen(MainScreen, programName) != 0) {
        failFor("FATAL ERROR while graphics initialisation...Sorry Exiting");
    } else {
        PrintToEmuOutput("GS:OK");
    }
}

std::string placeInProgram(u32 address) {
    return symbols::readSymbols(Settings.ElfToExecute).describe(address);
}

/// SIGINT and SIGTERM shut the machine down like Escape. Returns whether one has been received.
bool shutDownOnSignal() {
    if (stopRequested()) {
        TarnGUI.IdleProc = koGUI_TarnEndingProc;
    }
    return stopRequested();
}

}  // namespace

void koGUI_TarnInitProc() {
    if (shutDownOnSignal()) {
        return;
    }
    switch (Driver.tarnInitState++) {
    case 0:
        reset(machine);
        PrintfToEmuOutput("%s %d.%d (%d), build %s", programName, versionMajor, versionMinor, releaseYear,
                          buildDate);
        Driver.IsInitOK = 0;
        break;
    case 1:
        countFailure(ElfOpenFile(Settings.ElfToExecute));
        break;
    case 2:
        countFailure(BiosOpenFile(Driver.biosPath));
        break;
    case 3:
        allocateMemory();
        break;
    case 4:
        if (Driver.IsInitOK != 0) {
            failFor("FATAL ERROR while emulator initialisation....Sorry Exiting");
        }
        break;
    case 5:
        ElfLoadHeader();
        break;
    case 6:
        CopyProgramToMemory();
        break;
    case 7:
        CopySectionToMemory();
        break;
    case 8:
        CopyBiosToMemory();
        break;
    case 9:
        openRenderer();
        break;
    case 10:
        r5900::chooseProcessor(Settings.completeCpu == 1);
        r5900::describePlace = placeInProgram;
        setStartState(machine, MipsCpu.entry);
        break;
    case 11:
        TarnGUI.IdleProc = koGUI_TarnProc;
        MipsCpu.pause = 0;
        PrintToEmuOutput("Start Interpreter....");
        if (Driver.started != nullptr) {
            Driver.started();
        }
        break;
    default:
        break;
    }
}

void koGUI_TarnProc() {
    if (shutDownOnSignal()) {
        return;
    }
    if (machineRests()) {
        if (!Driver.restReported && Driver.reportRest != nullptr) {
            Driver.reportRest();
        }
        Driver.restReported = true;
    } else {
        Driver.restReported = false;
    }
    advanceRun();
    if (Driver.look != nullptr) {
        Driver.look();
    }
}

void koGUI_TarnEndingProc() {
    switch (Driver.tarnEndingState++) {
    case 0:
        PrintToEmuOutput("...Stop Interpreter");
        break;
    case 1:
        PrintfToEmuOutput("Stop at PC = 0x%8.8llx after %lld instructions \n", MipsCpu.PC,
                          static_cast<s64>(MipsCpu.cycle));
        break;
    case 2:
        ElfCloseFile();
        BiosCloseFile();
        break;
    case 3:
        FreeAllMemory();
        break;
    case 4:
        GSclose();
        break;
    case 5:
        SDL_Delay(Driver.farewell);
        break;
    case 6:
        TarnGUI.running = mainLoopEnds;
        break;
    default:
        break;
    }
}

}  // namespace tarn
