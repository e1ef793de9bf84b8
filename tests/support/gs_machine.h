// A fresh Graphics Synthesizer for each test.
#pragma once

#include "base/vectors.h"
#include "gs/gs.h"
#include "gs/gs_records.h"
#include "gs/registers.h"
#include "machine/machine.h"
#include "support/gif_stream.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tarn::test {

/// The content that tests give to word `index` of local memory; every word differs.
constexpr u32 pattern(u32 index) { return index * 0x9E3779B1; }

inline void fillLocalMemory() {
    for (u32 i = 0; i < localMemoryWords; ++i) {
        Gs.vRamUL()[i] = pattern(i);
    }
}

/// Everything the renderer holds, to be compared.
struct GsImage {
    std::vector<u8> memory{Gs.vRam.begin(), Gs.vRam.end()};
    std::vector<u8> record = saveGsRecords(Gs);

    bool operator==(const GsImage&) const = default;
};

/// While one lives, vectors are as wide as the processor has them, or not.
class WideVectors {
  public:
    explicit WideVectors(bool on) { hasWideVectors = former && on; }
    ~WideVectors() { hasWideVectors = former; }
    WideVectors(const WideVectors&) = delete;
    WideVectors& operator=(const WideVectors&) = delete;

  private:
    bool former = hasWideVectors;
};

class GsMachine : public testing::Test {
  protected:
    GsMachine() { restart(); }
    ~GsMachine() override { GSreset(); }

    static void restart() {
        GSreset();
        GSinit();
    }

    /// 0 to limit - 1, the same on every host.
    u32 random(u32 limit) { return static_cast<u32>(generator() % limit); }
    std::mt19937 generator;
};

}  // namespace tarn::test
