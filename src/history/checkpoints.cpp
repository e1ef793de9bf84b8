// Taking, restoring and thinning checkpoints.
#include "history/checkpoints.h"

#include "base/untouched_memory.h"
#include "gs/display.h"
#include "history/machine_state.h"
#include "machine/machine.h"

#include <algorithm>
#include <cstring>

namespace tarn::history {

PagePool::PagePool() { pages.push_back({std::make_unique<std::array<u8, pageBytes>>(), 1}); }

PagePool::Number PagePool::add(std::span<const u8> bytes) {
    Number number = static_cast<Number>(pages.size());
    if (unused.empty()) {
        pages.emplace_back();
    } else {
        number = unused.back();
        unused.pop_back();
    }
    Page& page = pages[number];
    page.bytes = std::make_unique_for_overwrite<std::array<u8, pageBytes>>();
    std::ranges::copy(bytes, page.bytes->begin());
    page.users = 1;
    return number;
}

void PagePool::release(Number number) {
    if (--pages[number].users == 0) {
        pages[number].bytes.reset();
        unused.push_back(number);
    }
}

template <typename Visit>
void Checkpoints::forEachPage(Visit visit) const {
    std::vector<std::span<u8>> buffers = buffersOf(machine);
    buffers.push_back(picture);
    for (const std::span<u8> buffer : buffers) {
        const UntouchedMemory untouched(buffer);
        for (std::size_t first = 0; first < buffer.size(); first += PagePool::pageBytes) {
            const std::span<u8> page =
                buffer.subspan(first, std::min(PagePool::pageBytes, buffer.size() - first));
            visit(page, untouched.holds(page));
        }
    }
}

std::size_t Checkpoints::indexAtOrBefore(u64 step) const {
    const auto after =
        std::upper_bound(list.begin(), list.end(), step,
                         [](u64 value, const Checkpoint& point) { return value < point.step; });
    return static_cast<std::size_t>(after - list.begin()) - 1;
}

void Checkpoints::clear() {
    while (!list.empty()) {
        remove(list.size() - 1);
    }
}

void Checkpoints::remove(std::size_t index) {
    for (const PagePool::Number page : list[index].pages) {
        pool.release(page);
    }
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
}

void Checkpoints::take() {
    Checkpoint taken{machine.counters.driverSteps, machine.counters.verticalBlanks, saveRecords(machine), {}};
    const Checkpoint* before = nullptr;
    std::size_t index = 0;
    if (!list.empty() && list.front().step <= taken.step) {
        index = indexAtOrBefore(taken.step);
        before = &list[index++];
        if (before->step == taken.step) {
            return;
        }
    }
    presentPicture();
    forEachPage([&](std::span<const u8> bytes, bool isUntouched) {
        const auto holds = [&](PagePool::Number page) {
            return isUntouched ? page == 0 : std::memcmp(pool.at(page), bytes.data(), bytes.size()) == 0;
        };
        const PagePool::Number former = before != nullptr ? before->pages[taken.pages.size()] : 0;
        if (holds(former)) {
            pool.share(former);
            taken.pages.push_back(former);
        } else if (former != 0 && holds(0)) {
            pool.share(0);
            taken.pages.push_back(0);
        } else {
            taken.pages.push_back(pool.add(bytes));
        }
    });
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(index), std::move(taken));
    thin();
}

u64 Checkpoints::restore(u64 step) {
    const Checkpoint& point = list[indexAtOrBefore(step)];
    restoreAt(point);
    return point.step;
}

void Checkpoints::restoreBeforeBlank(u64 number) {
    const auto behind =
        std::lower_bound(list.begin() + 1, list.end(), number,
                         [](const Checkpoint& point, u64 value) { return point.blanks < value; });
    restoreAt(behind[-1]);
}

void Checkpoints::restoreAt(const Checkpoint& point) {
    forgetPicture();
    restoreRecords(machine, point.records);
    std::size_t index = 0;
    forEachPage([&](std::span<u8> bytes, bool isUntouched) {
        const PagePool::Number page = point.pages[index++];
        if (isUntouched ? page != 0 : std::memcmp(bytes.data(), pool.at(page), bytes.size()) != 0) {
            std::memcpy(bytes.data(), pool.at(page), bytes.size());
        }
    });
}

std::size_t Checkpoints::bytesUsed() const {
    std::size_t bytes = pool.livePages() * PagePool::pageBytes;
    for (const Checkpoint& point : list) {
        bytes += point.records.size() + point.pages.size() * sizeof(PagePool::Number);
    }
    return bytes;
}

/// Removes checkpoints until the rest fit in the budget, each time the one with the smallest gap relative to
/// its distance from the last. The first and the last stay, so every step can still be reached.
void Checkpoints::thin() {
    while (list.size() > 2 && bytesUsed() > budget) {
        const u64 last = list.back().step;
        std::size_t best = 1;
        double bestCost = 0;
        for (std::size_t i = 1; i + 1 < list.size(); ++i) {
            const auto gap = static_cast<double>(list[i + 1].step - list[i - 1].step);
            const double cost = gap / static_cast<double>(last - list[i].step + 1);
            if (i == 1 || cost < bestCost) {
                best = i;
                bestCost = cost;
            }
        }
        remove(best);
    }
}

}  // namespace tarn::history
