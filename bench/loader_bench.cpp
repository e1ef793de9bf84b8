// Loader benchmark: an ELF file with a segment of 16 MB.
#include "bench_machine.h"
#include "guest_loops.h"
#include "loader/copy.h"
#include "loader/input_files.h"
#include "machine/machine.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarn::bench {

namespace {

constexpr u32 segmentBytes = 16 << 20;

void loadElf(benchmark::State& state) {
    startMachine();
    char path[] = "/tmp/tarn-bench-XXXXXX";
    const int descriptor = mkstemp(path);
    const bool made = descriptor >= 0 && close(descriptor) == 0 &&
                      writeGuestElf(path, std::vector<u32>(segmentBytes / 4, 0x24420001), Ending::Console);
    if (!made) {
        state.SkipWithError("cannot write the file");
        return;
    }
    for (auto _ : state) {
        ElfOpenFile(path);
        ElfLoadHeader();
        CopyProgramToMemory();
        CopySectionToMemory();
        ElfCloseFile();
    }
    unlink(path);
    state.SetBytesProcessed(state.iterations() * segmentBytes);
}
BENCHMARK(loadElf)->Name("load/elf/16MB");

}  // namespace

}  // namespace tarn::bench
