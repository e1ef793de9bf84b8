// Vertical blanks, which the processor's count of steps tells.
#include "kernel.h"

/// The first comes with step 28658, the others a period later each.
static u32 lastBlank = 28658 - stepsPerFrame;

void waitFrame(void) {
    u32 passed = (stepCount() - lastBlank) / stepsPerFrame;
    lastBlank += passed * stepsPerFrame;
    waitForStep(lastBlank + stepsPerFrame);
}
