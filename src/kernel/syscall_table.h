// The system call table.
#pragma once

#include <array>

namespace tarn {

using SyscallHandler = void (*)();

/// Handlers by call number (low byte of v1). A handler advances PC by 4, or pauses without changing PC.
extern const std::array<SyscallHandler, 256> syscall_fct;

/// The names of the handlers, "SYSCALL_NI" for unassigned numbers.
extern const std::array<const char*, 256> debug_syscall;

}  // namespace tarn
