// Owns the runner: the instructions' semantics as routines over decoded operands, each of which calls the
// next.
//
// Straight-line code, branches and accesses to main memory are done here. A step that does anything else (a
// device, a kernel call, a stop) is done by MipsUpdateCpu, and ends the run.
#include "machine/processor.h"

#include "r5900/branch.h"
#include "r5900/fpu.h"
#include "r5900/integer.h"
#include "r5900/interpreter.h"
#include "r5900/loadstore.h"
#include "r5900/muldiv.h"
#include "r5900/predecoded.h"
#include "r5900/system.h"
#include "r5900/tables.h"

#include <algorithm>
#include <array>
#include <new>
#include <type_traits>

namespace tarn::r5900 {

namespace {

/// The longest run. Compilers turn the calls from routine to routine into jumps when they optimise; when they
/// do not, this bounds the host's stack.
constexpr u64 longestRun = 4096;

/// The routines need room for two steps, and leave one, so that a run's last step is always a plain one.
constexpr u64 roomNeeded = 3;

/// Code from here on is run plainly: behind the last page there is nothing to compare, or to go on to.
constexpr u64 codeEnd = mainMemorySize - codePageBytes;

/// What a run is measured by.
struct RunState {
    u64 limit = 0;         ///< steps
    u64 steps = 0;         ///< that it has taken, known once it is over
    u64 cycleAtStart = 0;  ///< MipsCpu.cycle
};

RunState runState;

template <class Fields>
void setOperands(std::array<u8, 4>& operands, u32 word) {
    static_assert(sizeof(Fields) <= sizeof operands && std::is_trivially_copyable_v<Fields>);
    new (operands.data()) Fields(Fields::from(word));
}

template <class Fields>
const Fields& fieldsIn(const std::array<u8, 4>& operands) {
    return *reinterpret_cast<const Fields*>(operands.data());
}

constexpr u32 firstWord(u64 words) { return static_cast<u32>(words); }
constexpr u32 secondWord(u64 words) { return static_cast<u32>(words >> 32); }

// The end of a run.

/// Brings the CPU record up to date, `pc` being the next instruction.
void leave(u64 pc, u64 last, u64 slots) {
    runState.steps = runState.limit - (last - pc + 4 * roomNeeded) / 4;
    MipsCpu.cycle = runState.cycleAtStart + runState.steps + slots;
    MipsCpu.PC = pc;
}

/// Has the instruction at `pc` executed in the plain way, as the last of the run.
void stepPlainly(Instruction*, u64 pc, u64 last, u64 slots, const u8*) {
    leave(pc, last, slots);
    MipsUpdateCpu();
    runState.steps += 1;
}

/// The same for the one in the delay slot of the branch at `pc`, which is taken.
void stepSlotPlainly(Instruction* at, u64 pc, u64 last, u64 slots, const u8*, u64 target) {
    leave(pc, last, slots);
    MipsCpu.opcode = firstWord(at->words);
    MipsCpu.cycle += 1;
    jumpTo(target);
    runState.steps += 1;
}

// The way from one instruction to the next.

/// The words at `pc`, which is code, and behind it.
inline u64 wordsAt(const u8* memory, u64 pc) { return loadFrom<u64>(memory + pc, 0); }

inline bool hasRoom(u64 pc, u64 last) { return static_cast<s64>(pc) <= static_cast<s64>(last); }

/// Goes on with an instruction that is not valid, or ends the run because it is time.
[[gnu::noinline]] void interrupted(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    if (!hasRoom(pc, last)) {
        return stepPlainly(at, pc, last, slots, memory);
    }
    decode(*at, wordsAt(memory, pc));
    return at->run(at, pc, last, slots, memory);
}

[[gnu::always_inline]] inline void next(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    if (wordsAt(memory, pc) != at->words || !hasRoom(pc, last)) [[unlikely]] {
        return interrupted(at, pc, last, slots, memory);
    }
    return at->run(at, pc, last, slots, memory);
}

/// Goes on at an address for which no instruction is at hand, whatever it is.
[[gnu::noinline]] void find(u64 pc, u64 last, u64 slots, const u8* memory) {
    const bool isCode = pc < codeEnd && memory != nullptr;
    CodePage* page = isCode ? codePageAt(pc) : nullptr;
    if (page == nullptr) {
        return stepPlainly(nullptr, pc, last, slots, memory);
    }
    return next(&(*page)[pc % codePageBytes / 4], pc, last, slots, memory);
}

/// The instructions behind the last one of a page.
void enterNextPage(Instruction*, u64 pc, u64 last, u64 slots, const u8* memory) {
    return find(pc, last, slots, memory);
}

/// Goes on at `target` after the step at `pc`, whose instruction is `at` and whose last word was `executed`.
[[gnu::always_inline]] inline void goTo(u64 target, Instruction* at, u64 pc, u64 last, u64 slots,
                                        const u8* memory, u32 (*executed)(u64 words)) {
    last += target - pc - 4;
    // The same page, and the same alignment.
    if (((target ^ pc) & ~u64{codePageBytes - 4}) == 0) [[likely]] {
        return next(at + (static_cast<s64>(target - pc) >> 2), target, last, slots, memory);
    }
    MipsCpu.opcode = executed(at->words);  // which a fetch that is refused leaves
    return find(target, last, slots, memory);
}

// Instructions without branches. `quick` executes one, or gives false when it must be done with more care;
// then `careful` does, or gives false when it must be done plainly.

template <class FieldsOf, void (*semantics)(FieldsOf)>
struct Computation {
    using Fields = FieldsOf;
    static bool quick(const Fields& fields) {
        semantics(fields);
        return true;
    }
    static bool careful(const Fields& fields) { return quick(fields); }
};

/// Word 0, which is no shift of r0.
struct NoOperation {
    struct Fields {
        static constexpr Fields from(u32) { return {}; }
    };
    static bool quick(const Fields&) { return true; }
    static bool careful(const Fields&) { return true; }
};

/// A load or a store, done here when it lies in main memory: quickly in the views where most do.
template <Access access, Width width, class FieldsOf, void (*semantics)(FieldsOf)>
struct MemoryAccess {
    using Fields = FieldsOf;
    static u32 addressOf(const Fields& fields) {
        return guestAddress(gpr(fields.base), static_cast<s16>(fields.offset));
    }
    static bool quick(const Fields& fields) {
        if (MipsMemory == nullptr) {
            __builtin_unreachable();  // code is being run from it
        }
        if (!inMainMemory(usualOffset(addressOf(fields)), bytesOf(width))) [[unlikely]] {
            return false;
        }
        semantics(fields);
        return true;
    }
    static bool careful(const Fields& fields) {
        if (mainMemoryOffset<access>(addressOf(fields), bytesOf(width)) == notMainMemory) {
            return false;
        }
        semantics(fields);
        return true;
    }
};
template <void (*semantics)(MemoryFields), Width width>
using Load = MemoryAccess<Access::Load, width, MemoryFields, semantics>;
template <void (*semantics)(MemoryFields), Width width>
using Store = MemoryAccess<Access::Store, width, MemoryFields, semantics>;

template <class Operation>
[[gnu::noinline]] void runCarefully(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    if (!Operation::careful(fieldsIn<typename Operation::Fields>(at->operands))) {
        return stepPlainly(at, pc, last, slots, memory);
    }
    return next(at + 1, pc + 4, last, slots, memory);
}

template <class Operation>
[[gnu::flatten]] void run(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    if (!Operation::quick(fieldsIn<typename Operation::Fields>(at->operands))) [[unlikely]] {
        return runCarefully<Operation>(at, pc, last, slots, memory);
    }
    return next(at + 1, pc + 4, last, slots, memory);
}

/// Executes an instruction and the one behind it, which `First` must not be able to change.
template <class First, class Second>
[[gnu::flatten]] void runTwo(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    if (!First::quick(fieldsIn<typename First::Fields>(at->operands))) [[unlikely]] {
        return runCarefully<First>(at, pc, last, slots, memory);
    }
    if (!Second::quick(fieldsIn<typename Second::Fields>(at->nextOperands))) [[unlikely]] {
        return next(at + 1, pc + 4, last, slots, memory);
    }
    return next(at + 2, pc + 8, last, slots, memory);
}

template <class Operation>
[[gnu::noinline]] void runInSlotCarefully(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory,
                                          u64 target) {
    if (!Operation::careful(fieldsIn<typename Operation::Fields>(at->nextOperands))) {
        return stepSlotPlainly(at, pc, last, slots, memory, target);
    }
    return goTo(target, at, pc, last, slots + 1, memory, secondWord);
}

template <class Operation>
[[gnu::flatten]] void runInSlot(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory, u64 target) {
    if (!Operation::quick(fieldsIn<typename Operation::Fields>(at->nextOperands))) [[unlikely]] {
        return runInSlotCarefully<Operation>(at, pc, last, slots, memory, target);
    }
    return goTo(target, at, pc, last, slots + 1, memory, secondWord);
}

// Branches and jumps.

template <class Fields, bool (*condition)(Fields), DelaySlot whenNotTaken>
[[gnu::flatten]] void runBranch(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    const auto& fields = fieldsIn<Fields>(at->operands);
    if (condition(fields)) {
        return at->runInSlot(at, pc, last, slots, memory, branchTarget(pc, fields.offset));
    }
    if constexpr (whenNotTaken == DelaySlot::Skipped) {
        return goTo(pc + 8, at, pc, last, slots, memory, firstWord);
    } else {
        return next(at + 1, pc + 4, last, slots, memory);
    }
}

template <bool value>
inline bool conditionBitIs(FpuBranchFields) {
    return conditionBit() == value;
}

/// Where a jump goes. Links, where it does that, come before the delay slot.
inline u64 targetOfJ(JumpFields f, u64 pc) { return jumpTarget(pc, f); }
inline u64 targetOfJAL(JumpFields f, u64 pc) {
    link(returnAddress, pc);
    return jumpTarget(pc, f);
}
inline u64 targetOfJR(RegisterFields f, u64) { return gpr(f.rs); }
inline u64 targetOfJALR(RegisterFields f, u64 pc) {
    const u64 target = gpr(f.rs);
    link(f.rd, pc);
    return target;
}

template <class Fields, u64 (*targetOf)(Fields, u64)>
[[gnu::flatten]] void runJump(Instruction* at, u64 pc, u64 last, u64 slots, const u8* memory) {
    const u64 target = targetOf(fieldsIn<Fields>(at->operands), pc);
    return at->runInSlot(at, pc, last, slots, memory, target);
}

// The routines of every instruction that is run here.

/// An instruction's routines, by its handler in the dispatch tables.
struct Routines {
    Handler handler;
    Routine run;
    SlotRoutine runInSlot;
    void (*setOperands)(std::array<u8, 4>& operands, u32 word);
    bool (*pauses)(u32 word);  ///< whether it does nothing but pause, for this word
};

/// There is only condition code 0: comparisons and branches with others pause.
template <class Fields>
bool namesOtherCondition(u32 word) {
    const Fields fields = Fields::from(word);
    if constexpr (requires { fields.cc; }) {
        return fields.cc != 0;
    } else if constexpr (requires { fields.ccb; }) {
        return fields.ccb != 0;
    } else {
        return false;
    }
}

template <class Operation>
constexpr Routines routines(Handler handler) {
    using Fields = typename Operation::Fields;
    return {handler, run<Operation>, runInSlot<Operation>, setOperands<Fields>, namesOtherCondition<Fields>};
}
template <class Fields, void (*semantics)(Fields)>
constexpr Routines computation(Handler handler) {
    return routines<Computation<Fields, semantics>>(handler);
}
template <void (*semantics)(MemoryFields), Width width>
constexpr Routines load(Handler handler) {
    return routines<Load<semantics, width>>(handler);
}
template <void (*semantics)(MemoryFields), Width width>
constexpr Routines store(Handler handler) {
    return routines<Store<semantics, width>>(handler);
}

// A branch in a delay slot is rare, and nests: it takes the plain way.

template <class Fields, bool (*condition)(Fields), DelaySlot whenNotTaken = DelaySlot::Executed>
constexpr Routines branchOn(Handler handler) {
    return {handler, runBranch<Fields, condition, whenNotTaken>, stepSlotPlainly, setOperands<Fields>,
            namesOtherCondition<Fields>};
}
template <class Fields, u64 (*targetOf)(Fields, u64)>
constexpr Routines jumpTo(Handler handler) {
    return {handler, runJump<Fields, targetOf>, stepSlotPlainly, setOperands<Fields>,
            namesOtherCondition<Fields>};
}

constexpr Routines noOperation = routines<NoOperation>(nullptr);
constexpr Routines plainOperation{nullptr, stepPlainly, stepSlotPlainly, setOperands<NoOperation::Fields>,
                                  namesOtherCondition<NoOperation::Fields>};

constexpr std::array operations{
    computation<ImmediateFields, ADDI>(ADDI),
    computation<ImmediateFields, ADDIU>(ADDIU),
    computation<ImmediateFields, SLTI>(SLTI),
    computation<ImmediateFields, SLTIU>(SLTIU),
    computation<ImmediateFields, ANDI>(ANDI),
    computation<ImmediateFields, ORI>(ORI),
    computation<ImmediateFields, XORI>(XORI),
    computation<ImmediateFields, LUI>(LUI),
    computation<ImmediateFields, DADDIU>(DADDIU),

    computation<RegisterFields, ADD>(ADD),
    computation<RegisterFields, ADDU>(ADDU),
    computation<RegisterFields, SUB>(SUB),
    computation<RegisterFields, SUBU>(SUBU),
    computation<RegisterFields, AND>(AND),
    computation<RegisterFields, OR>(OR),
    computation<RegisterFields, XOR>(XOR),
    computation<RegisterFields, SLT>(SLT),
    computation<RegisterFields, SLTU>(SLTU),
    computation<RegisterFields, DADDU>(DADDU),
    computation<RegisterFields, DSUBU>(DSUBU),
    computation<RegisterFields, MOVZ>(MOVZ),
    computation<RegisterFields, MOVN>(MOVN),

    computation<ShiftFields, SLL>(SLL),
    computation<ShiftFields, SRL>(SRL),
    computation<ShiftFields, SRA>(SRA),
    computation<RegisterFields, SLLV>(SLLV),
    computation<RegisterFields, SLRV>(SLRV),
    computation<RegisterFields, SRAV>(SRAV),
    computation<ShiftFields, DSLL>(DSLL),
    computation<ShiftFields, DSRL>(DSRL),
    computation<ShiftFields, DSLL32>(DSLL32),
    computation<ShiftFields, DSRL32>(DSRL32),
    computation<ShiftFields, DSRA32>(DSRA32),

    computation<RegisterFields, MULT>(MULT),
    computation<RegisterFields, MULT1>(MULT1),
    computation<RegisterFields, DMULTU>(DMULTU),
    computation<RegisterFields, DIV>(DIV),
    computation<RegisterFields, DIVU>(DIVU),
    computation<RegisterFields, MFHI>(MFHI),
    computation<RegisterFields, MFLO>(MFLO),

    load<LB, Width::Byte>(LB),
    load<LBU, Width::Byte>(LBU),
    load<LH, Width::Halfword>(LH),
    load<LHU, Width::Halfword>(LHU),
    load<LW, Width::Word>(LW),
    load<LWU, Width::Word>(LWU),
    load<LWL, Width::Word>(LWL),
    load<LWR, Width::Word>(LWR),
    load<LD, Width::Doubleword>(LD),
    load<LDL, Width::HighDoubleword>(LDL),
    load<LDR, Width::Doubleword>(LDR),
    load<LQ, Width::Quadword>(LQ),
    routines<MemoryAccess<Access::Load, Width::Word, FpuMemoryFields, LWC1>>(LWC1),

    store<SB, Width::Byte>(SB),
    store<SH, Width::Halfword>(SH),
    store<SW, Width::Word>(SW),
    store<SWL, Width::Word>(SWL),
    store<SWR, Width::Word>(SWR),
    store<SD, Width::Doubleword>(SD),
    store<SDL, Width::HighDoubleword>(SDL),
    store<SDR, Width::Doubleword>(SDR),
    store<SQ, Width::Quadword>(SQ),
    routines<MemoryAccess<Access::Store, Width::Word, FpuMemoryFields, SWC1>>(SWC1),

    branchOn<BranchFields, BEQ>(BEQ),
    branchOn<BranchFields, BNE>(BNE),
    branchOn<ZeroBranchFields, BLEZ>(BLEZ),
    branchOn<ZeroBranchFields, BGTZ>(BGTZ),
    branchOn<ZeroBranchFields, BLTZ>(BLTZ),
    branchOn<ZeroBranchFields, BGEZ>(BGEZ),
    branchOn<BranchFields, BEQ, DelaySlot::Skipped>(BEQL),
    branchOn<BranchFields, BNE, DelaySlot::Skipped>(BNEL),
    branchOn<ZeroBranchFields, BLEZ, DelaySlot::Skipped>(BLEZL),
    branchOn<ZeroBranchFields, BLTZ, DelaySlot::Skipped>(BLTZL),
    branchOn<ZeroBranchFields, BGEZ, DelaySlot::Skipped>(BGEZL),
    branchOn<FpuBranchFields, conditionBitIs<false>>(BC1F),
    branchOn<FpuBranchFields, conditionBitIs<true>>(BC1T),
    branchOn<FpuBranchFields, conditionBitIs<true>, DelaySlot::Skipped>(BC1TL),
    jumpTo<JumpFields, targetOfJ>(J),
    jumpTo<JumpFields, targetOfJAL>(JAL),
    jumpTo<RegisterFields, targetOfJR>(JR),
    jumpTo<RegisterFields, targetOfJALR>(JALR),

    computation<Cop0Fields, MFC0>(MFC0),

    computation<FpuFields, ADD_S>(ADD_S),
    computation<FpuFields, SUB_S>(SUB_S),
    computation<FpuFields, MUL_S>(MUL_S),
    computation<FpuFields, DIV_S>(DIV_S),
    computation<FpuFields, NEG_S>(NEG_S),
    computation<FpuFields, MOV_S>(MOV_S),
    computation<FpuMoveFields, MTC1>(MTC1),
    computation<FpuMoveFields, MFC1>(MFC1),
    computation<FpuFields, CVT_W_S>(CVT_W_S),
    computation<FpuFields, CVT_S>(CVT_S),
    computation<FpuCompareFields, C_EQ_S>(C_EQ_S),
    computation<FpuCompareFields, C_OLT_S>(C_OLT_S),
};

const Routines& routinesOf(u32 word) {
    if (word == 0) {
        return noOperation;
    }
    const Handler handler = handlerOf(word);
    const auto* found = std::find_if(operations.begin(), operations.end(),
                                     [&](const Routines& operation) { return operation.handler == handler; });
    return found == operations.end() || found->pauses(word) ? plainOperation : *found;
}

// Pairs. The instructions that most code consists of have a routine for every two of them in a row, which
// saves the way from one to the next. Stores come second only: they might change the one behind them.

template <class... Operations>
struct List {};

using OftenFirst =
    List<NoOperation, Computation<ImmediateFields, ADDIU>, Computation<ImmediateFields, LUI>,
         Computation<ImmediateFields, ANDI>, Computation<ImmediateFields, ORI>,
         Computation<RegisterFields, ADDU>, Computation<RegisterFields, SUBU>,
         Computation<RegisterFields, AND>, Computation<RegisterFields, OR>, Computation<RegisterFields, XOR>,
         Computation<RegisterFields, DADDU>, Computation<RegisterFields, SLT>,
         Computation<RegisterFields, SLTU>, Computation<ShiftFields, SLL>, Computation<ShiftFields, SRL>,
         Computation<ShiftFields, SRA>, Load<LW, Width::Word>, Load<LBU, Width::Byte>,
         Load<LHU, Width::Halfword>, Load<LD, Width::Doubleword>>;
using OftenSecondOnly = List<Store<SW, Width::Word>, Store<SB, Width::Byte>, Store<SH, Width::Halfword>,
                             Store<SD, Width::Doubleword>>;

/// A routine for two instructions, by the routines of each.
struct Pair {
    Routine first, second;
    Routine both;
};

template <class First, class... Seconds>
constexpr auto pairsWith(List<Seconds...>) {
    return std::array{Pair{run<First>, run<Seconds>, runTwo<First, Seconds>}...};
}

template <class... Operations, class... More>
constexpr auto pairsOf(List<Operations...>, List<More...>) {
    return std::array{pairsWith<Operations>(List<Operations..., More...>{})...};
}

constexpr auto pairs = pairsOf(OftenFirst{}, OftenSecondOnly{});

/// The routine for both, or the first one's own.
Routine pairOf(Routine first, Routine second) {
    for (const auto& row : pairs) {
        if (row.front().first == first) {
            const auto* found =
                std::find_if(row.begin(), row.end(), [&](const Pair& pair) { return pair.second == second; });
            return found != row.end() ? found->both : first;
        }
    }
    return first;
}

}  // namespace

void decode(Instruction& instruction, u64 words) {
    const Routines& first = routinesOf(firstWord(words));
    const Routines& second = routinesOf(secondWord(words));
    if (instruction.run != enterNextPage) {
        instruction.run = pairOf(first.run, second.run);
    }
    instruction.runInSlot = second.runInSlot;
    instruction.words = words;
    first.setOperands(instruction.operands, firstWord(words));
    second.setOperands(instruction.nextOperands, secondWord(words));
}

void clearCodePage(CodePage& page) {
    page.fill({noOperation.run, noOperation.runInSlot, 0, {}, {}});
    for (u32 i = codePageWords; i < page.size(); ++i) {
        page[i].run = enterNextPage;
    }
}

}  // namespace tarn::r5900

namespace tarn {

u64 MipsRun(u64 limit) {
    using namespace r5900;
    if (tracing()) {
        MipsUpdateCpu();
        return 1;
    }
    runState = {std::min(limit, longestRun), 0, MipsCpu.cycle};
    find(MipsCpu.PC, MipsCpu.PC + runState.limit * 4 - 4 * roomNeeded, 0, MipsMemory);
    return runState.steps;
}

}  // namespace tarn
