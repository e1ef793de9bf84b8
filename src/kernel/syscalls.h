// The system calls by name, and what the families of calls that do no work have in common.
#pragma once

#include "base/types.h"
#include "kernel/syscall_list.h"
#include "kernel/syscall_table.h"
#include "machine/machine.h"

namespace tarn {

/// Number of the call being served: the low byte of v1.
inline u8 syscallNumber() { return static_cast<u8>(MipsCpu.GPR[REG_V1].low); }

/// Prints the standard log line (PC, name, number) whatever the settings say.
void SYSCALL_PrintDebugInfo();

/// Prints the standard log line when system calls are logged, and returns whether they are.
bool logSyscall();

/// Ends a call that was served: on to the next instruction.
inline void finishSyscall() { MipsCpu.PC += 4; }

/// The three handlers behind the calls that do no work.
void stopAtSyscall();
void passSyscall();
void passPuzzlingSyscall();

/// Unassigned numbers: prints its own line whatever the settings say, and pauses.
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
