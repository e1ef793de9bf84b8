// Checkpoints of the machine in memory. Pages that do not change between checkpoints are stored once.
#pragma once

#include "base/types.h"

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace tarn::history {

/// Reference-counted pages of 4 KB. Page 0 is all zeros and never freed.
class PagePool {
  public:
    static constexpr std::size_t pageBytes = 4096;
    using Number = u32;

    PagePool();

    /// Adds a copy of up to a page of bytes.
    Number add(std::span<const u8> bytes);
    void share(Number page) { ++pages[page].users; }
    void release(Number page);
    const u8* at(Number page) const { return pages[page].bytes->data(); }
    std::size_t livePages() const { return pages.size() - unused.size(); }

  private:
    struct Page {
        std::unique_ptr<std::array<u8, pageBytes>> bytes;
        u32 users = 0;
    };
    std::vector<Page> pages;
    std::vector<Number> unused;
};

/// The checkpoints of a run, in the order of their steps. Not empty after the first take().
class Checkpoints {
  public:
    /// `bytes` bounds the memory used, but two checkpoints are always kept. `shown` is host memory, the
    /// picture, that is saved with the machine.
    Checkpoints(std::size_t bytes, std::span<u8> shown) : budget(bytes), picture(shown) {}

    void clear();
    bool empty() const { return list.empty(); }
    u64 firstStep() const { return list.front().step; }

    /// Adds a checkpoint of the machine, unless there is one for this step.
    void take();

    /// Restores the last checkpoint at or before `step`, which must not be before the first, and returns its
    /// step.
    u64 restore(u64 step);

    /// Restores the last checkpoint before the `number`th vertical blank, or the first.
    void restoreBeforeBlank(u64 number);

    std::size_t bytesUsed() const;
    std::size_t count() const { return list.size(); }

  private:
    struct Checkpoint {
        u64 step = 0;
        u64 blanks = 0;  ///< vertical blanks so far
        std::vector<u8> records;
        std::vector<PagePool::Number> pages;
    };

    /// Calls `visit` with each page of the machine's buffers and the picture, in a fixed order, and whether
    /// it is known to be zeros without reading it.
    template <typename Visit>
    void forEachPage(Visit visit) const;
    std::size_t indexAtOrBefore(u64 step) const;
    void restoreAt(const Checkpoint& point);
    void remove(std::size_t index);
    void thin();

    std::size_t budget;
    std::span<u8> picture;
    PagePool pool;
    std::vector<Checkpoint> list;
};

}  // namespace tarn::history
