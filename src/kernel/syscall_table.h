// The system call table, through which SYSCALL reaches the kernel.
#pragma once

#include <array>

namespace tarn {

using SyscallHandler = void (*)();

/// Handlers by call number (low byte of v1). A handler advances PC by 4, or pauses and leaves it.
extern const std::array<SyscallHandler, 256> syscall_fct;

/// The handlers' own names, "SYSCALL_NI" for unassigned numbers.
extern const std::array<const char*, 256> debug_syscall;

}  // namespace tarn
