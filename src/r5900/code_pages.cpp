// Owns the pages of decoded instructions: made when code is first run there, and bounded in number.
#include "r5900/predecoded.h"

#include <memory>
#include <new>

namespace tarn::r5900 {

namespace {

constexpr u32 mainMemoryPages = mainMemorySize / codePageBytes;

/// Pages kept: 2 MB of guest code, for 12 MB of the host's memory at most.
constexpr u32 keptPages = 512;

struct KeptPage {
    std::unique_ptr<CodePage> page;
    u32 number = 0;  ///< of the page of main memory that it stands for
};

std::array<KeptPage, keptPages> kept;
std::array<CodePage*, mainMemoryPages> pageByNumber{};
u32 next = 0;  // the page given up next, once all are in use: the oldest

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
    clearCodePage(*slot.page);
    return slot.page.get();
}

}  // namespace

CodePage* codePageAt(u64 pc) {
    const auto number = static_cast<u32>(pc / codePageBytes);
    CodePage* page = pageByNumber[number];
    return page != nullptr ? page : makePage(number);
}

}  // namespace tarn::r5900
