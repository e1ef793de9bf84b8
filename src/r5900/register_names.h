// The register names that trace lines, displays and messages use.
#pragma once

#include <array>

namespace tarn {

/// By general-purpose register number; 32 and 33 are HI and LO.
inline constexpr std::array<const char*, 34> debug_r5900_reg{
    "r0", "at", "v0", "v1", "a0", "a1", "a2", "a3",  // 0-7
    "t0", "t1", "t2", "t3", "t4", "t5", "t6", "t7",  // 8-15
    "s0", "s1", "s2", "s3", "s4", "s5", "s6", "s7",  // 16-23
    "t8", "t9", "k0", "k1", "gp", "sp", "s8", "ra",  // 24-31
    "hi", "lo"};

inline constexpr std::array<const char*, 32> debug_r5900_cop1_reg{
    "fp0",  "fp1",  "fp2",  "fp3",  "fp4",  "fp5",  "fp6",  "fp7",   // 0-7
    "fp8",  "fp9",  "fp10", "fp11", "fp12", "fp13", "fp14", "fp15",  // 8-15
    "fp16", "fp17", "fp18", "fp19", "fp20", "fp21", "fp22", "fp23",  // 16-23
    "fp24", "fp25", "fp26", "fp27", "fp28", "fp29", "fp30", "fp31"};

/// By coprocessor-0 register number; a number without a register has a blank.
// clang-format off
inline constexpr std::array<const char*, 32> debug_r5900_cop0_reg{
    "Index",          "Random",       "EntryLo0", "EntryLo1",  // 0-3
    "Context",        "PageMask",     "Wired",    " ",         // 4-7
    "BadWAddr",       "Count",        "EntryHi",  "Compare",   // 8-11
    "Status",         "Cause",        "EPC",      "PRiD",      // 12-15
    "Config/Config1", " ",            "WatchLo",  "WatchHi",   // 16-19
    "XContext",       " ",            " ",        "Debug",     // 20-23
    "DEPC",           "PerfCnt",      "ErrCtl",   "CacheErr",  // 24-27
    "TagLo/DataLo",   "TagHi/DataHi", "ErrorEPC", "DESAVE",    // 28-31
};
// clang-format on

}  // namespace tarn
