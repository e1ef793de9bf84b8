// Exact counts of what a program executes: instructions by address, and calls with their costs.
#include "symbols/execution_counts.h"

#include "base/bits.h"

#include <algorithm>

namespace tarn::symbols {
namespace {

// Limits that real programs stay far below. They bound the memory that a hostile one can use.
constexpr std::size_t deepestFrame = 1 << 20;
constexpr std::size_t mostCalls = 1 << 20;
constexpr u32 mostTargets = 256;  // of one instruction

constexpr std::size_t framesSearched = 256;  // for the target of a return
constexpr u32 returnDistance = 8;            // from a call to its return address

enum class BranchKind { Call, Return, Jump, Inside };

BranchKind kindOf(u32 word) {
    constexpr u32 special = 0, regimm = 1, j = 2, jal = 3, jr = 8, jalr = 9, returnAddress = 31;
    const u32 function = bits(word, 0, 6);
    switch (bits(word, 26, 6)) {
    case special:
        if (function == jr) {
            return bits(word, 21, 5) == returnAddress ? BranchKind::Return : BranchKind::Jump;
        }
        return function == jalr ? BranchKind::Call : BranchKind::Inside;
    case regimm:
        return bit(word, 20) != 0 ? BranchKind::Call : BranchKind::Inside;  // BGEZAL and the like
    case j:
        return BranchKind::Jump;
    case jal:
        return BranchKind::Call;
    default:
        return BranchKind::Inside;
    }
}

}  // namespace

void ExecutionCounts::branch(u32 word, u64 pc, u64 target, const Costs& now) {
    const auto site = static_cast<u32>(pc);
    const auto to = static_cast<u32>(target);
    switch (kindOf(word)) {
    case BranchKind::Call:
        enter(site, to, site + returnDistance, false, now);
        break;
    case BranchKind::Return:
        returnTo(to, now);
        break;
    case BranchKind::Jump:
        // A jump to the start of the same function is a loop.
        if (entry[target] && !frames.empty() && allCalls[frames.back().call].target != to) {
            enter(site, to, frames.back().returnAddress, true, now);
        }
        break;
    case BranchKind::Inside:
        break;
    }
}

std::optional<u32> ExecutionCounts::callNumber(u32 site, u32 target) {
    u32* link = &firstCall[site];
    u32 targets = 0;
    for (; *link != 0; link = &nextCall[*link - 1], ++targets) {
        if (allCalls[*link - 1].target == target) {
            return *link - 1;
        }
    }
    if (targets == mostTargets || allCalls.size() == mostCalls) {
        return std::nullopt;
    }
    *link = static_cast<u32>(allCalls.size() + 1);
    nextCall.push_back(0);
    allCalls.push_back({site, target, 0, {}});
    return static_cast<u32>(allCalls.size() - 1);
}

/// Without room for a call, it and the calls that it makes are ignored until it returns.
void ExecutionCounts::enter(u32 site, u32 target, u32 returnAddress, bool isJump, const Costs& now) {
    const bool hasRoom = ignoredFrames == 0 && frames.size() < deepestFrame;
    const std::optional<u32> call = hasRoom ? callNumber(site, target) : std::nullopt;
    if (!call) {
        ignoredFrames += isJump ? 0 : 1;  // a jump has no return of its own
        return;
    }
    ++allCalls[*call].count;
    ++active[target];
    frames.push_back({returnAddress, *call, isJump, now});
}

void ExecutionCounts::leave(const Costs& now) {
    const Frame& frame = frames.back();
    Call& call = allCalls[frame.call];
    if (--active[call.target] == 0) {
        call.inclusive += now - frame.atEntry;
    }
    frames.pop_back();
}

/// Ends the calls that a return ends: that of the frame with this return address, and those it has made.
void ExecutionCounts::returnTo(u32 target, const Costs& now) {
    if (ignoredFrames > 0) {
        --ignoredFrames;
        return;
    }
    const auto last = frames.rbegin() + static_cast<std::ptrdiff_t>(std::min(frames.size(), framesSearched));
    const auto found = std::find_if(frames.rbegin(), last, [&](const Frame& frame) {
        return frame.returnAddress == target && !frame.isJump;
    });
    if (found == last) {
        return;
    }
    for (auto count = found - frames.rbegin() + 1; count > 0; --count) {
        leave(now);
    }
}

void ExecutionCounts::transfer(u64 pc, u64 pixels, u64 words) {
    transfers[static_cast<u32>(pc) & ~3U] += {0, pixels, words};
}

void ExecutionCounts::finish(const Costs& now) {
    while (!frames.empty()) {
        leave(now);
    }
}

std::vector<AddressCosts> ExecutionCounts::byAddress() const {
    std::vector<AddressCosts> result;
    auto started = transfers.begin();
    u32 address = 0;
    s64 count = 0;
    for (const s64 change : balance.all()) {
        count += change;
        if (count > 0) {
            Costs costs{static_cast<u64>(count), 0, 0};
            if (started != transfers.end() && started->first == address) {
                costs += started++->second;
            }
            result.push_back({address, costs});
        }
        address += 4;
    }
    return result;
}

}  // namespace tarn::symbols
