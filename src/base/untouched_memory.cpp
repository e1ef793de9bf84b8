// Reading the page tables of this process, as Linux shows them in /proc/self/pagemap.
#include "base/untouched_memory.h"

#include "base/file.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <unistd.h>

namespace tarn {
namespace {

constexpr u64 isPresent = u64{1} << 63, isSwapped = u64{1} << 62;

u64 pageOf(const u8* byte) {
    static const u64 pageBytes = static_cast<u64>(sysconf(_SC_PAGESIZE));
    return std::bit_cast<u64>(byte) / pageBytes;
}

}  // namespace

UntouchedMemory::UntouchedMemory(std::span<const u8> buffer) {
    const FilePtr table(buffer.empty() ? nullptr : std::fopen("/proc/self/pagemap", "rb"));
    if (table == nullptr) {
        return;
    }
    firstPage = pageOf(&buffer.front());
    pages.resize(pageOf(&buffer.back()) - firstPage + 1);
    std::setvbuf(table.get(), nullptr, _IONBF, 0);
    if (std::fseek(table.get(), static_cast<long>(firstPage * sizeof(u64)), SEEK_SET) != 0 ||
        std::fread(pages.data(), sizeof(u64), pages.size(), table.get()) != pages.size()) {
        pages.clear();
    }
}

bool UntouchedMemory::holds(std::span<const u8> part) const {
    if (part.empty() || pages.empty()) {
        return false;
    }
    const auto first = pages.begin() + static_cast<std::ptrdiff_t>(pageOf(&part.front()) - firstPage);
    const auto last = pages.begin() + static_cast<std::ptrdiff_t>(pageOf(&part.back()) - firstPage);
    return std::all_of(first, last + 1, [](u64 entry) { return (entry & (isPresent | isSwapped)) == 0; });
}

}  // namespace tarn
