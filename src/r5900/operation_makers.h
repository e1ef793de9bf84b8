// Makes the record of an operation from its semantics.
#pragma once

#include "r5900/operation.h"
#include "r5900/system.h"
#include "r5900/threaded_interpreter.h"

namespace tarn::r5900 {

template <typename Fields>
bool pausesOnCondition(u32 word) {
    return namesOtherCondition(Fields::from(word));
}

inline constexpr Operation stop{.routines = plainRoutines};

template <auto semantics>
inline constexpr Operation computation{.kind = Kind::Computation,
                                       .step = stepStraight<semantics>,
                                       .routines = routines<Computation<semantics>>,
                                       .pausesOn = pausesOnCondition<FieldsOf<semantics>>};

/// What touches more than registers is left to single steps.
template <auto semantics>
inline constexpr Operation system{
    .kind = Kind::System, .step = stepStraight<semantics>, .routines = plainRoutines};

/// The kernel's handler moves PC, or leaves it and pauses.
inline constexpr Operation systemCall{.kind = Kind::System, .step = SYSCALL, .routines = plainRoutines};

template <typename Fields>
u32 addressIn(u32 word) {
    return addressOf(Fields::from(word));
}
template <auto semantics, Width width>
inline constexpr Operation load{.kind = Kind::Load,
                                .step = stepStraight<semantics>,
                                .routines = routines<MemoryAccess<Access::Load, width, semantics>>,
                                .width = width,
                                .address = addressIn<FieldsOf<semantics>>};
template <auto semantics, Width width>
inline constexpr Operation store{.kind = Kind::Store,
                                 .step = stepStraight<semantics>,
                                 .routines = routines<MemoryAccess<Access::Store, width, semantics>>,
                                 .width = width,
                                 .address = addressIn<FieldsOf<semantics>>};

template <auto condition>
bool isTaken(u32 word) {
    const auto fields = FieldsOf<condition>::from(word);
    return !namesOtherCondition(fields) && condition(fields);
}
template <auto condition, Kind kind, DelaySlot whenNotTaken>
inline constexpr Operation branchOperation{.kind = kind,
                                           .step = stepBranch<condition, whenNotTaken>,
                                           .routines = branchRoutines<condition, whenNotTaken>,
                                           .pausesOn = pausesOnCondition<FieldsOf<condition>>,
                                           .leaves = isTaken<condition>};
template <auto condition>
inline constexpr const Operation& branch = branchOperation<condition, Kind::Branch, DelaySlot::Executed>;
template <auto condition>
inline constexpr const Operation& branchLikely =
    branchOperation<condition, Kind::BranchLikely, DelaySlot::Skipped>;

template <auto targetOf, bool links>
bool jumps(u32 word) {
    if constexpr (links) {
        targetOf(FieldsOf<targetOf>::from(word), MipsCpu.PC);
    }
    return true;
}
template <auto targetOf, bool linking>
inline constexpr Operation jumpOperation{.kind = Kind::Jump,
                                         .step = stepJump<targetOf>,
                                         .routines = jumpRoutines<targetOf>,
                                         .leaves = jumps<targetOf, linking>,
                                         .links = linking};
template <auto targetOf>
inline constexpr const Operation& jump = jumpOperation<targetOf, false>;
template <auto targetOf>
inline constexpr const Operation& jumpAndLink = jumpOperation<targetOf, true>;

}  // namespace tarn::r5900
