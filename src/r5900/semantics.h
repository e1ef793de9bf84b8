// How the semantics of an instruction are written, and what follows from their types.
//
// An instruction's semantics is a function of its decoded operands: it neither looks at the instruction word
// nor moves PC, so that any way of running code can call it. What surrounds it in a single step is in
// step_handlers.h, in a run of many in threaded_interpreter.h; instruction_list.h says which instruction
// means what.
#pragma once

#include "r5900/fields.h"

namespace tarn::r5900 {

/// The operands' record, from the type of the semantics.
template <typename Fields, typename Result, typename... More>
Fields fieldsOfFunction(Result (*)(Fields, More...));
template <auto semantics>
using FieldsOf = decltype(fieldsOfFunction(semantics));

/// Whether a comparison or branch names another condition code than 0, which is the only one there is.
template <typename Fields>
constexpr bool namesOtherCondition(const Fields& fields) {
    if constexpr (requires { fields.cc; }) {
        return fields.cc != 0;
    } else if constexpr (requires { fields.ccb; }) {
        return fields.ccb != 0;
    } else {
        return false;
    }
}

/// Whether the condition of a branch takes its address too, as those that link do.
template <auto condition>
inline constexpr bool knowsPc = requires(FieldsOf<condition> fields, u64 pc) {
    condition(fields, pc);
};

/// Whether a branch at `pc` is taken; links.
template <auto condition>
inline bool isTaken(const FieldsOf<condition>& fields, u64 pc) {
    if constexpr (knowsPc<condition>) {
        return condition(fields, pc);
    } else {
        return condition(fields);
    }
}

/// Whether an instruction of the format with these operands writes its result to r0.
template <typename Fields>
constexpr bool namesR0(u32 word) {
    if constexpr (requires(Fields fields) { fields.destination(); }) {
        return Fields::from(word).destination().number() == 0;
    } else {
        return false;
    }
}

}  // namespace tarn::r5900
