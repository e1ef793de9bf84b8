// Holds the runner against plain steps, to the last word: random programs are run in both ways from the same
// state, by turns, and everything that a guest or a user can see must agree whenever a run ends. TARN_CASE=N
// runs case N alone; TARN_CASES=N sets how many there are.
#include "base/diagnostics.h"
#include "machine/machine.h"
#include "r5900/instruction.h"
#include "r5900/operation.h"
#include "r5900/tables.h"
#include "shell/driver.h"

#include <algorithm>
#include <cstdlib>
#include <sys/mman.h>

namespace tarn::test {
namespace {

constexpr u64 stepsPerCase = 400;
constexpr u32 pageBytes = 4096;
constexpr u32 dataAddress = 0x00104000;

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
        if (r5900::processor->isComplete) {
            MipsCpu.GPR[r0] = {};
        }
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
        specialAreaFirst + dma_register::D2_MADR,
        specialAreaFirst + dma_register::D5_MADR,
        gs_privileged::DISPLAY1,
        0x1FC00010,           // the BIOS image
        mainMemorySize - 16,  // the end of main memory
        0x9FC00010,           // the BIOS image for loads, main memory for stores
        0xFFFFFFFFA0100000,   // nothing
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

    /// Words from all over the tables of the complete processor.
    u32 completeInstruction() {
        const u32 fields = anyRegister() << 11 | below(32) << 6 | below(64);
        switch (below(6)) {
        case 0:
            return special(below(64), anyRegister(), anyRegister(), anyRegister(), below(32));
        case 1:
            return regimm(below(32), anyRegister(), below(12));
        case 2:
            return coprocessor1(16, below(32), fields);
        case 3:
            return pick(
                {coprocessor1(oneIn(2) ? 2 : 6, anyRegister(), 31 << 11), coprocessor1(8, 2, below(12)),
                 immediate(16, oneIn(2) ? 4 : 0, anyRegister(), 9 << 11),
                 immediate(pick({23, 24, 51}), anyRegister(), oneIn(2) ? 0 : anyRegister(), below(12))});
        default:
            return immediate(28, anyRegister(), anyRegister(), fields);
        }
    }

    u32 instruction() {
        if (r5900::processor->isComplete && oneIn(3)) {
            return completeInstruction();
        }
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

/// The records that steps change, padding included.
using Records = std::array<u8, sizeof MipsCpu + sizeof Ps2Bios + sizeof Gs + sizeof nb_dma_transfert +
                                   sizeof verticalBlanks>;

void exchange(Records& records) {
    u8* at = records.data();
    const auto next = [&at](auto& record) {
        u8 before[sizeof record];
        std::memcpy(before, &record, sizeof record);
        std::memcpy(static_cast<void*>(&record), at, sizeof record);
        at = std::copy_n(before, sizeof record, at);
    };
    next(MipsCpu), next(Ps2Bios), next(Gs), next(nb_dma_transfert), next(verticalBlanks);
}

/// One of two machines that take turns, and what its last run showed.
class Machine {
  public:
    explicit Machine(u64 (*runner)(u64)) : runSteps(runner) {}
    ~Machine() { munmap(memory, mainMemorySize); }

    void start(u32 number, const Records& startState) {
        program = Case(number);
        madvise(memory, mainMemorySize, MADV_DONTNEED);  // zero again, at little cost
        specialArea.allocate(specialAreaSize);
        records = startState;
        exchange(records);
        program.build(memory);
        exchange(records);
    }

    /// Makes a run, of which standard output receives what it prints.
    void run() {
        Buffer mainMemory = std::exchange(MipsMemory, Buffer::adopting(memory, mainMemorySize));
        std::swap(SpecialAreaMemory, specialArea);
        exchange(records);
        if (MipsCpu.pause != 0 && program.skipsPause()) {
            MipsCpu.PC += 4;
        }
        MipsCpu.pause = 0;
        makePanes();
        steps = runSteps(program.nextLimit());
        lines = paneLines(emuOutputPane);
        exchange(records);
        std::swap(SpecialAreaMemory, specialArea);
        MipsMemory.giveUp();
        MipsMemory = std::move(mainMemory);
    }

    bool showsTheSame(const Machine& other) const {
        return records == other.records && steps == other.steps && lines == other.lines;
    }

    /// Compares main memory where either has touched it.
    bool holdsTheSame(const Machine& other) const {
        std::array<u8, mainMemorySize / pageBytes> touched, touchedByOther;
        mincore(memory, mainMemorySize, touched.data());
        mincore(other.memory, mainMemorySize, touchedByOther.data());
        for (u32 page = 0; page < touched.size(); ++page) {
            if (((touched[page] | touchedByOther[page]) & 1) != 0 &&
                std::memcmp(memory + page * pageBytes, other.memory + page * pageBytes, pageBytes) != 0) {
                return false;
            }
        }
        return std::memcmp(specialArea, other.specialArea, specialAreaSize) == 0;
    }

    u64 steps = 0;
    Records records;

  private:
    u64 (*const runSteps)(u64);
    Case program = Case(0);
    Lines lines;
    Buffer specialArea;
    u8* const memory = static_cast<u8*>(mmap(nullptr, mainMemorySize, PROT_READ | PROT_WRITE,
                                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
};

class Runner : public MachineTest {
  protected:
    Runner() {
        exchange(startState);
        stdout = open_memstream(&text, &size);
    }
    ~Runner() override {
        r5900::chooseProcessor(false);
        exchange(startState);
        std::fclose(std::exchange(stdout, standardOutput));
        std::free(text);
    }

    /// Makes a run and returns what it prints.
    std::string outputOf(Machine& machine) {
        std::rewind(stdout);
        machine.run();
        std::fflush(stdout);
        return {text, size};
    }

    /// Compares so many cases.
    void compare(u32 cases) {
        const char *only = std::getenv("TARN_CASE"), *many = std::getenv("TARN_CASES");
        const u32 first = only != nullptr ? static_cast<u32>(std::stoul(only)) : 0;
        const u32 count = only != nullptr ? 1 : many != nullptr ? static_cast<u32>(std::stoul(many)) : cases;
        u64 steps = 0;
        for (u32 number = first; number < first + count; ++number) {
            plain.start(number, startState);
            fast.start(number, startState);
            for (u64 done = 0; done < stepsPerCase; done += std::max<u64>(plain.steps, 1)) {
                const std::string expected = outputOf(plain);
                ASSERT_EQ(outputOf(fast), expected) << "case " << number;
                ASSERT_TRUE(fast.showsTheSame(plain)) << "case " << number << " at step " << done;
                steps += plain.steps;
            }
            ASSERT_TRUE(fast.holdsTheSame(plain)) << "case " << number;
        }
        EXPECT_GT(steps, u64{count} * stepsPerCase / 4) << "the cases stop too early to show much";
    }

    Records startState{};
    Machine plain{runStepsPlainly}, fast{runSteps};
    std::FILE* const standardOutput = stdout;
    char* text = nullptr;
    std::size_t size = 0;
};

TEST_F(Runner, RunsOfManyStepsAreWhatSingleStepsAre) {
    for (u32 i = 0; i < biosMemorySize; ++i) {
        BiosMemory[i] = static_cast<u8>(i * 37);
    }
    compare(20000);
}

TEST_F(Runner, RunsOfTheCompleteProcessorAreWhatItsSingleStepsAre) {
    r5900::chooseProcessor(true);
    compare(4000);
}

}  // namespace
}  // namespace tarn::test
