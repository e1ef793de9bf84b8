// The program without a window.
#include "shell/headless.h"
#include "shell/session.h"

#include <cstdio>

int main(int count, char** arguments) {
    using namespace tarn;
    prepareProcess();
    const std::optional<HeadlessOptions> options = parseHeadlessOptions(count, arguments);
    if (!options) {
        return 2;
    }
    if (options->help) {
        printHeadlessUsage();
        return finishStandardOutput(0);
    }
    if (options->version) {
        std::printf("tarn-headless %d.%d\n", versionMajor, versionMinor);
        return finishStandardOutput(0);
    }
    return finishStandardOutput(runHeadless(*options));
}
