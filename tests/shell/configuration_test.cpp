// Tests the configuration: every key, unusual values, unusable files.
#include "support/machine_test.h"
#include "support/run_directory.h"

namespace tarn::test {
namespace {

class Configuration : public testing::Test {
  protected:
    RunDirectory directory;

    /// Reads the text as the configuration, over settings of all ones. What goes to standard error is
    /// dropped.
    int load(const std::string& text) {
        directory.write("tarn.ini", text);
        Settings.debug_op = 255;
        testing::internal::CaptureStderr();
        const int result = TarnLoadConfig();
        testing::internal::GetCapturedStderr();
        return result;
    }
    ~Configuration() override { Settings = {}; }
};

using Values = std::vector<u32>;

Values numbers() {
    // clang-format off
    const TarnSettings& s = Settings;
    return {s.debug_op, s.debug_dma, s.debug_print_syscall, s.debug_gs, s.koGUI_MainScreenW, s.koGUI_MainScreenH,
            s.koGUI_MainScreenBPP, s.koGUI_MainScreenStretch, s.stepsPerPoll, s.frameRate, s.blend, s.completeCpu};
    // clang-format on
}

TEST_F(Configuration, Values) {
    const Values defaults = {0, 0, 0, 0, 320, 240, 32, 1, 0, 0, 0, 0};
    const std::tuple<const char*, std::string, Values> cases[] = {
        {"", "", defaults},
        {"[General]\nElf=\"a b;#.elf\"\n"
         "Debug_op=1\nDebug_dma=2\nDebug_syscall=3\nDebug_GS=4\nSteps_per_poll=5\nComplete_cpu=1\n"
         "[Video]\nWidth=640\nHeight=480\nBpp=16\nStretch=0\nFrame_rate=60\nBlend=1",
         "a b;#.elf",
         {1, 2, 3, 4, 640, 480, 16, 0, 5, 60, 1, 1}},
        {"[general]\nelf = x ; comment\nDEBUG_OP = 0x101\nDebug_dma = 010\nDebug_GS = -1\nSteps_per_poll"
         "= -1\n"
         "[VIDEO]\nWidth = 65536\nHeight = -1\nBpp = text\nStretch = 99999999999999999999\nFrame_rate = -60",
         "x",
         {1, 8, 0, 255, 0, 65535, 0, 65535, 0, 0, 0, 0}},
        // Sections named like keys, which the library's own conversions do not survive.
        {"[General:Debug_op]\n[General:Elf]\n[Video:Width]\n[Video:Bpp]\nElf=x", "", defaults},
        {"Elf=outside\n[Other]\nElf=other\nWidth=5", "", defaults},
    };
    for (const auto& [text, elf, values] : cases) {
        EXPECT_EQ(load(text), 1) << text;
        EXPECT_EQ(Settings.ElfToExecute, elf) << text;
        EXPECT_EQ(numbers(), values) << text;
    }
    EXPECT_EQ(load(std::string(64 * 1024, '\n')), 1) << "the largest file";
    load("[General]\nElf=" + std::string(600, 'e'));
    EXPECT_EQ(Settings.ElfToExecute, std::string(255, 'e'));
}

TEST_F(Configuration, UnusableFilesLeaveTheSettings) {
    for (const std::string& text :
         {std::string("no equals sign"), std::string(2000, 'x'), std::string(64 * 1024 + 1, '\n')}) {
        EXPECT_EQ(load(text), -1);
        EXPECT_EQ(Settings.debug_op, 255);
    }
    std::filesystem::remove("tarn.ini");
    testing::internal::CaptureStderr();
    EXPECT_EQ(TarnLoadConfig(), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "cannot parse file [./tarn.ini]");
    std::filesystem::create_directory("tarn.ini");
    EXPECT_EQ(TarnLoadConfig(), -1);
}

}  // namespace
}  // namespace tarn::test
