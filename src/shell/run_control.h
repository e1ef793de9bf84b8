// What the keys make of the run: pausing, single steps, the way to the next vertical blank, the pace.
#pragma once

#include "machine/run_loop.h"
#include "shell/frame_pacer.h"

#include <optional>

namespace tarn {

enum class RunRequest : u8 { Pause, Resume, Step, NextBlank };

struct RunControl {
    std::optional<u64> endStep;   ///< the machine pauses when it has made so many steps
    std::optional<u64> endBlank;  ///< or when so many vertical blanks have come
    bool unpaced = false;
    bool pausedByKey = false;  ///< the pause that lasts is the user's, and no news
    FramePacer pacer;

    /// Makes up to so many driver steps, ending early as runSteps does.
    void (*advance)(u64 steps) = [](u64 steps) { runSteps(steps); };
    /// Who else controls the machine is asked about a request first; true when it has seen to it. Null:
    /// nobody else does.
    bool (*seesTo)(RunRequest request) = nullptr;
    /// Whether it holds the machine where it is.
    bool (*holds)() = nullptr;
};

/// Does what a key asks for.
void request(RunRequest what);

/// From as fast as possible to paced, and back.
void togglePace();

/// Vertical blanks shown per second at most; 0: any number.
u32 shownRate();

/// Whether the machine makes no steps until somebody says so.
bool machineStands();

/// A part of the run that is short enough to look at input after it.
void advanceRun();

}  // namespace tarn
