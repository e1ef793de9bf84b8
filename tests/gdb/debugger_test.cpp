// The protocol's commands over the machine: registers, memory, points, running and stopping.
#include "gdb/debugger.h"

#include "gdb/machine.h"
#include "gdb/packet.h"
#include "support/machine_test.h"

#include <cstring>
#include <random>

using namespace tarn;
using namespace tarn::gdb;
using Mode = Debugger::Mode;

namespace {

constexpr u32 program = 0x00100000;

class DebuggerTest : public test::MachineTest {
  protected:
    DebuggerTest() {
        MipsCpu.PC = program;
        debugger.attach();
    }

    std::string ask(std::string_view packet) { return debugger.answer(packet).value_or("(none)"); }

    static void put(u32 offset, u32 word) { std::memcpy(MipsMemory + offset, &word, sizeof word); }

    Debugger debugger;
};

constexpr u32 immediate(u32 major, u32 rs, u32 rt, u32 low) {
    return major << 26 | rs << 21 | rt << 16 | low;
}

}  // namespace

TEST_F(DebuggerTest, Registers) {
    MipsCpu.GPR[4] = {0x1122334455667788, 0xAAAA};
    MipsCpu.HI = {7, 8};
    MipsCpu.FCR[31] = 0x00800000;
    EXPECT_EQ(ask("p4"), "8877665544332211");
    EXPECT_EQ(ask("p22"), "0700000000000000");
    EXPECT_EQ(ask("p25"), "0000100000000000");
    EXPECT_EQ(ask("p46"), "00008000");

    EXPECT_EQ(ask("P4=0100000000000080"), "OK");
    EXPECT_EQ(MipsCpu.GPR[4], (GuestValue{0x8000000000000001, 0xAAAA})) << "the high doubleword stays";
    EXPECT_EQ(ask("P27=0000803f"), "OK");
    EXPECT_EQ(MipsCpu.FPR32[1], 1.0F);
    EXPECT_EQ(MipsCpu.FPR128[1].low, 0x3F800000U);

    const std::string all = ask("g");
    EXPECT_EQ(all.size(), 2 * (32 * 8 + 4 * 8 + 2 * 4 + 34 * 4));
    MipsCpu = {};
    EXPECT_EQ(ask("G" + all), "OK");
    EXPECT_EQ(ask("g"), all);
    EXPECT_EQ(MipsCpu.PC, program);
}

TEST_F(DebuggerTest, TargetDescriptionArrivesInParts) {
    EXPECT_EQ(ask("qXfer:features:read:target.xml:0,ffff"), "l" + targetDescription());
    EXPECT_EQ(ask("qXfer:features:read:target.xml:10,20"), "m" + targetDescription().substr(0x10, 0x20));
    EXPECT_EQ(ask("qXfer:features:read:target.xml:fffffffff,1"), "l");
    EXPECT_EQ(ask("qXfer:features:read:other.xml:0,1"), "");
}

TEST_F(DebuggerTest, Memory) {
    put(0x100000, 0x04030201);
    put(0x1FFFFFC, 0x08070605);
    put(0x1C00000, 0x14131211);
    put(0x40, 0x24232221);
    std::memcpy(BiosMemory, "BIOS", 4);
    std::memcpy(SpecialAreaMemory + 0xA000, "\x01\x01", 2);

    struct Case {
        const char* request;
        const char* reply;
    };
    const Case cases[] = {
        {"m100000,4", "01020304"},
        {"m20100000,2", "0102"},
        {"m30100001,1", "02"},
        {"m80100000,4", "01020304"},
        {"mffffffff80100000,4", "01020304"},
        {"ma0100000,4", "E0e"},
        {"m1fffffc,8", "05060708"},  // short: nothing lies beyond
        {"m2000000,1", "E0e"},
        {"m40,4", "21222324"},
        {"m20000040,4", "E0e"},
        {"m1fc00000,4", "42494f53"},
        {"m9fc00000,4", "42494f53"},
        {"mbfc00000,4", "42494f53"},
        {"m1000a000,2", "0101"},
        {"m12001000,8", "E0e"},
        {"m12000000,1", "E0e"},
        {"m100000,0", ""},
        {"M20100000,2:aabb", "OK"},
        {"m100000,4", "aabb0304"},
        {"X80100002,2:\x7f}", "OK"},
        {"m100000,4", "aabb7f7d"},
        {"M1000a010,1:5a", "OK"},
        {"M1fc00000,1:00", "E0e"},
        {"M9fc00000,1:00", "E0e"},
        {"M40,1:00", "E0e"},
        {"M12001000,4:00000000", "E0e"},
        {"M1fffffe,4:01010101", "E0e"},  // none of it is stored
        {"m1fffffe,2", "0708"},
        {"X100000,0:", "OK"},
        {"M100000,2:aa", "E16"},
        {"M100000,1:zz", "E16"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(ask(each.request), each.reply) << each.request;
    }
    EXPECT_EQ(SpecialAreaMemory[0xA010], 0x5A);
    EXPECT_EQ(Ps2Bios.dmaWritePending, 0) << "the DMA controller must not see the debugger";
    EXPECT_EQ(Ps2Bios.dmaReadPending, 0);
}

TEST_F(DebuggerTest, BreakpointsStopARunButNotAStep) {
    EXPECT_EQ(ask("Z0,100000,4"), "OK");
    EXPECT_EQ(ask("c"), "(none)");
    EXPECT_EQ(debugger.mode(), Mode::Running);
    EXPECT_EQ(debugger.beforeStep(), "S05");
    EXPECT_EQ(debugger.mode(), Mode::Stopped);
    EXPECT_EQ(ask("?"), "S05");

    EXPECT_EQ(ask("s"), "(none)");
    EXPECT_EQ(debugger.beforeStep(), std::nullopt);
    EXPECT_EQ(debugger.afterStep(), "S05");

    EXPECT_EQ(ask("z1,100000,4"), "OK");
    EXPECT_EQ(ask("C05;100000"), "(none)");
    EXPECT_EQ(debugger.beforeStep(), std::nullopt);
    EXPECT_EQ(debugger.afterStep(), std::nullopt);
    EXPECT_EQ(debugger.interrupt(), "S02");
    EXPECT_EQ(debugger.interrupt(), std::nullopt) << "it stands already";

    std::string reply = "OK";
    for (unsigned i = 0; reply == "OK" && i < 100000; ++i) {
        char request[32];
        std::snprintf(request, sizeof request, "Z0,%x,4", 4 * i);
        reply = ask(request);
    }
    EXPECT_EQ(reply, "E1c") << "points are bounded";
}

TEST_F(DebuggerTest, WatchpointsStopBeforeTheAccess) {
    const u32 beqTaken = immediate(4, 0, 0, 4);
    const u32 bneNotTaken = immediate(5, 0, 0, 4);
    const u32 swSp4 = immediate(43, 29, 2, 4);
    const u32 lqSp = immediate(30, 29, 2, 0xFFF0);
    const u32 swRa0 = immediate(43, 31, 2, 0);
    const u32 jal = 3U << 26 | 0x40000;
    const u32 bc1t = immediate(17, 8, 1, 4);
    struct Case {
        const char* what;
        const char* point;
        u32 word;
        u32 slot;
        std::optional<std::string> reply;
    };
    const Case cases[] = {
        {"store into it", "Z2,200004,4", swSp4, 0, "T05watch:00200004;"},
        {"store beside it", "Z2,200008,4", swSp4, 0, std::nullopt},
        {"store into its last byte", "Z2,200001,4", swSp4, 0, "T05watch:00200004;"},
        {"store through a mirror", "Z2,20200004,1", swSp4, 0, "T05watch:20200004;"},
        {"load does not write", "Z2,1ffff0,8", lqSp, 0, std::nullopt},
        {"load of it", "Z3,1ffff8,8", lqSp, 0, "T05rwatch:001ffff8;"},
        {"store does not read", "Z3,200004,4", swSp4, 0, std::nullopt},
        {"access", "Z4,200000,8", swSp4, 0, "T05awatch:00200004;"},
        {"in the slot of a taken branch", "Z2,200004,4", beqTaken, swSp4, "T05watch:00200004;"},
        {"in the slot of a branch not taken", "Z2,200004,4", bneNotTaken, swSp4, std::nullopt},
        {"in the slot of a branch in a slot", "Z2,200004,4", beqTaken, beqTaken, std::nullopt},
        {"relative to the return address", "Z2,100008,4", jal, swRa0, "T05watch:00100008;"},
        {"after a floating-point branch", "Z2,200004,4", bc1t, swSp4, "T05watch:00200004;"},
    };
    MipsCpu.FCR[31] = 1U << 23;
    for (const Case& each : cases) {
        debugger.attach();
        MipsCpu.GPR[29].low = 0x200000;
        put(program, each.word);
        put(program + 4, each.slot);
        EXPECT_EQ(ask(each.point), "OK");
        ask("c");
        const MipsCpuRecord before = MipsCpu;
        EXPECT_EQ(debugger.beforeStep(), each.reply) << each.what;
        EXPECT_EQ(std::memcmp(&before, &MipsCpu, sizeof before), 0) << "looking ahead changes nothing";
    }
}

TEST_F(DebuggerTest, APausedCpuIsASignalAndContinuingTriesAgain) {
    struct Case {
        u32 word;
        u64 pc;
        const char* reply;
    };
    const Case cases[] = {
        {immediate(51, 0, 0, 0), program, "S04"},  // PREF
        {immediate(35, 0, 2, 0), program, "S0b"},  // LW
        {12, program, "S0c"},                      // SYSCALL
        {13, program, "S05"},                      // BREAK
        {0, 0x02000000, "S0b"},                    // nothing to fetch
    };
    for (const Case& each : cases) {
        ask("c");
        MipsCpu.pause = 1;
        MipsCpu.opcode = each.word;
        MipsCpu.PC = each.pc;
        EXPECT_EQ(debugger.afterStep(), each.reply);
        EXPECT_EQ(debugger.mode(), Mode::Stopped);
        ask("c");
        EXPECT_EQ(MipsCpu.pause, 0);
    }
}

TEST_F(DebuggerTest, LeavingAndComingBack) {
    ask("Z0,100000,4");
    EXPECT_EQ(ask("D"), "OK");
    EXPECT_FALSE(debugger.isAttached());
    EXPECT_EQ(debugger.mode(), Mode::Running);
    EXPECT_EQ(debugger.beforeStep(), std::nullopt) << "the breakpoint left with the debugger";
    MipsCpu.pause = 1;
    EXPECT_EQ(debugger.afterStep(), std::nullopt) << "a pause is the program's affair again";
    MipsCpu.pause = 0;

    debugger.attach();
    EXPECT_EQ(debugger.mode(), Mode::Stopped);
    ask("c");
    debugger.drop();
    EXPECT_EQ(debugger.mode(), Mode::Running);

    debugger.attach();
    debugger.drop();
    EXPECT_EQ(debugger.mode(), Mode::Stopped);

    debugger.attach();
    EXPECT_EQ(ask("vKill;1"), "OK");
    EXPECT_EQ(debugger.mode(), Mode::Killed);
}

// Packets that mean nothing are answered and change nothing; random ones do not read or write outside
// anything.
TEST_F(DebuggerTest, MalformedPackets) {
    const MipsCpuRecord before = MipsCpu;
    for (const char* packet : {"p",
                               "p48",
                               "pffffffffffffffff",
                               "P",
                               "P4",
                               "P4=",
                               "P4=00",
                               "P48=00000000",
                               "G",
                               "G00",
                               "m",
                               "m,",
                               "m1",
                               "m1,",
                               "m1,2,",
                               "mg,1",
                               "M",
                               "M100000,1",
                               "X100000,5:",
                               "Z",
                               "Z0",
                               "Z0,",
                               "Z0,100000",
                               "Z2,100000,0",
                               "Z2,100000,ffffffff",
                               "C",
                               "cxyz",
                               "Sg",
                               "qXfer:features:read:target.xml:",
                               "qXfer:features:read:target.xml:0,"}) {
        EXPECT_EQ(ask(packet), "E16") << packet;
    }
    for (const char* packet : {"", "Z5,0,0", "vMustReplyEmpty", "vCont?", "qUnknown", "!", "R00", "\xff"}) {
        EXPECT_EQ(ask(packet), "") << packet;
    }
    EXPECT_EQ(std::memcmp(&before, &MipsCpu, sizeof before), 0);
    EXPECT_EQ(debugger.mode(), Mode::Stopped);

    std::mt19937 random(7);
    constexpr std::string_view alphabet = "pPmMXZzgGcCsSqD0123456789abcdef,:;=f";
    for (unsigned i = 0; i < 100000; ++i) {
        std::string packet;
        for (auto length = random() % 24; length > 0; --length) {
            packet.push_back(alphabet[random() % alphabet.size()]);
        }
        debugger.answer(packet);
        debugger.beforeStep();
    }
}
