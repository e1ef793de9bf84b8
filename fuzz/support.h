// What the fuzz targets share: a machine that lives through all inputs, silence on standard output, inputs as
// files, and taking values off an input.
#pragma once

#include "machine/machine.h"
#include "support/machine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <span>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarn::fuzz {

/// Whole pages for a buffer of the machine, between pages that may not be touched: an access outside the
/// buffer ends the process, and clearing it costs only what was touched. Buffers are at the end of theirs.
inline void* guardedPages(std::size_t bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t size = (bytes + page - 1) / page * page;
    void* memory = mmap(nullptr, size + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    u8* first = static_cast<u8*>(memory) + page;
    if (memory == MAP_FAILED || mprotect(first, size, PROT_READ | PROT_WRITE) != 0) {
        std::abort();
    }
    return first + (size - bytes);
}

/// Sets the machine up once. Its buffers stay for the life of the process.
inline void start() {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) {
        std::abort();
    }
    test::resetMachine();
    allocateBuffer = guardedPages;
    freeBuffer = [](void*, std::size_t) {};
    test::allocateMachine();
}

/// Zeroes the pages of a buffer that were touched, and returns how many.
inline std::size_t clearPages(std::span<u8> buffer) {
    static std::vector<u8> touched;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    touched.assign(buffer.size() / page, 0);
    if (mincore(buffer.data(), buffer.size(), touched.data()) != 0) {
        std::abort();
    }
    std::size_t count = 0;
    for (auto next = touched.begin(); (next = std::find(next, touched.end(), 1)) != touched.end(); ++next) {
        std::memset(&buffer[static_cast<std::size_t>(next - touched.begin()) * page], 0, page);
        ++count;
    }
    return count;
}

/// Zeroes main memory, the special area and local memory. Touched pages are given back only now and then, for
/// touching one again costs as much as clearing it some fifty times.
inline void clearMemory() {
    constexpr std::size_t clearedAtMost = 0x10000;
    static std::size_t cleared = 0;
    const auto spanOf = [](u8* start, std::size_t size) { return std::span(start, size); };
    const std::array areas{spanOf(MipsMemory, mainMemorySize), spanOf(SpecialAreaMemory, specialAreaSize),
                           spanOf(Gs.vRam, localMemoryBytes)};
    for (const std::span<u8> area : areas) {
        cleared += clearPages(area);
    }
    if (cleared > clearedAtMost) {
        cleared = 0;
        for (const std::span<u8> area : areas) {
            if (madvise(area.data(), area.size(), MADV_DONTNEED) != 0) {
                std::abort();
            }
        }
    }
}

/// Puts the renderer's records back as at the start of the process and initialises them, without another
/// local memory.
inline void restartRenderer() {
    static void* memory = nullptr;
    memory = static_cast<u8*>(Gs.vRam);
    GSreset();  // which frees nothing here
    const auto allocate = std::exchange(allocateBuffer, [](std::size_t) { return memory; });
    GSinit();
    allocateBuffer = allocate;
}

/// A file in memory whose contents change from input to input; its path can be opened like any other.
class MemoryFile {
  public:
    MemoryFile()
        : descriptor(memfd_create("fuzz", MFD_CLOEXEC)), name("/proc/self/fd/" + std::to_string(descriptor)) {
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void assign(std::span<const u8> contents) const {
        const auto size = static_cast<off_t>(contents.size());
        if (ftruncate(descriptor, size) != 0 ||
            pwrite(descriptor, contents.data(), contents.size(), 0) != size) {
            std::abort();
        }
    }
    const char* path() const { return name.c_str(); }

  private:
    int descriptor;
    std::string name;
};

/// Takes values off the front of an input; zeros once it is used up.
class Input {
  public:
    explicit Input(std::span<const u8> data) : rest(data) {}

    bool empty() const { return rest.empty(); }
    std::span<const u8> remaining() const { return rest; }

    template <typename T>
    T take() {
        T value{};
        const std::size_t size = std::min(sizeof value, rest.size());
        std::memcpy(&value, rest.data(), size);
        rest = rest.subspan(size);
        return value;
    }

    /// A value that one byte of input selects from a table, or four bytes spell out.
    template <std::size_t count>
    u32 pick(const u32 (&table)[count]) {
        const u8 choice = take<u8>();
        return choice < count ? table[choice] : take<u32>();
    }

  private:
    std::span<const u8> rest;
};

/// Stops the fuzzer with this input.
inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

/// Fails when the processor time of its life is more than the work that the machine has counted in it
/// explains.
class WorkTimer {
  public:
    WorkTimer() = default;
    ~WorkTimer() {
        constexpr double most = 5, secondsPerWord = 1e-7;  // under sanitizers, on a busy host
        const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        require(seconds < most + secondsPerWord * static_cast<double>(Gs.work - work),
                "the time of the work");
    }
    WorkTimer(const WorkTimer&) = delete;
    WorkTimer& operator=(const WorkTimer&) = delete;

  private:
    std::clock_t start = std::clock();
    u64 work = Gs.work;
};

}  // namespace tarn::fuzz
