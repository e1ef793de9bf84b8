// Decoding, and the pages of decoded instructions, which are created on first use and limited in number.
#include "r5900/decode_cache.h"

#include "r5900/observed_run.h"
#include "r5900/operation.h"
#include "r5900/pairs.h"
#include "r5900/run_stops.h"
#include "r5900/tables.h"
#include "r5900/threaded_interpreter.h"

#include <memory>

namespace tarn::r5900 {

namespace {

constexpr u32 mainMemoryPages = mainMemorySize / codePageBytes;

/// Enough for 2 MB of guest code, at most 16.8 MB of host memory.
constexpr u32 keptPages = 512;

struct KeptPage {
    std::unique_ptr<CodePage> page;
    u32 number = 0;  ///< of the page in main memory
};

std::array<KeptPage, keptPages> kept;
std::array<CodePage*, mainMemoryPages> pageByNumber{};
u32 next = 0;  // the oldest page, reused next once all are in use

/// Makes every instruction of a fresh page one that is decoded when it is first run. For words of 0 it counts
/// as decoded already, hence the routine.
void clearPage(CodePage& page) {
    page.fill({interrupted, noOperation.runInSlot, 0, {}, {}});
    for (u32 i = codePageWords; i < page.size(); ++i) {
        page[i].run = enterNextPage;
    }
}

CodePage* makePage(u32 number) {
    KeptPage& slot = kept[next];
    if (slot.page == nullptr) {
        slot.page.reset(new (std::nothrow) CodePage);
        if (slot.page == nullptr) {
            return nullptr;
        }
    } else {
        pageByNumber[slot.number] = nullptr;
    }
    next = (next + 1) % keptPages;
    slot.number = number;
    pageByNumber[number] = slot.page.get();
    clearPage(*slot.page);
    return slot.page.get();
}

}  // namespace

CodePage* codePageAt(u64 pc) {
    const auto number = static_cast<u32>(pc / codePageBytes);
    CodePage* page = pageByNumber[number];
    return page != nullptr ? page : makePage(number);
}

const Routines& routinesOf(u32 word) {
    if (word == 0) {
        return noOperation;
    }
    const Operation& operation = operationOf(word);
    if (operation.pausesOn(word)) {
        return plainRoutines;
    }
    return processor->isComplete && operation.namesR0(word) ? operation.routinesIntoR0 : operation.routines;
}

void decode(DecodedInstruction& instruction, u64 words, u64 pc) {
    const Routines& first = routinesOf(firstWord(words));
    const Routines& second = routinesOf(secondWord(words));
    if (instruction.run != enterNextPage) {
        instruction.run = pairOf(first.run, second.run);
    }
    instruction.runInSlot = second.runInSlot;
    instruction.words = words;
    first.setOperands(instruction.operands, firstWord(words));
    second.setOperands(instruction.nextOperands, secondWord(words));
    if (branchObserver != nullptr) {
        observe(instruction);
    }
    if (runStops != nullptr) {
        placeStop(instruction, pc);
    }
}

void dropDecodedInstructions() {
    for (const KeptPage& slot : kept) {
        if (slot.page != nullptr) {
            clearPage(*slot.page);
        }
    }
}

}  // namespace tarn::r5900
