// Interpreter benchmarks: each loop by single instructions, by driver steps and by batches.
// One item is one iteration of the loop, which is also the unit for a MIPS user-mode emulator.
#include "bench_machine.h"
#include "guest_code.h"
#include "guest_loops.h"
#include "machine/machine.h"
#include "machine/run_loop.h"
#include "r5900/interpreter.h"
#include "shell/driver.h"

#include <benchmark/benchmark.h>
#include <string>

namespace tarn::bench {

namespace {

constexpr u32 endless = 0x7FFFFFFF;  // iterations, more than a measurement makes
constexpr u64 batch = 8192;

void stepCpu() {
    for (u64 i = 0; i < batch; ++i) {
        MipsUpdateCpu();
    }
}

void stepDriver() {
    for (u64 i = 0; i < batch; ++i) {
        driverStep();
    }
}

void runBatch() {
    for (u64 done = 0; done < batch;) {
        done += runSteps(batch - done);
    }
}

void measure(benchmark::State& state, const GuestLoop& loop, void (*run)()) {
    startMachine();
    const std::vector<u32> program = guestProgram(loop, endless, Ending::LinuxO32);
    u64 turns = 0;
    u64 instructions = 0;
    for (auto _ : state) {
        if (MipsCpu.GPR[t0].low < batch) {  // before the first turn, too
            loadGuest(program);
            MipsCpu.cycle = 0;
            run();
        }
        const u64 turnsLeft = MipsCpu.GPR[t0].low;
        const u64 before = MipsCpu.cycle;
        run();
        turns += turnsLeft - MipsCpu.GPR[t0].low;
        instructions += MipsCpu.cycle - before;
    }
    if (MipsCpu.pause != 0) {
        state.SkipWithError("the guest has stopped");
    }
    state.SetItemsProcessed(static_cast<s64>(turns));
    state.counters["instructions"] =
        benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
}

struct Way {
    const char* name;
    void (*run)();
};

const bool registered = [] {
    for (const GuestLoop& loop : guestLoops) {
        for (const Way& way :
             {Way{"MipsUpdateCpu", stepCpu}, Way{"driverStep", stepDriver}, Way{"runSteps", runBatch}}) {
            const std::string name = "cpu/" + std::string(loop.name) + "/" + way.name;
            benchmark::RegisterBenchmark(name.c_str(), measure, loop, way.run);
        }
    }
    return true;
}();

}  // namespace

}  // namespace tarn::bench
