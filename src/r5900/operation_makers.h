// Templates that derive operation records from semantics, for both processors.
#pragma once

#include "r5900/loadstore_complete.h"
#include "r5900/operation.h"
#include "r5900/system.h"
#include "r5900/threaded_interpreter.h"

namespace tarn::r5900 {

/// The operations of an instruction on the described processor and on the complete one.
struct Operations {
    const Operation* described;
    const Operation* complete;

    constexpr Operations(const Operation& both) : described(&both), complete(&both) {}
    constexpr Operations(const Operation& first, const Operation& second)
        : described(&first), complete(&second) {}
};

// Instructions that stop.

inline constexpr Operation pauseOnly{.routines = plainRoutines};
template <Stop reason>
inline constexpr Operation stopFor{.step = stopAlways<reason>, .routines = plainRoutines};

inline constexpr Operations stop{pauseOnly, stopFor<Stop::NoInstruction>};
/// Exceptions, address translation and the vector unit.
inline constexpr Operations unsupported{pauseOnly, stopFor<Stop::NotSupported>};
inline constexpr Operations breakpoint{pauseOnly, stopFor<Stop::Break>};

// Instructions without branches.

template <typename Fields>
bool pausesOnCondition(u32 word) {
    return namesOtherCondition(Fields::from(word));
}

/// The record of an instruction that is not a branch.
template <typename Decoded>
constexpr Operation straightOperation(Kind kind, Handler step) {
    using Fields = typename Decoded::Fields;
    return {.kind = kind,
            .step = step,
            .routines = routines<Decoded>,
            .namesR0 = namesR0<Fields>,
            .routinesIntoR0 = routines<IntoR0<Decoded>>,
            .pausesOn = pausesOnCondition<Fields>};
}

template <auto semantics>
inline constexpr Operation computation = straightOperation<Computation<semantics>>(Kind::Computation,
                                                                                   stepStraight<semantics>);

/// A computation that stops without changing anything if `stops` is true.
template <auto semantics, auto stops, Stop reason>
inline constexpr Operation unlessStopped = straightOperation<UnlessStopped<semantics, stops>>(
    Kind::Computation, stepUnlessStopped<semantics, stops, reason>);
template <auto semantics, auto overflows>
inline constexpr const Operation& unlessOverflow = unlessStopped<semantics, overflows, Stop::IntegerOverflow>;

template <typename Fields>
void nothing(Fields) {}
template <auto condition>
inline constexpr const Operation& trapIf = unlessStopped<nothing<FieldsOf<condition>>, condition, Stop::Trap>;

/// Instructions that change more than registers end a run.
template <auto semantics>
inline constexpr Operation system{
    .kind = Kind::System, .step = stepStraight<semantics>, .routines = plainRoutines};

/// The kernel's handler advances PC, or leaves it and pauses.
inline constexpr Operation systemCall{.kind = Kind::System, .step = SYSCALL, .routines = plainRoutines};

// Loads and stores.

template <Width unit, typename Fields>
u32 addressIn(u32 word, const MipsCpuRecord& cpu) {
    return addressOf(Fields::from(word), cpu) & ~(bytesOf(unit) - 1);
}

template <typename Decoded, Width width, Width unit>
constexpr Operation accessOperation(Kind kind, Handler step) {
    Operation made = straightOperation<Decoded>(kind, step);
    made.width = width;
    made.address = addressIn<unit, typename Decoded::Fields>;
    return made;
}

constexpr Access accessOf(Kind kind) { return kind == Kind::Load ? Access::Load : Access::Store; }

template <Kind kind, auto semantics, Width width>
inline constexpr Operation
    anyAccess = accessOperation<MemoryAccess<accessOf(kind), width, semantics>, width, Width::Byte>(
        kind, stepStraight<semantics>);
template <Kind kind, auto semantics, Width width>
inline constexpr Operation
    alignedAccess = accessOperation<AlignedAccess<accessOf(kind), width, semantics>, width, Width::Byte>(
        kind, stepUnlessStopped<semantics, isUnaligned<width, FieldsOf<semantics>>, Stop::UnalignedAddress>);
template <Kind kind, auto semantics, Width width>
inline constexpr Operation
    surroundingAccess = accessOperation<SurroundingAccess<accessOf(kind), width, semantics>, width, width>(
        kind, stepStraight<semantics>);

/// Unaligned addresses are valid on the described processor only.
template <auto semantics, Width width>
inline constexpr Operations load{anyAccess<Kind::Load, semantics, width>,
                                 alignedAccess<Kind::Load, semantics, width>};
template <auto semantics, Width width>
inline constexpr Operations store{anyAccess<Kind::Store, semantics, width>,
                                  alignedAccess<Kind::Store, semantics, width>};

/// Accesses of the complete processor to the aligned unit around an address.
template <auto semantics, Width width>
inline constexpr const Operation& loadAround = surroundingAccess<Kind::Load, semantics, width>;
template <auto semantics, Width width>
inline constexpr const Operation& storeAround = surroundingAccess<Kind::Store, semantics, width>;

// Branches and jumps.

using LinkRegister = Gpr (*)(u32 word);
constexpr Gpr linksReturnAddress(u32) { return returnAddress; }

template <auto condition>
bool isTakenIf(u32 word, const MipsCpuRecord& cpu) {
    const auto fields = FieldsOf<condition>::from(word);
    return !namesOtherCondition(fields) && condition(fields, cpu);
}
template <auto condition, Kind kind, DelaySlot whenNotTaken, Link links>
inline constexpr Operation branchOperation{
    .kind = kind,
    .step = stepBranch<condition, whenNotTaken, links>,
    .routines = branchRoutines<condition, whenNotTaken, links>,
    .pausesOn = pausesOnCondition<FieldsOf<condition>>,
    .isTaken = isTakenIf<condition>,
    .linkRegister = links == Link::Yes ? LinkRegister{linksReturnAddress} : nullptr};
template <auto condition, Link links = Link::No>
inline constexpr const Operation& branch =
    branchOperation<condition, Kind::Branch, DelaySlot::Executed, links>;
template <auto condition, Link links = Link::No>
inline constexpr const Operation& branchLikely =
    branchOperation<condition, Kind::BranchLikely, DelaySlot::Skipped, links>;

constexpr bool isAlwaysTaken(u32, const MipsCpuRecord&) { return true; }

template <auto targetOf, LinkRegister linkRegister>
inline constexpr Operation jumpOperation{.kind = Kind::Jump,
                                         .step = stepJump<targetOf>,
                                         .routines = jumpRoutines<targetOf>,
                                         .isTaken = isAlwaysTaken,
                                         .linkRegister = linkRegister};
template <auto targetOf>
inline constexpr const Operation& jump = jumpOperation<targetOf, nullptr>;
template <auto targetOf, LinkRegister linkRegister>
inline constexpr const Operation& jumpAndLink = jumpOperation<targetOf, linkRegister>;

/// With rd = r0 it is JR.
inline constexpr Operation jumpAndLinkComplete{.kind = Kind::Jump,
                                               .step = stepJump<JALR_complete>,
                                               .routines = jumpRoutines<JALR>,
                                               .namesR0 = namesR0<RegisterFields>,
                                               .routinesIntoR0 = jumpRoutines<JR>,
                                               .isTaken = isAlwaysTaken,
                                               .linkRegister = gpr11To15};

}  // namespace tarn::r5900
