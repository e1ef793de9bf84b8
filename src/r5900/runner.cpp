// Owns the runner: the instructions' semantics as routines over decoded operands, each of which calls the
// next.
//
// Straight-line code, branches and accesses to main memory are done here. A step that does anything else (a
// device, a kernel call, a stop) is done by MipsUpdateCpu, and ends the run.
#include "r5900/runner.h"

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

namespace tarn::r5900 {

namespace {

/// The longest run. Compilers turn the calls from routine to routine into jumps when they optimise; when they
/// do not, this bounds the host's stack.
constexpr u64 longestRun = 4096;

/// Code from here on is run plainly: behind the last page there is nothing to compare, or to go on to.
constexpr u64 codeEnd = mainMemorySize - codePageBytes;

/// What a run is measured by.
struct RunState {
    u64 limit = 0;         ///< steps
    u64 steps = 0;         ///< that it has taken, known once it is over
    u64 cycleAtStart = 0;  ///< MipsCpu.cycle
};

RunState runState;

// The ends of a run.

/// Brings the CPU record up to date, `pc` being the next instruction.
void leave(u64 pc, u64 stop, u64 slots) {
    runState.steps = runState.limit - (stop - pc) / 4;
    MipsCpu.cycle = runState.cycleAtStart + runState.steps + slots;
    MipsCpu.PC = pc;
}

/// Has the instruction at `pc` executed in the plain way, as the last of the run.
void stepPlainly(Instruction*, u64 pc, u64 stop, u64 slots, const u8*) {
    leave(pc, stop, slots);
    MipsUpdateCpu();
    runState.steps += 1;
}

/// The same for an instruction in the delay slot of the branch at `pc`, which is taken.
void stepSlotPlainly(Instruction* at, u64 pc, u64 stop, u64 slots, const u8*, u64 target) {
    leave(pc, stop, slots);
    MipsCpu.opcode = at->word;
    MipsCpu.cycle += 1;
    jumpTo(target);
    runState.steps += 1;
}

// The way from one instruction to the next.

/// The word at `pc`, which is in main memory.
inline u32 wordAt(const u8* memory, u64 pc) { return loadFrom<u32>(memory + pc, 0); }

/// Goes on after a step, whose last instruction was `executed`, with an instruction that is not valid; or
/// ends the run because it is time.
[[gnu::noinline]] void interrupted(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory,
                                   const Instruction* executed) {
    if (pc == stop) {
        MipsCpu.opcode = executed->word;
        return leave(pc, stop, slots);
    }
    decode(*at, wordAt(memory, pc));
    return at->run(at, pc, stop, slots, memory);
}

[[gnu::always_inline]] inline void next(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory,
                                        const Instruction* executed) {
    if (wordAt(memory, pc) != at->word || pc == stop) [[unlikely]] {
        return interrupted(at, pc, stop, slots, memory, executed);
    }
    return at->run(at, pc, stop, slots, memory);
}

/// Goes on at an address for which no instruction is at hand, whatever it is.
[[gnu::noinline]] void find(u64 pc, u64 stop, u64 slots, const u8* memory) {
    if (pc == stop) {
        return leave(pc, stop, slots);
    }
    const bool isCode = pc < codeEnd && memory != nullptr;
    CodePage* page = isCode ? codePageAt(pc) : nullptr;
    if (page == nullptr) {
        return stepPlainly(nullptr, pc, stop, slots, memory);
    }
    Instruction* at = &(*page)[pc % codePageBytes / 4];
    if (wordAt(memory, pc) != at->word) {
        decode(*at, wordAt(memory, pc));
    }
    return at->run(at, pc, stop, slots, memory);
}

/// The instruction behind the last one of a page.
void enterNextPage(Instruction*, u64 pc, u64 stop, u64 slots, const u8* memory) {
    return find(pc, stop, slots, memory);
}

/// Goes on at `target` after the step at `pc`, whose instruction is `at`.
[[gnu::always_inline]] inline void goTo(u64 target, Instruction* at, u64 pc, u64 stop, u64 slots,
                                        const u8* memory, const Instruction* executed) {
    stop += target - pc - 4;
    // The same page, and the same alignment.
    if (((target ^ pc) & ~u64{codePageBytes - 4}) == 0) [[likely]] {
        return next(at + (static_cast<s64>(target - pc) >> 2), target, stop, slots, memory, executed);
    }
    MipsCpu.opcode = executed->word;
    return find(target, stop, slots, memory);
}

/// Makes the instruction in the delay slot valid, and starts the branch again.
[[gnu::noinline]] void decodeSlot(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    decode(at[1], wordAt(memory, pc + 4));
    return at->run(at, pc, stop, slots, memory);
}

inline bool slotIsValid(const Instruction* at, u64 pc, const u8* memory) {
    return at[1].word == wordAt(memory, pc + 4);
}

// Straight-line instructions.

template <class Fields, void (*semantics)(Fields)>
void straightLine(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    semantics(operandsOf<Fields>(*at));
    return next(at + 1, pc + 4, stop, slots, memory, at);
}

template <class Fields, void (*semantics)(Fields)>
void straightLineInSlot(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory, u64 target) {
    semantics(operandsOf<Fields>(at[1]));
    return goTo(target, at, pc, stop, slots + 1, memory, at + 1);
}

struct NoFields {
    static constexpr NoFields from(u32) { return {}; }
};

inline void doNothing(NoFields) {}

// Loads and stores, in main memory only.

/// Code is being run from main memory, so that its accesses need not ask whether there is one.
inline void expectMainMemory() {
    if (MipsMemory == nullptr) {
        __builtin_unreachable();
    }
}

template <class Fields>
inline u32 addressOf(Fields f) {
    return guestAddress(gpr(f.base), static_cast<s16>(f.offset));
}

/// An access that is not in the views of main memory that most are in.
template <class Fields, void (*semantics)(Fields), Access access, Width width>
[[gnu::noinline]] void mirroredAccess(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    const auto& fields = operandsOf<Fields>(*at);
    if (mainMemoryOffset<access>(addressOf(fields), bytesOf(width)) == notMainMemory) {
        return stepPlainly(at, pc, stop, slots, memory);
    }
    semantics(fields);
    return next(at + 1, pc + 4, stop, slots, memory, at);
}

template <class Fields, void (*semantics)(Fields), Access access, Width width>
void memoryAccess(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    expectMainMemory();
    const auto& fields = operandsOf<Fields>(*at);
    if (!inMainMemory(usualOffset(addressOf(fields)), bytesOf(width))) [[unlikely]] {
        return mirroredAccess<Fields, semantics, access, width>(at, pc, stop, slots, memory);
    }
    semantics(fields);
    return next(at + 1, pc + 4, stop, slots, memory, at);
}

template <class Fields, void (*semantics)(Fields), Access access, Width width>
[[gnu::noinline]] void mirroredAccessInSlot(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory,
                                            u64 target) {
    const auto& fields = operandsOf<Fields>(at[1]);
    if (mainMemoryOffset<access>(addressOf(fields), bytesOf(width)) == notMainMemory) {
        return stepSlotPlainly(at, pc, stop, slots, memory, target);
    }
    semantics(fields);
    return goTo(target, at, pc, stop, slots + 1, memory, at + 1);
}

template <class Fields, void (*semantics)(Fields), Access access, Width width>
void memoryAccessInSlot(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory, u64 target) {
    expectMainMemory();
    const auto& fields = operandsOf<Fields>(at[1]);
    if (!inMainMemory(usualOffset(addressOf(fields)), bytesOf(width))) [[unlikely]] {
        return mirroredAccessInSlot<Fields, semantics, access, width>(at, pc, stop, slots, memory, target);
    }
    semantics(fields);
    return goTo(target, at, pc, stop, slots + 1, memory, at + 1);
}

// Branches and jumps.

template <class Fields, bool (*condition)(Fields), DelaySlot whenNotTaken>
void conditionalBranch(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    if (!slotIsValid(at, pc, memory)) [[unlikely]] {
        return decodeSlot(at, pc, stop, slots, memory);
    }
    const auto& fields = operandsOf<Fields>(*at);
    if (condition(fields)) {
        return at[1].runInSlot(at, pc, stop, slots, memory, branchTarget(pc, fields.offset));
    }
    if constexpr (whenNotTaken == DelaySlot::Skipped) {
        return goTo(pc + 8, at, pc, stop, slots, memory, at);
    } else {
        return next(at + 1, pc + 4, stop, slots, memory, at);
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
void unconditionalJump(Instruction* at, u64 pc, u64 stop, u64 slots, const u8* memory) {
    if (!slotIsValid(at, pc, memory)) [[unlikely]] {
        return decodeSlot(at, pc, stop, slots, memory);
    }
    const u64 target = targetOf(operandsOf<Fields>(*at), pc);
    return at[1].runInSlot(at, pc, stop, slots, memory, target);
}

// The routines of every instruction that is run here.

/// An instruction's routines, by its handler in the dispatch tables.
struct Operation {
    Handler handler;
    Routine run;
    SlotRoutine runInSlot;
    void (*setOperands)(Instruction& instruction, u32 word);
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

template <class Fields, void (*semantics)(Fields)>
constexpr Operation straightOperation(Handler handler) {
    return {handler, straightLine<Fields, semantics>, straightLineInSlot<Fields, semantics>,
            r5900::setOperands<Fields>, namesOtherCondition<Fields>};
}

template <Access access, Width width, class Fields, void (*semantics)(Fields)>
constexpr Operation memoryOperation(Handler handler) {
    return {handler, memoryAccess<Fields, semantics, access, width>,
            memoryAccessInSlot<Fields, semantics, access, width>, r5900::setOperands<Fields>,
            namesOtherCondition<Fields>};
}
template <void (*semantics)(MemoryFields), Width width>
constexpr Operation loadOperation(Handler handler) {
    return memoryOperation<Access::Load, width, MemoryFields, semantics>(handler);
}
template <void (*semantics)(MemoryFields), Width width>
constexpr Operation storeOperation(Handler handler) {
    return memoryOperation<Access::Store, width, MemoryFields, semantics>(handler);
}

// A branch in a delay slot is rare, and nests: it takes the plain way.

template <class Fields, bool (*condition)(Fields), DelaySlot whenNotTaken = DelaySlot::Executed>
constexpr Operation branchOperation(Handler handler) {
    return {handler, conditionalBranch<Fields, condition, whenNotTaken>, stepSlotPlainly,
            r5900::setOperands<Fields>, namesOtherCondition<Fields>};
}
template <class Fields, u64 (*targetOf)(Fields, u64)>
constexpr Operation jumpOperation(Handler handler) {
    return {handler, unconditionalJump<Fields, targetOf>, stepSlotPlainly, r5900::setOperands<Fields>,
            namesOtherCondition<Fields>};
}

constexpr Operation noOperation = straightOperation<NoFields, doNothing>(nullptr);
constexpr Operation plainOperation{nullptr, stepPlainly, stepSlotPlainly, r5900::setOperands<NoFields>,
                                   namesOtherCondition<NoFields>};

constexpr std::array operations{
    straightOperation<ImmediateFields, ADDI>(ADDI),
    straightOperation<ImmediateFields, ADDIU>(ADDIU),
    straightOperation<ImmediateFields, SLTI>(SLTI),
    straightOperation<ImmediateFields, SLTIU>(SLTIU),
    straightOperation<ImmediateFields, ANDI>(ANDI),
    straightOperation<ImmediateFields, ORI>(ORI),
    straightOperation<ImmediateFields, XORI>(XORI),
    straightOperation<ImmediateFields, LUI>(LUI),
    straightOperation<ImmediateFields, DADDIU>(DADDIU),

    straightOperation<RegisterFields, ADD>(ADD),
    straightOperation<RegisterFields, ADDU>(ADDU),
    straightOperation<RegisterFields, SUB>(SUB),
    straightOperation<RegisterFields, SUBU>(SUBU),
    straightOperation<RegisterFields, AND>(AND),
    straightOperation<RegisterFields, OR>(OR),
    straightOperation<RegisterFields, XOR>(XOR),
    straightOperation<RegisterFields, SLT>(SLT),
    straightOperation<RegisterFields, SLTU>(SLTU),
    straightOperation<RegisterFields, DADDU>(DADDU),
    straightOperation<RegisterFields, DSUBU>(DSUBU),
    straightOperation<RegisterFields, MOVZ>(MOVZ),
    straightOperation<RegisterFields, MOVN>(MOVN),

    straightOperation<ShiftFields, SLL>(SLL),
    straightOperation<ShiftFields, SRL>(SRL),
    straightOperation<ShiftFields, SRA>(SRA),
    straightOperation<RegisterFields, SLLV>(SLLV),
    straightOperation<RegisterFields, SLRV>(SLRV),
    straightOperation<RegisterFields, SRAV>(SRAV),
    straightOperation<ShiftFields, DSLL>(DSLL),
    straightOperation<ShiftFields, DSRL>(DSRL),
    straightOperation<ShiftFields, DSLL32>(DSLL32),
    straightOperation<ShiftFields, DSRL32>(DSRL32),
    straightOperation<ShiftFields, DSRA32>(DSRA32),

    straightOperation<RegisterFields, MULT>(MULT),
    straightOperation<RegisterFields, MULT1>(MULT1),
    straightOperation<RegisterFields, DMULTU>(DMULTU),
    straightOperation<RegisterFields, DIV>(DIV),
    straightOperation<RegisterFields, DIVU>(DIVU),
    straightOperation<RegisterFields, MFHI>(MFHI),
    straightOperation<RegisterFields, MFLO>(MFLO),

    loadOperation<LB, Width::Byte>(LB),
    loadOperation<LBU, Width::Byte>(LBU),
    loadOperation<LH, Width::Halfword>(LH),
    loadOperation<LHU, Width::Halfword>(LHU),
    loadOperation<LW, Width::Word>(LW),
    loadOperation<LWU, Width::Word>(LWU),
    loadOperation<LWL, Width::Word>(LWL),
    loadOperation<LWR, Width::Word>(LWR),
    loadOperation<LD, Width::Doubleword>(LD),
    loadOperation<LDL, Width::HighDoubleword>(LDL),
    loadOperation<LDR, Width::Doubleword>(LDR),
    loadOperation<LQ, Width::Quadword>(LQ),
    memoryOperation<Access::Load, Width::Word, FpuMemoryFields, LWC1>(LWC1),

    storeOperation<SB, Width::Byte>(SB),
    storeOperation<SH, Width::Halfword>(SH),
    storeOperation<SW, Width::Word>(SW),
    storeOperation<SWL, Width::Word>(SWL),
    storeOperation<SWR, Width::Word>(SWR),
    storeOperation<SD, Width::Doubleword>(SD),
    storeOperation<SDL, Width::HighDoubleword>(SDL),
    storeOperation<SDR, Width::Doubleword>(SDR),
    storeOperation<SQ, Width::Quadword>(SQ),
    memoryOperation<Access::Store, Width::Word, FpuMemoryFields, SWC1>(SWC1),

    branchOperation<BranchFields, BEQ>(BEQ),
    branchOperation<BranchFields, BNE>(BNE),
    branchOperation<ZeroBranchFields, BLEZ>(BLEZ),
    branchOperation<ZeroBranchFields, BGTZ>(BGTZ),
    branchOperation<ZeroBranchFields, BLTZ>(BLTZ),
    branchOperation<ZeroBranchFields, BGEZ>(BGEZ),
    branchOperation<BranchFields, BEQ, DelaySlot::Skipped>(BEQL),
    branchOperation<BranchFields, BNE, DelaySlot::Skipped>(BNEL),
    branchOperation<ZeroBranchFields, BLEZ, DelaySlot::Skipped>(BLEZL),
    branchOperation<ZeroBranchFields, BLTZ, DelaySlot::Skipped>(BLTZL),
    branchOperation<ZeroBranchFields, BGEZ, DelaySlot::Skipped>(BGEZL),
    branchOperation<FpuBranchFields, conditionBitIs<false>>(BC1F),
    branchOperation<FpuBranchFields, conditionBitIs<true>>(BC1T),
    branchOperation<FpuBranchFields, conditionBitIs<true>, DelaySlot::Skipped>(BC1TL),
    jumpOperation<JumpFields, targetOfJ>(J),
    jumpOperation<JumpFields, targetOfJAL>(JAL),
    jumpOperation<RegisterFields, targetOfJR>(JR),
    jumpOperation<RegisterFields, targetOfJALR>(JALR),

    straightOperation<Cop0Fields, MFC0>(MFC0),

    straightOperation<FpuFields, ADD_S>(ADD_S),
    straightOperation<FpuFields, SUB_S>(SUB_S),
    straightOperation<FpuFields, MUL_S>(MUL_S),
    straightOperation<FpuFields, DIV_S>(DIV_S),
    straightOperation<FpuFields, NEG_S>(NEG_S),
    straightOperation<FpuFields, MOV_S>(MOV_S),
    straightOperation<FpuMoveFields, MTC1>(MTC1),
    straightOperation<FpuMoveFields, MFC1>(MFC1),
    straightOperation<FpuFields, CVT_W_S>(CVT_W_S),
    straightOperation<FpuFields, CVT_S>(CVT_S),
    straightOperation<FpuCompareFields, C_EQ_S>(C_EQ_S),
    straightOperation<FpuCompareFields, C_OLT_S>(C_OLT_S),
};

const Operation& operationOf(u32 word) {
    if (word == 0) {
        return noOperation;
    }
    const Handler handler = handlerOf(word);
    const auto* found = std::find_if(operations.begin(), operations.end(), [&](const Operation& operation) {
        return operation.handler == handler;
    });
    return found == operations.end() || found->pauses(word) ? plainOperation : *found;
}

}  // namespace

void decode(Instruction& instruction, u32 word) {
    const Operation& operation = operationOf(word);
    if (instruction.run != enterNextPage) {
        instruction.run = operation.run;
    }
    instruction.runInSlot = operation.runInSlot;
    instruction.word = word;
    operation.setOperands(instruction, word);
}

void clearCodePage(CodePage& page) {
    page.fill({noOperation.run, noOperation.runInSlot, 0, {}});
    page.back().run = enterNextPage;
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
    find(MipsCpu.PC, MipsCpu.PC + runState.limit * 4, 0, MipsMemory);
    return runState.steps;
}

}  // namespace tarn
