// A machine that runs on the complete processor, and single instructions on it.
#pragma once

#include "r5900/instruction.h"
#include "r5900/operation.h"

namespace tarn::test {

class CompleteTest : public MachineTest {
  protected:
    CompleteTest() { r5900::chooseProcessor(true); }
    ~CompleteTest() override { r5900::chooseProcessor(false); }

    static void execute(u32 word) {
        setProgram({word});
        MipsUpdateCpu();
        ASSERT_TRUE(MipsCpu.pause == 0 && MipsCpu.PC == programStart + 4) << mnemonicOf(word);
    }
};

}  // namespace tarn::test
