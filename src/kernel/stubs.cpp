// Placeholders until this subsystem is built.
#include "kernel/syscall_table.h"
namespace tarn {
const std::array<SyscallHandler, 256> syscall_fct{};
const std::array<const char*, 256> debug_syscall{};
}  // namespace tarn
