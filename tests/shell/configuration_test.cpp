// Tests the configuration: every key, hostile values and hostile files.
#include "base/ini_file.h"
#include "support/machine_test.h"
#include "support/run_directory.h"

#include <random>

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

/// All numbers: the four flags, width, height, depth, stretching, steps per poll, frame rate, blending.
Values numbers() {
    return {Settings.debug_op,
            Settings.debug_dma,
            Settings.debug_print_syscall,
            Settings.debug_gs,
            Settings.koGUI_MainScreenW,
            Settings.koGUI_MainScreenH,
            Settings.koGUI_MainScreenBPP,
            Settings.koGUI_MainScreenStretch,
            Settings.stepsPerPoll,
            Settings.frameRate,
            Settings.blend};
}

TEST_F(Configuration, Values) {
    struct Case {
        const char* text;
        const char* elf;
        Values values;
    };
    const Values defaults = {0, 0, 0, 0, 320, 240, 32, 1, 0, 0, 0};
    const Case cases[] = {
        {"", "", defaults},
        {"[General]\nElf=\"a "
         "b;#.elf\"\nDebug_op=1\nDebug_dma=2\nDebug_syscall=3\nDebug_GS=4\nSteps_per_poll=5\n"
         "[Video]\nWidth=640\nHeight=480\nBpp=16\nStretch=0\nFrame_rate=60\nBlend=1",
         "a b;#.elf",
         {1, 2, 3, 4, 640, 480, 16, 0, 5, 60, 1}},
        {"[general]\nelf = x ; comment\nDEBUG_OP = 0x101\nDebug_dma = 010\nDebug_GS = -1\nSteps_per_poll = "
         "-1\n"
         "[VIDEO]\nWidth = 65536\nHeight = -1\nBpp = text\nStretch = 99999999999999999999\nFrame_rate = -60",
         "x",
         {1, 8, 0, 255, 0, 65535, 0, 65535, 0, 0, 0}},
        // Sections named like keys, which the library's own conversions do not survive.
        {"[General:Debug_op]\n[General:Elf]\n[Video:Width]\n[Video:Bpp]\nElf=x", "", defaults},
        {"Elf=outside\n[Other]\nElf=other\nWidth=5", "", defaults},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(load(c.text), 1) << c.text;
        EXPECT_EQ(Settings.ElfToExecute, std::string(c.elf)) << c.text;
        EXPECT_EQ(numbers(), c.values) << c.text;
    }
    load("[General]\nElf=" + std::string(600, 'e'));
    EXPECT_EQ(Settings.ElfToExecute, std::string(255, 'e'));
}

TEST_F(Configuration, UnusableFilesLeaveTheSettings) {
    for (const std::string& text :
         {std::string("no equals sign"), std::string(2000, 'x'), std::string(1 << 20, '\n')}) {
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

TEST_F(Configuration, HostileBytes) {
    // Text that the library treats specially, in any order, and long runs around its limit of 1024 a line.
    const std::string pieces[] = {"[General]",
                                  "[Video]\n",
                                  "[General:Elf]",
                                  "[",
                                  "]",
                                  "[]",
                                  "=",
                                  "\"",
                                  "'",
                                  "\\",
                                  "\\\n",
                                  "\n",
                                  "\r",
                                  ";",
                                  "#",
                                  "Elf",
                                  "Width=",
                                  "\xFF",
                                  "%s%n",
                                  std::string(1, '\0'),
                                  " \t"};
    std::mt19937 generator(1);
    const auto random = [&](std::size_t limit) { return generator() % limit; };
    for (int file = 0; file < 300; ++file) {
        std::string text;
        for (std::size_t left = random(30); left > 0; --left) {
            text += random(8) != 0 ? pieces[random(std::size(pieces))]
                                   : std::string(1000 + random(60), "aA=[]\\ \"\n"[random(9)]);
        }
        load(text);
    }
}

}  // namespace
}  // namespace tarn::test
