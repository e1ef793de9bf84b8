// The fixture of tests that run on the whole machine, and capturing standard output.
#pragma once

#include "support/machine.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <numeric>

namespace tarn::test {

using Lines = std::vector<std::string>;

/// What `action` prints to standard output.
template <typename Action>
std::string outputOf(Action action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

inline std::string hex(u64 value) {
    char text[17];
    std::snprintf(text, sizeof text, "%llx", value);
    return text;
}

inline std::string joined(const Lines& lines) {
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

/// Every allocation through allocateBuffer fails while one of these lives.
class FailingAllocation {
  public:
    FailingAllocation() {
        allocateBuffer = [](std::size_t) -> void* { return nullptr; };
    }
    ~FailingAllocation() { allocateBuffer = original; }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

  private:
    decltype(allocateBuffer) original = allocateBuffer;
};

/// A machine with its memory, fresh for each test.
class MachineTest : public testing::Test {
  protected:
    MachineTest() { restart(); }
    ~MachineTest() override { resetMachine(); }

    static void restart() {
        resetMachine();
        allocateMachine();
    }
    static Lines emuOutput() { return paneLines(emuOutputPane); }
    /// What a guest's doubleword load sees.
    static u64 doublewordAt(u64 address) {
        GuestValue value;
        MipsMemoryRead(&value, Width::Doubleword, address, 0);
        return value.low;
    }
};

}  // namespace tarn::test
