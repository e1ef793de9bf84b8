// Vertical blanks, computed from the processor's step count.
#include "kernel.h"

/// The first is in step 28658; each of the others is a period later.
static u32 lastBlank = 28658 - stepsPerFrame;

void waitFrame(void) {
    u32 passed = (stepCount() - lastBlank) / stepsPerFrame;
    lastBlank += passed * stepsPerFrame;
    waitForStep(lastBlank + stepsPerFrame);
}
