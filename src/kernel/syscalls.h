// The system calls by name, and the handlers shared by calls that are not implemented.
#pragma once

#include "base/types.h"
#include "kernel/syscall_list.h"
#include "kernel/syscall_table.h"
#include "machine/machine.h"

namespace tarn {

/// Number of the current call: the low byte of v1.
inline u8 syscallNumber() { return static_cast<u8>(MipsCpu.GPR[REG_V1].low); }

/// Prints the standard log line (PC, name, number) whatever the settings are.
void SYSCALL_PrintDebugInfo();

/// Prints the standard log line if system calls are logged, and returns whether they are.
bool logSyscall();

/// Ends a call by advancing PC.
inline void finishSyscall() { MipsCpu.PC += 4; }

/// The handlers of calls that are not implemented.
void stopAtSyscall();
void passSyscall();
void passPuzzlingSyscall();

/// The handler of unassigned numbers: prints a line whatever the settings are, and pauses.
void SYSCALL_NI();

#define TARN_STOPS(number, name) inline constexpr SyscallHandler SYSCALL_##name = stopAtSyscall;
#define TARN_CONTINUES(number, name) inline constexpr SyscallHandler SYSCALL_##name = passSyscall;
#define TARN_PUZZLES(number, name) inline constexpr SyscallHandler SYSCALL_##name = passPuzzlingSyscall;
#define TARN_WORKS(number, name) void SYSCALL_##name();
TARN_SYSTEM_CALLS(TARN_STOPS, TARN_CONTINUES, TARN_PUZZLES, TARN_WORKS)
#undef TARN_STOPS
#undef TARN_CONTINUES
#undef TARN_PUZZLES
#undef TARN_WORKS

}  // namespace tarn
