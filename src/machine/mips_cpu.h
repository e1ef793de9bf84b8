// The state of the R5900: registers, program counter and the pause flag.
#pragma once

#include "base/types.h"

#include <array>
#include <bit>

namespace tarn {

/// Why an instruction of the complete processor stopped.
enum class Stop : u8 {
    None,
    NoInstruction,
    NotSupported,
    IntegerOverflow,
    Trap,
    Break,
    UnalignedAddress,
};

/// The state of the CPU. Zero at process start; start-up sets what the guest expects.
///
/// On the described processor, instructions use the low doubleword of a register; only LQ, LDL, SQ, SDL
/// (general-purpose registers) and MULT1 (HI1 and LO1, the upper halves of HI and LO) use the high one. r0 is
/// an ordinary register.
struct MipsCpuRecord {
    u32 opcode = 0;  ///< the instruction word being executed
    u8 pause = 0;    ///< 1: stopped, until F2 clears it
    std::array<GuestValue, 32> GPR{};
    GuestValue HI{};                           ///< HI, and HI1 in the high doubleword
    GuestValue LO{};                           ///< LO, and LO1 in the high doubleword
    std::array<std::array<u64, 4>, 32> CP0{};  ///< by register number and select
    std::array<GuestValue, 32> FPR128{};       ///< bit images (low doubleword) of the FPU registers
    std::array<f32, 32> FPR32{};               ///< their single-precision values
    std::array<u64, 32> FCR{};                 ///< FCR0 and FCR31
    u32 ACC = 0;                               ///< floating-point accumulator, as a bit image (complete only)
    u64 SA = 0;                                ///< funnel shift amount in bytes (complete only)
    u64 cycle = 0;                             ///< MipsUpdateCpu calls so far, delay slots included
    u64 PC = 0;                                ///< byte address of the instruction word
    u32 entry = 0;                             ///< entry point from the ELF header
    u32 delaySlotDepth = 0;                    ///< delay slots being executed, 0 between steps
    u64 delaySlots = 0;                        ///< how many of `cycle` were delay slots
    u64 stopCycle = 0;                         ///< `cycle` when an instruction stopped, because of `stop`
    Stop stop = Stop::None;

    /// The bit image of FPU register `number` as a value.
    f32 FPR128Ptr(u8 number) const { return std::bit_cast<f32>(static_cast<u32>(FPR128[number].low)); }

    /// The value of FPU register `number` as a bit image. Intentional: it has eight bytes, so that bits 32-63
    /// are the value of the next register (0 after the last).
    u64 FPR32Ptr(u8 number) const {
        const u64 next = number < 31 ? std::bit_cast<u32>(FPR32[number + 1U]) : 0;
        return next << 32 | std::bit_cast<u32>(FPR32[number]);
    }
};

/// Numbers of the registers that calls and messages use.
enum RegisterNumber : u8 {
    REG_V0 = 2,
    REG_V1 = 3,
    REG_A0 = 4,
    REG_A1 = 5,
    REG_A2 = 6,
    REG_A3 = 7,
    REG_GP = 28,
    REG_SP = 29,
    REG_RA = 31
};

}  // namespace tarn
