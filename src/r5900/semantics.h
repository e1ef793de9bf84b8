// Conventions for instruction semantics, and traits derived from their types.
//
// The semantics of an instruction is a function of its decoded operands. It does not use the instruction word
// or PC, so that both ways of execution can call it: single steps (step_handlers.h) and runs of many steps
// (threaded_interpreter.h). The lists (instruction_list.h) assign semantics to instructions.
#pragma once

#include "r5900/fields.h"

namespace tarn::r5900 {

/// The operand record of a semantics function.
template <typename Fields, typename Result, typename... More>
Fields fieldsOfFunction(Result (*)(Fields, More...));
template <auto semantics>
using FieldsOf = decltype(fieldsOfFunction(semantics));

/// Whether a comparison or branch uses a condition code other than 0, the only one there is.
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

/// Whether the destination field of an instruction word is r0.
template <typename Fields>
constexpr bool namesR0(u32 word) {
    if constexpr (requires(Fields fields) { fields.destination(); }) {
        return Fields::from(word).destination().number() == 0;
    } else {
        return false;
    }
}

}  // namespace tarn::r5900
