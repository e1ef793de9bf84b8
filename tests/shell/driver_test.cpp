// Tests the driver: the steps of start-up and shut-down, how far one call of the run procedure goes, pacing.
#include "loader/elf_format.h"
#include "shell/session.h"
#include "support/machine_test.h"
#include "support/run_directory.h"

#include <cstring>
#include <thread>

namespace tarn::test {
namespace {

constexpr u32 entry = 0x00100000;
constexpr u32 stoppingWord = 0xEC000000;  // an opcode that does not exist

class DriverTest : public testing::Test {
  protected:
    DriverTest() {
        resetMachine();
        directory.write("tarn.ini", "[General]\nElf=guest.elf\n");
        directory.write("bios/scph10000.bin", "BIOS");
        const ElfFileHeader header{.e_entry = entry};
        directory.write("guest.elf", {reinterpret_cast<const char*>(&header), sizeof header});
        TarnLoadConfig();
        createMainScreen();
        Driver.farewell = 0;
        TarnGUI.running = 1;
        TarnGUI.IdleProc = koGUI_TarnInitProc;
    }
    ~DriverTest() override {
        freeMainScreen();
        resetMachine();
    }

    /// Start-up to its end, or its failure; how many calls it took.
    static u32 start() {
        u32 calls = 0;
        for (; TarnGUI.running == 1 && TarnGUI.IdleProc == koGUI_TarnInitProc; ++calls) {
            TarnGUI.IdleProc();
        }
        return calls;
    }

    RunDirectory directory;
};

TEST_F(DriverTest, StartsInTwelveSteps) {
    MipsCpu.pause = 1;
    MipsCpu.cycle = 5;
    EXPECT_EQ(start(), 12U);
    EXPECT_TRUE(TarnGUI.running == 1 && TarnGUI.IdleProc == &koGUI_TarnProc);
    for (const char* fact : {"Tarn", "0.3", "2002", "20021004"}) {
        EXPECT_NE(paneLines(emuOutputPane).front().find(fact), std::string::npos) << fact;
    }
    EXPECT_TRUE(MipsCpu.pause == 0 && MipsCpu.cycle == 0 && MipsCpu.PC == entry);
    EXPECT_EQ(Ps2Bios.vsyncCountdown, 0x6FFFU);
    for (std::size_t i = 0; i < 32; ++i) {
        EXPECT_EQ(MipsCpu.GPR[i].low, i == 28 ? 0x81F80000U : i == 29 ? 0x81F00000U : 0U);
        EXPECT_EQ(MipsCpu.CP0[i][0], i == 12 ? 0x10900001U : i == 15 ? 0x2E20U : 0U);
    }
}

TEST_F(DriverTest, FailuresAreCountedAndTheEndTakesSevenSteps) {
    std::filesystem::remove("bios/scph10000.bin");
    Settings.ElfToExecute[0] = 0;
    {
        const FailingAllocation noMemory;
        EXPECT_EQ(start(), 5U);
    }
    EXPECT_TRUE(Driver.IsInitOK == 6 && TarnGUI.running == 2);
    TarnGUI.running = 1;
    for (int call = 0; call < 8; ++call) {
        EXPECT_EQ(TarnGUI.running, call < 7 ? 1 : 2);
        koGUI_TarnEndingProc();
    }
}

TEST_F(DriverTest, OneCallRunsUntilThereIsSomethingToSee) {
    start();
    const auto stepsOfACall = [] {
        const u64 before = MipsCpu.cycle;
        koGUI_TarnProc();
        return MipsCpu.cycle - before;
    };
    EXPECT_EQ(stepsOfACall(), 1U);
    Settings.stepsPerPoll = 1000;
    EXPECT_EQ(stepsOfACall(), 1000U);
    Settings.stepsPerPoll = 1000000;
    EXPECT_EQ(stepsOfACall(), 28658U - 1001) << "a vertical blank";
    EXPECT_EQ(stepsOfACall(), 28659U);
    Settings.debug_op = 1;
    EXPECT_EQ(stepsOfACall(), 1U) << "a traced instruction";
    Settings.debug_op = 0;
    MipsMemoryWrite({stoppingWord}, Width::Word, MipsCpu.PC, 40);
    outputOf([&] { EXPECT_EQ(stepsOfACall(), 11U) << "a stop"; });
    EXPECT_EQ(stepsOfACall(), 0U);
}

TEST_F(DriverTest, PacingHoldsTheNextBlank) {
    using Clock = std::chrono::steady_clock;
    FramePacer pacer;
    EXPECT_FALSE(pacer.holds(1, 20));
    const auto start = Clock::now();
    while (pacer.holds(2, 20)) {
    }
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(45));
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
    EXPECT_FALSE(pacer.holds(3, 20));
    EXPECT_TRUE(pacer.holds(4, 20)) << "lost time is not made up for";
    EXPECT_FALSE(pacer.holds(5, 0)) << "no rate";
    Settings.frameRate = 1;
    Settings.stepsPerPoll = 1000000;
    DriverTest::start();
    for (int call = 0; call < 5; ++call) {
        koGUI_TarnProc();  // waits only for so long that input is still taken
    }
    EXPECT_EQ(verticalBlanks, 2U) << "the time begins to count with the first";
}

}  // namespace
}  // namespace tarn::test
