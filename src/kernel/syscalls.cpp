// System calls that only log, their log lines, and the heap, stack and semaphore calls.
#include "kernel/syscalls.h"

#include "base/diagnostics.h"
#include "machine/machine.h"
#include "machine/settings.h"

#include <cstdio>

namespace tarn {

void SYSCALL_PrintDebugInfo() {
    const u8 number = syscallNumber();
    printDiagnostic("%8.8llx : %s 0x%x %d \n", MipsCpu.PC, debug_syscall[number], number,
                    static_cast<s8>(number));
}

bool logSyscall() {
    const bool logged = Settings.debug_print_syscall == 1;
    if (logged) {
        SYSCALL_PrintDebugInfo();
    }
    return logged;
}

void stopAtSyscall() {
    logSyscall();
    MipsCpu.pause = 1;
}

void passSyscall() {
    logSyscall();
    finishSyscall();
}

void passPuzzlingSyscall() {
    if (logSyscall()) {
        printDiagnostic("|\?\?\?\n");
    }
    finishSyscall();
}

void SYSCALL_NI() {
    const u8 number = syscallNumber();
    printDiagnostic("%8.8llx : Syscall_NI ( %x h) s8:%d u8:%d\n", MipsCpu.PC, number, static_cast<s8>(number),
                    number);
    MipsCpu.pause = 1;
}

/// Stack set-up. Does not move the stack.
void SYSCALL_RFU060() {
    logSyscall();
    MipsCpu.GPR[REG_V0].low = MipsCpu.GPR[REG_SP].low;
    finishSyscall();
}

/// Heap set-up: returns the end of the heap, its start (a0) plus its size (a1).
void SYSCALL_RFU061() {
    logSyscall();
    MipsCpu.GPR[REG_V0].low = MipsCpu.GPR[REG_A0].low + MipsCpu.GPR[REG_A1].low;
    finishSyscall();
}

/// There is one semaphore: the first call returns 1, every later one 0. The parameters (a0) are not read.
void SYSCALL_CreateSema() {
    logSyscall();
    if (Ps2Bios.semaInUse == 0) {
        Ps2Bios.semaWords = {};
        Ps2Bios.semaInUse = 1;
        MipsCpu.GPR[REG_V0].low = 1;
    } else {
        MipsCpu.GPR[REG_V0].low = 0;
    }
    finishSyscall();
}

}  // namespace tarn
