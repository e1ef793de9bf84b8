// The debugger's view of the machine: numbered registers, and memory without side effects.
#pragma once

#include "base/types.h"
#include "memory/main_memory.h"

#include <span>
#include <string>

namespace tarn::gdb {

// Register numbers of the debugger.
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

/// The low doubleword (or word) of register `number`, which must be below registerCount.
u64 readRegister(unsigned number);

/// Sets a register. The high doubleword does not change; both views of a floating-point register do.
void writeRegister(unsigned number, u64 value);

/// The XML description of the registers for the debugger: names, sizes and numbers.
const std::string& targetDescription();

/// Copies guest memory from `address` on. Returns the number of bytes before the first unreadable one.
///
/// Readable addresses are those of guest loads, and the first megabyte, which guests can only execute. Device
/// registers return the last stored value; those of the GS, where reads have side effects, cannot be read.
std::size_t readMemory(u32 address, std::span<u8> bytes);

/// Stores `bytes`, or returns false and stores nothing if any of them is outside main memory and the special
/// area. The DMA controller does not see stores to its registers.
bool writeMemory(u32 address, std::span<const u8> bytes);

}  // namespace tarn::gdb
