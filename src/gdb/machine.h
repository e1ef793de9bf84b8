// The debugger's view of the machine: numbered registers, and memory without side effects.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"

#include <span>
#include <string>

namespace tarn::gdb {

// Register numbers as the debugger counts them.
inline constexpr unsigned statusRegister = 32;
inline constexpr unsigned loRegister = 33;
inline constexpr unsigned hiRegister = 34;
inline constexpr unsigned badvaddrRegister = 35;
inline constexpr unsigned causeRegister = 36;
inline constexpr unsigned pcRegister = 37;
inline constexpr unsigned firstFpuRegister = 38;
inline constexpr unsigned fcsrRegister = 70;
inline constexpr unsigned firRegister = 71;
inline constexpr unsigned registerCount = 72;

/// The size of a register in bytes: 8, or 4 for the floating-point registers and status words.
constexpr unsigned registerSize(unsigned number) {
    const bool word = number == statusRegister || number == causeRegister || number >= firstFpuRegister;
    return word ? 4 : 8;
}

/// The low doubleword (or word) of register `number`, which is below registerCount.
u64 readRegister(unsigned number);

/// Sets it. The high doubleword of a register stays; both views of a floating-point register change.
void writeRegister(unsigned number, u64 value);

/// The XML that tells the debugger the names, sizes and numbers of the registers.
const std::string& targetDescription();

/// Copies guest memory from `address` on and returns how many bytes there were before the first unreadable
/// one.
///
/// Addresses are the ones that guest loads take, and the first megabyte, which only a fetch reaches.
/// Registers of devices read as they were last stored; those of the GS, whose reading changes them, cannot be
/// read.
std::size_t readMemory(u32 address, std::span<u8> bytes);

/// Stores all of `bytes`, or nothing and returns false when one of them would not go to main memory or the
/// special area. The DMA controller does not see stores to its registers.
bool writeMemory(u32 address, std::span<const u8> bytes);

}  // namespace tarn::gdb
