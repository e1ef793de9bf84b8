// Holds the runner against plain steps, to the last word: random programs are run in both ways from the same
// state, and everything that a guest or a user can see must agree whenever a run ends. TARN_CASE=N runs case
// N alone; TARN_CASES=N sets how many there are.
#include "gs/gs_state.h"
#include "gui/text_sinks.h"
#include "r5900/instruction.h"
#include "r5900/tables.h"
#include "shell/driver.h"

#include <algorithm>
#include <cstdlib>
#include <sys/mman.h>

namespace tarn {
namespace {

using namespace test;

constexpr u64 stepsPerCase = 400;
constexpr u32 pageBytes = 4096;
constexpr u32 dataAddress = 0x00104000;

/// Main memory that is zero again at little cost, and that knows which pages have been touched.
class SparseMemory {
  public:
    ~SparseMemory() { munmap(bytes, mainMemorySize); }

    void clear() { madvise(bytes, mainMemorySize, MADV_DONTNEED); }

    /// The page in which two memories differ, or their size.
    static u32 differentPage(const SparseMemory& one, const SparseMemory& other) {
        const std::vector<u8> touchedByOne = one.touchedPages(), touchedByOther = other.touchedPages();
        u32 at = 0;
        while (at < mainMemorySize &&
               (((touchedByOne[at / pageBytes] | touchedByOther[at / pageBytes]) & 1) == 0 ||
                std::memcmp(one.bytes + at, other.bytes + at, pageBytes) == 0)) {
            at += pageBytes;
        }
        return at;
    }

    u8* const bytes = static_cast<u8*>(mmap(nullptr, mainMemorySize, PROT_READ | PROT_WRITE,
                                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));

  private:
    std::vector<u8> touchedPages() const {
        std::vector<u8> touched(mainMemorySize / pageBytes);
        mincore(bytes, mainMemorySize, touched.data());
        return touched;
    }
};

/// The records that steps change, padding included.
class Records {
  public:
    void take() {
        cpu = MipsCpu;
        copy([](u8* image, void* record, std::size_t size) { std::memcpy(image, record, size); });
    }
    void restore() {
        copy([](u8* image, void* record, std::size_t size) { std::memcpy(record, image, size); });
    }
    /// Names what differs from what it should be; empty when nothing does.
    std::string difference(const Records& other) const {
        if (images == other.images) {
            return "";
        }
        std::string text = "records differ:";
        const auto value = [&text](const std::string& name, u64 one, u64 two) {
            text += one == two ? "" : " " + name + " " + hex(one) + " instead of " + hex(two);
        };
        value("PC", cpu.PC, other.cpu.PC);
        value("cycle", cpu.cycle, other.cpu.cycle);
        value("opcode", cpu.opcode, other.cpu.opcode);
        value("pause", cpu.pause, other.cpu.pause);
        for (u32 i = 0; i < cpu.GPR.size(); ++i) {
            value("r" + std::to_string(i), cpu.GPR[i].low, other.cpu.GPR[i].low);
        }
        return text;
    }

  private:
    template <class Copy>
    void copy(Copy copyOne) {
        u8* image = images.data();
        const auto next = [&](auto& record) {
            copyOne(image, static_cast<void*>(&record), sizeof record);
            image += sizeof record;
        };
        next(MipsCpu), next(Ps2Bios), next(Gs), next(nb_dma_transfert), next(verticalBlanks);
    }

    MipsCpuRecord cpu;
    std::array<u8,
               sizeof MipsCpu + sizeof Ps2Bios + sizeof Gs + sizeof nb_dma_transfert + sizeof verticalBlanks>
        images;
};

/// A program with the state that it starts from, and how it is cut into runs.
class Case {
  public:
    explicit Case(u32 number) : state(u64{number} << 32) {}

    /// Puts program and data into `memory` and the start state into the records.
    void build(u8* memory) {
        codeAddress = pick({0x00100000, 0x00100F80, 0x00103FF0 - 0x80, 0x00000F00, mainMemorySize - 0x2200,
                            mainMemorySize - 0x1080, mainMemorySize - codeWords * 4});
        codeBase = codeAddress + below(codeWords) * 4;
        for (position = 0; position < codeWords; ++position) {
            storeTo(memory, codeAddress + position * 4, instruction());
        }
        for (u32 i = 0; i < 512; i += 4) {
            storeTo(memory, dataAddress + i, oneIn(2) ? instruction() : random());
        }
        for (GuestValue& reg : MipsCpu.GPR) {
            reg = {number64(), number64()};
        }
        for (u8 i = firstPointer; i < firstPointer + pointers.size(); ++i) {
            MipsCpu.GPR[i].low = pointers[i - firstPointer];
        }
        MipsCpu.GPR[codePointer].low = codeBase;
        MipsCpu.GPR[jumpPointer].low = codeAddress + below(codeWords) * 4 + (oneIn(30) ? below(4) : 0);
        MipsCpu.GPR[instructionHolder].low = instruction();
        MipsCpu.GPR[r0].low = oneIn(4) ? number64() : 0;
        for (u8 i = 0; i < 32; ++i) {
            MipsCpu.FPR32[i] = std::bit_cast<f32>(oneIn(4) ? random() : 0x3F800000 + below(0x3000000));
            MipsCpu.FPR128[i].low = MipsCpu.FPR32Ptr(i);
        }
        MipsCpu.CP0[12][0] = 0x10900001;
        MipsCpu.HI = {number64(), number64()};
        MipsCpu.LO = {number64(), number64()};
        MipsCpu.PC = codeAddress + below(8) * 4 + (oneIn(50) ? below(4) : 0) +
                     (oneIn(100) ? u64{1} << 32 : 0) + (oneIn(100) ? 0x80000000 : 0);
        Ps2Bios.vsyncCountdown = 10 + below(oneIn(2) ? 300 : 30000);
        Ps2Bios.dmacHandler[5].handlerAddress = codeAddress + below(codeWords) * 4;
        Settings.debug_gs = oneIn(8) ? 1 : 0;
        Settings.debug_dma = oneIn(8) ? 1 : 0;
        Settings.debug_print_syscall = oneIn(2) ? 1 : 0;
    }

    /// How long the next run is to be, and whether a pause at its end is passed over or tried again.
    u64 nextLimit() { return oneIn(3) ? 1 + below(4) : 1 + below(120); }
    bool skipsPause() { return !oneIn(4); }

  private:
    /// A generator that costs nothing to seed.
    u32 random() {
        u64 mixed = state += 0x9E3779B97F4A7C15;
        mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
        return static_cast<u32>(mixed >> 32);
    }
    u32 below(u64 limit) { return static_cast<u32>(random() % limit); }
    bool oneIn(u32 chance) { return below(chance) == 0; }
    u32 pick(std::initializer_list<u32> values) { return std::data(values)[below(values.size())]; }
    u64 number64() {
        const u32 boundary = pick({0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF});
        const u64 numbers[] = {below(16), signExtend32(random()), signExtend32(boundary),
                               u64{random()} << 32 | random(), u64{boundary} << 32 | below(4)};
        return numbers[below(5)];
    }

    // Registers that random instructions seldom write: addresses of every kind of place, and of code.
    static constexpr u8 firstPointer = 16, codePointer = 26, jumpPointer = 27, instructionHolder = 28;
    static constexpr std::array<u64, 10> pointers{
        dataAddress,               // main memory in its first view,
        0x80000000 + dataAddress,  // in the kernel segment,
        0x20000000 + dataAddress,  // in a mirror,
        0x1000A010,                // DMA channel 2
        0x1000C010,                // and 5
        0x12000080,                // the display's registers
        0x1FC00010,                // the BIOS image
        mainMemorySize - 16,       // the end of main memory
        0x9FC00010,                // the BIOS image for loads, main memory for stores
        0xFFFFFFFFA0100000,        // nothing
    };

    u32 anyRegister() { return oneIn(12) ? below(32) : below(16); }
    u32 pointer() {
        return oneIn(12) ? below(32) : oneIn(3) ? codePointer : firstPointer + below(3 + below(8));
    }

    u32 memoryInstruction() {
        static constexpr u32 codes[] = {26, 27, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39,
                                        40, 41, 42, 43, 44, 45, 46, 49, 55, 57, 63};
        const u32 base = pointer();
        if (base == codePointer && oneIn(2)) {  // a store just ahead of itself
            return immediate(43, base, instructionHolder,
                             codeAddress + (position + 1 + below(3)) * 4 - codeBase);
        }
        return immediate(codes[below(std::size(codes))], base,
                         oneIn(3) ? u32{instructionHolder} : anyRegister(),
                         oneIn(4) ? below(64) : below(16) * 4);
    }

    u32 instruction() {
        static constexpr u32 specialCodes[] = {0,  2,  3,  4,  6,  7,  10, 11, 16, 18, 24, 26, 27, 29, 32,
                                               33, 34, 35, 36, 37, 38, 42, 43, 45, 47, 56, 58, 60, 62, 63};
        const u32 displacement = below(12) - (oneIn(3) ? 10 : 0);
        const u32 kind = below(32);
        if (kind < 6) {
            return immediate(8 + below(8), anyRegister(), anyRegister(), random());
        }
        if (kind < 12) {
            return special(specialCodes[below(std::size(specialCodes))], anyRegister(), anyRegister(),
                           anyRegister(), below(32));
        }
        if (kind < 18) {
            return memoryInstruction();
        }
        if (kind < 22) {
            return immediate(4 + below(4) + (oneIn(3) ? 16 : 0), anyRegister(), oneIn(2) ? 0 : anyRegister(),
                             displacement);
        }
        if (kind < 24) {
            return pick({regimm(below(4), anyRegister(), displacement),
                         jump(2 + below(2), codeAddress / 4 + below(codeWords)),
                         special(8, jumpPointer, 0, 0),
                         special(9, oneIn(2) ? u32{jumpPointer} : u32{codePointer}, 0,
                                 oneIn(2) ? 31 : anyRegister())});
        }
        if (kind < 26) {
            return single(pick({0, 1, 2, 3, 6, 7, 36, 50, 52}), below(32), below(32),
                          oneIn(20) ? below(32) : below(4) & ~3U);
        }
        if (kind < 28) {
            return pick({coprocessor1(8, below(4) | (oneIn(20) ? 4 : 0), displacement),
                         coprocessor1(oneIn(2) ? 0 : 4, anyRegister(), below(32) << 11),
                         coprocessor1(20, below(32), below(32) << 11 | below(32) << 6 | 32)});
        }
        if (kind < 30) {
            return pick({0, 0, special(15, 0, 0, 0), immediate(47, 0, 0, 0), immediate(16, 16, 0, 56),
                         immediate(16, 16, 0, 57),
                         immediate(16, 0, anyRegister(), below(32) << 11 | below(8)),
                         immediate(28, anyRegister(), anyRegister(), anyRegister() << 11 | 24),
                         immediate(25, anyRegister(), anyRegister(), random())});
        }
        return oneIn(3) ? random() : oneIn(2) ? special(12, 0, 0, 0) : special(39, 1, 2, 3);
    }

    static constexpr u32 codeWords = 96;
    u64 state;
    u32 codeAddress = 0;
    u32 codeBase = 0;  ///< what the pointer into the code holds
    u32 position = 0;  ///< of the word that is being made
};

/// What the driver says runs of many steps are.
u64 runStepsPlainly(u64 limit) {
    paneChanged = false;
    u64 steps = 0;
    while (steps < limit && MipsCpu.pause == 0 && !paneChanged) {
        driverStep();
        ++steps;
    }
    return steps;
}

/// Standard output, kept in memory while one of these lives.
class KeptOutput {
  public:
    KeptOutput() { stdout = open_memstream(&text, &size); }
    ~KeptOutput() {
        std::fclose(stdout);
        stdout = original;
        std::free(text);
    }

    std::string take() {
        std::fflush(stdout);
        std::string taken(text, size);
        std::rewind(stdout);
        return taken;
    }

  private:
    std::FILE* const original = stdout;
    char* text = nullptr;
    std::size_t size = 0;
};

/// One way of running a case: what there was to see at the end of each run.
struct Observation {
    struct Run {
        u64 limit = 0;
        u64 steps = 0;
        Records records;
    };
    std::vector<Run> runs = std::vector<Run>(stepsPerCase);
    std::size_t count = 0;  ///< of the runs
    std::vector<u8> specialArea;
    std::string output;
    SparseMemory memory;

    void make(u32 number, Records& start, u64 (*run)(u64), KeptOutput& kept) {
        count = 0;
        start.restore();
        std::memset(SpecialAreaMemory, 0, specialAreaSize);
        makePanes();
        memory.clear();
        MipsMemory = memory.bytes;
        Case the(number);
        the.build(memory.bytes);
        for (u64 done = 0; done < stepsPerCase;) {
            Run& entry = runs[count++];
            entry.limit = the.nextLimit();
            entry.steps = run(entry.limit);
            entry.records.take();
            done += std::max<u64>(entry.steps, 1);
            if (MipsCpu.pause != 0 && the.skipsPause()) {
                MipsCpu.PC += 4;
            }
            MipsCpu.pause = 0;
        }
        specialArea.assign(SpecialAreaMemory, SpecialAreaMemory + specialAreaSize);
        output = kept.take() + joined(paneLines(paneEmuOutput));
    }

    /// What differs from what it should be; empty when nothing does.
    std::string difference(const Observation& other) const {
        for (std::size_t i = 0; i < other.count; ++i) {
            std::string text = runs[i].records.difference(other.runs[i].records);
            if (runs[i].steps != other.runs[i].steps) {
                text += std::to_string(runs[i].steps) + " steps instead of " +
                        std::to_string(other.runs[i].steps);
            }
            if (!text.empty()) {
                return "run " + std::to_string(i) + " of up to " + std::to_string(runs[i].limit) + ": " +
                       text;
            }
        }
        if (const u32 at = SparseMemory::differentPage(memory, other.memory); at != mainMemorySize) {
            return "memory differs in the page at " + hex(at);
        }
        return specialArea != other.specialArea ? "the special area differs"
               : output != other.output         ? "output differs:\n" + output + "instead of\n" + other.output
                                                : "";
    }
};

TEST_F(MachineTest, RunsOfManyStepsAreWhatSingleStepsAre) {
    u8* const allocated = MipsMemory;
    for (u32 i = 0; i < biosMemorySize; ++i) {
        BiosMemory[i] = static_cast<u8>(i * 37);
    }
    Records start;
    start.take();
    Observation plain, fast;
    const char *only = std::getenv("TARN_CASE"), *many = std::getenv("TARN_CASES");
    const u32 first = only != nullptr ? static_cast<u32>(std::stoul(only)) : 0;
    const u32 count = only != nullptr ? 1 : many != nullptr ? static_cast<u32>(std::stoul(many)) : 20000;
    std::string complaint;
    u64 steps = 0;
    for (u32 number = first; number < first + count && complaint.empty(); ++number) {
        KeptOutput kept;
        plain.make(number, start, runStepsPlainly, kept);
        fast.make(number, start, runSteps, kept);
        if (complaint = fast.difference(plain); !complaint.empty()) {
            complaint = "case " + std::to_string(number) + ", " + complaint;
        }
        for (std::size_t i = 0; i < plain.count; ++i) {
            steps += plain.runs[i].steps;
        }
    }
    MipsMemory = allocated;
    EXPECT_EQ(complaint, "");
    EXPECT_GT(steps, u64{count} * stepsPerCase / 4) << "the cases stop too early to show much";
}

}  // namespace
}  // namespace tarn
