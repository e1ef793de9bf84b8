// The 34 lines of the register display as one text. They have fixed places, so that from one display to the
// next only the values that changed are written.
#pragma once

#include "base/hex_text.h"
#include "machine/machine.h"
#include "r5900/register_names.h"

#include <string_view>

namespace tarn::r5900 {

/// The low doubleword of integer register 0 to 31, HI (32) or LO (33).
inline u64 integerRegister(std::size_t slot) {
    return slot < 32 ? MipsCpu.GPR[slot].low : slot == 32 ? MipsCpu.HI.low : MipsCpu.LO.low;
}

class RegisterLines {
  public:
    RegisterLines() {
        for (std::size_t slot = 0; slot < lines.size(); ++slot) {
            const char* name = debug_r5900_reg[slot];
            lines[slot] = {{name[0], name[1]}, {' ', ':', ' '}, {}, '\n'};
            write(slot, 0);
        }
    }

    /// The lines of the registers as they are, each with its newline.
    std::string_view now() {
        for (std::size_t slot = 0; slot < lines.size(); ++slot) {
            if (const u64 value = integerRegister(slot); value != shown[slot]) {
                write(slot, value);
            }
        }
        return {lines[0].name, sizeof lines};
    }

  private:
    struct Line {
        char name[2];
        char colon[3];
        char digits[mostHexDigits];
        char end;
    };

    void write(std::size_t slot, u64 value) {
        shown[slot] = value;
        writeHexDigits(lines[slot].digits, value, mostHexDigits);
    }

    std::array<u64, debug_r5900_reg.size()> shown{};
    std::array<Line, debug_r5900_reg.size()> lines{};
};

}  // namespace tarn::r5900
