// What every fuzz target does before its first input.
#include "support.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    tarn::fuzz::start();
    return 0;
}
