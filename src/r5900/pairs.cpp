// Pairs. Each combination of two common instructions has a routine of its own, which saves a dispatch. Stores
// are only second in a pair: they might overwrite their successor.
#include "r5900/pairs.h"

#include "r5900/integer_complete.h"
#include "r5900/loadstore.h"
#include "r5900/tables.h"
#include "r5900/threaded_interpreter.h"

#include <algorithm>

namespace tarn::r5900 {

namespace {

template <typename... Operations>
struct List {};

/// Common instructions that are the same on both processors.
template <typename... Operations>
using WithCommon =
    List<NoOperation, Computation<ADDIU>, Computation<LUI>, Computation<ANDI>, Computation<ORI>,
         Computation<ADDU>, Computation<SUBU>, Computation<AND>, Computation<OR>, Computation<XOR>,
         Computation<DADDU>, Computation<SLTU>, Computation<SLL>, Computation<SRL>, Operations...>;

/// Common instructions of a processor: those that can be first in a pair, and those that cannot.
template <template <Access, Width, auto> typename MemoryAccess, auto slt, auto sra>
struct Often {
    template <auto semantics, Width width>
    using Load = MemoryAccess<Access::Load, width, semantics>;
    template <auto semantics, Width width>
    using Store = MemoryAccess<Access::Store, width, semantics>;

    using First = WithCommon<Computation<slt>, Computation<sra>, Load<LW, Width::Word>,
                             Load<LBU, Width::Byte>, Load<LHU, Width::Halfword>, Load<LD, Width::Doubleword>>;
    using SecondOnly = List<Store<SW, Width::Word>, Store<SB, Width::Byte>, Store<SH, Width::Halfword>,
                            Store<SD, Width::Doubleword>>;
};

using OftenInDescribed = Often<MemoryAccess, SLT, SRA>;
using OftenInComplete = Often<AlignedAccess, SLT_complete, SRA_complete>;

/// Executes two instructions; the first must not be able to overwrite the second.
template <typename First, typename Second>
[[gnu::flatten]] void runTwo(DecodedInstruction* at, u64 pc, StepBudget budget, u64 delaySlots,
                             const u8* memory) {
    if (!First::fast(at->operands.get<typename First::Fields>())) [[unlikely]] {
        return runSlowly<First>(at, pc, budget, delaySlots, memory);
    }
    if (!Second::fast(at->nextOperands.get<typename Second::Fields>())) [[unlikely]] {
        return next(at + 1, pc + 4, budget, delaySlots, memory);
    }
    return next(at + 2, pc + 8, budget, delaySlots, memory);
}

struct Pair {
    Routine first, second;
    Routine both;
};

template <typename First, typename... Seconds>
constexpr auto pairsWith(List<Seconds...>) {
    return std::array{Pair{run<First>, run<Seconds>, runTwo<First, Seconds>}...};
}

template <typename... Operations, typename... More>
constexpr auto pairsOf(List<Operations...>, List<More...>) {
    return std::array{pairsWith<Operations>(List<Operations..., More...>{})...};
}

template <typename Often>
constexpr auto pairs = pairsOf(typename Often::First{}, typename Often::SecondOnly{});

Routine pairAmong(const auto& rows, Routine first, Routine second) {
    for (const auto& row : rows) {
        if (row.front().first == first) {
            const auto* found =
                std::find_if(row.begin(), row.end(), [&](const Pair& pair) { return pair.second == second; });
            return found != row.end() ? found->both : first;
        }
    }
    return first;
}

}  // namespace

Routine pairOf(Routine first, Routine second) {
    return processor->isComplete ? pairAmong(pairs<OftenInComplete>, first, second)
                                 : pairAmong(pairs<OftenInDescribed>, first, second);
}

}  // namespace tarn::r5900
