// Exact counts of what a program executes: instructions by address, and calls with their costs.
#pragma once

#include "base/types.h"
#include "machine/areas.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tarn::symbols {

/// Costs, as running totals or of a part of the run.
struct Costs {
    u64 instructions = 0;
    u64 pixels = 0;  ///< that the GS wrote
    u64 words = 0;   ///< 32-bit words transferred to the GS by DMA

    friend constexpr Costs operator-(const Costs& a, const Costs& b) {
        return {a.instructions - b.instructions, a.pixels - b.pixels, a.words - b.words};
    }
    constexpr Costs& operator+=(const Costs& other) {
        instructions += other.instructions;
        pixels += other.pixels;
        words += other.words;
        return *this;
    }
    constexpr bool operator==(const Costs&) const = default;
};

/// All calls from one instruction to one function. Addresses are offsets in main memory.
struct Call {
    u32 site = 0;
    u32 target = 0;
    u64 count = 0;
    Costs inclusive;  ///< costs of the function without its calls to itself
};

struct AddressCosts {
    u32 address = 0;
    Costs costs;
};

/// An array with an element for each word of main memory. Only pages in use take host memory.
template <typename Item>
class PerWord {
  public:
    bool exists() const { return items != nullptr; }
    Item& operator[](u64 address) { return items.get()[address / 4 % count]; }
    std::span<const Item> all() const { return {items.get(), count}; }

  private:
    static constexpr std::size_t count = mainMemorySize / 4;
    struct Freer {
        void operator()(Item* memory) const { std::free(memory); }
    };
    std::unique_ptr<Item, Freer> items{static_cast<Item*>(std::calloc(count, sizeof(Item)))};
};

class ExecutionCounts {
  public:
    /// False if there is no memory for the counts; then no other function may be called.
    bool exist() const { return balance.exists() && firstCall.exists() && active.exists() && entry.exists(); }

    /// Declares that a function begins at this address. A jump to it counts as a tail call, which ends
    /// together with the current call.
    void noteFunction(u32 address) { entry[address] = true; }

    // Straight-line code from one address up to, but not including, another.
    void begin(u64 pc) { balance[pc] += 1; }
    void end(u64 pc) { balance[pc] -= 1; }

    /// The branch or jump `word` at `pc` has been taken to `target`. `now` are the costs so far, including
    /// its delay slot.
    void branch(u32 word, u64 pc, u64 target, const Costs& now);

    /// Adds the work of the GS caused by the instruction at `pc`.
    void transfer(u64 pc, u64 pixels, u64 words);

    /// Ends all active calls. Nothing may be counted afterwards.
    void finish(const Costs& now);

    /// The costs of each executed word, in order of address.
    std::vector<AddressCosts> byAddress() const;
    const std::vector<Call>& calls() const { return allCalls; }

  private:
    struct Frame {
        u32 returnAddress;
        u32 call;  ///< index in allCalls
        bool isJump;
        Costs atEntry;
    };

    void enter(u32 site, u32 target, u32 returnAddress, bool isJump, const Costs& now);
    void leave(const Costs& now);
    void returnTo(u32 target, const Costs& now);
    /// The index of a call in allCalls; nothing if there is no room for a new one.
    std::optional<u32> callNumber(u32 site, u32 target);

    PerWord<s64> balance;    ///< lines that begin here, less those that end
    PerWord<u32> firstCall;  ///< from here: 1 + index in allCalls, or 0
    PerWord<u32> active;     ///< number of frames of the function that begins here
    PerWord<bool> entry;     ///< whether a function begins here
    std::vector<Call> allCalls;
    std::vector<u32> nextCall;  ///< from the same instruction, as in firstCall
    std::vector<Frame> frames;
    u64 ignoredFrames = 0;           ///< of calls for which there is no room
    std::map<u32, Costs> transfers;  ///< by address
};

}  // namespace tarn::symbols
