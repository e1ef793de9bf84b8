// The protocol over the machine: framing, registers, memory, points, running and stopping. What a debugger
// asks for in the usual course of things is left to the tests with a real one.
#include "gdb/debugger.h"

#include "gdb/machine_access.h"
#include "gdb/packet.h"
#include "r5900/instruction.h"
#include "r5900/operation.h"

#include <cstring>
#include <random>

namespace tarn::test {
namespace {

using namespace gdb;
using Mode = Debugger::Mode;

/// Bytes, and the events that they lead to; packets with their payload.
TEST(Packet, ReaderFindsPacketsAmongAnything) {
    std::string everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    const std::string longest(maximumPacket, 'a');
    const std::pair<std::string, Lines> cases[] = {
        {"+$g#67+$?#3F", {"=g", "=?"}},
        {"$#00", {"="}},
        {"$g#68", {"corrupt"}},
        {"$g#zz$g#67", {"corrupt", "=g"}},
        {"-\x03", {"refused", "interrupt"}},
        {"noise#00 $m1$g#67", {"=g"}},                       // cut off by the next packet
        {"$g#6$?#3f", {"=?"}},                               // the same inside the checksum
        {"$X}\x03}]\x03#b5", {std::string("=X#}\x03", 5)}},  // 0x03 inside a packet is data
        {framePacket(everyByte), {"=" + everyByte}},
        {framePacket(longest), {"=" + longest}},
        {framePacket(longest + "a"), {"oversized"}},
        {"$" + std::string(100 * maximumPacket, 'b'), {}},
        {"$g#67", {"=g"}},
    };
    constexpr const char* names[] = {"", "=", "interrupt", "corrupt", "oversized", "refused"};
    EXPECT_EQ(framePacket("*"), "$}\n#87") << "which would say how often the byte before comes";
    PacketReader reader;
    for (const auto& [bytes, events] : cases) {
        Lines seen;
        for (const char byte : bytes) {
            if (const auto event = reader.feed(byte); event != PacketReader::Event::Nothing) {
                seen.push_back(names[static_cast<int>(event)]);
                seen.back() += event == PacketReader::Event::Packet ? reader.payload() : "";
            }
        }
        EXPECT_EQ(seen, events) << bytes.substr(0, 20);
        EXPECT_LE(reader.payload().capacity(), 2 * maximumPacket);
    }
}

class DebuggerTest : public MachineTest {
  protected:
    DebuggerTest() {
        MipsCpu.PC = programStart;
        debugger.attach();
    }

    std::string ask(std::string_view packet) { return debugger.answer(packet).value_or("(none)"); }

    static void put(u32 offset, u32 word) { std::memcpy(MipsMemory + offset, &word, sizeof word); }

    symbols::SymbolTable symbols;
    Debugger debugger{nullptr, symbols};
};

TEST_F(DebuggerTest, RegistersAndMemory) {
    MipsCpu.GPR[4] = {0, 0xAAAA};
    MipsCpu.HI = {7, 8};
    put(0x100000, 0x04030201);
    put(0x1FFFFFC, 0x08070605);
    put(0x1C00000, 0x14131211);
    put(0x40, 0x24232221);
    std::memcpy(BiosMemory, "BIOS", 4);
    std::memcpy(SpecialAreaMemory + 0xA000, "\x01\x01", 2);
    EXPECT_EQ(ask("m100000,ffffffffff").size(), maximumPacket) << "as much as a reply holds";
    const std::string all = ask("g");
    EXPECT_EQ(all.size(), 2 * (32 * 8 + 4 * 8 + 2 * 4 + 34 * 4));
    const std::string description = targetDescription(), feature = "qXfer:features:read:target.xml:";
    EXPECT_EQ(ask(feature + "10,20"), "m" + description.substr(0x10, 0x20));
    EXPECT_EQ(ask(feature + hex(description.size() - 10) + ",a"), "l</target>\n");
    // clang-format off
    const std::pair<const char*, const char*> conversation[] = {
        {"P4=8877665544332281", "OK"}, {"p4", "8877665544332281"}, {"P27=0000803f", "OK"},
        {"p27", "0000803f"}, {"p22", "0700000000000000"}, {"p25", "0000100000000000"}, {"P46=00008000", "OK"},
        {"p46", "00008000"},
        {"qXfer:features:read:target.xml:fffffffff,1", "l"}, {"qXfer:features:read:other.xml:0,1", ""},
        {"m100000,4", "01020304"}, {"m20100000,2", "0102"}, {"m30100001,1", "02"},
        {"m80100000,4", "01020304"}, {"mffffffff80100000,4", "01020304"}, {"ma0100000,4", "E0e"},
        {"m1fffffc,8", "05060708"},  // short: nothing lies beyond
        {"m2000000,1", "E0e"}, {"m40,4", "21222324"}, {"m20000040,4", "E0e"}, {"m1fc00000,4", "42494f53"},
        {"m9fc00000,4", "42494f53"}, {"mbfc00000,4", "42494f53"}, {"m1000a000,2", "0101"},
        {"m12001000,8", "E0e"}, {"m12000000,1", "E0e"}, {"m100000,0", ""},
        {"M20100000,2:aaBb", "OK"}, {"m100000,4", "aabb0304"}, {"X80100002,2:\x7f}", "OK"},
        {"m100000,4", "aabb7f7d"}, {"M1000a010,1:5a", "OK"}, {"M1fc00000,1:00", "E0e"},
        {"M9fc00000,1:00", "E0e"}, {"M40,1:00", "E0e"}, {"M12001000,4:00000000", "E0e"},
        {"M1fffffe,4:01010101", "E0e"}, {"m1fffffe,2", "0708"},  // none of it is stored
        {"X100000,0:", "OK"}, {"M100000,2:aa", "E16"}, {"M100000,1:zz", "E16"}, {"M100000,1:0", "E16"},
    };
    // clang-format on
    for (const auto& [request, reply] : conversation) {
        EXPECT_EQ(ask(request), reply) << request;
    }
    EXPECT_EQ(MipsCpu.GPR[4].high, 0xAAAAU) << "the high doubleword stays";
    EXPECT_TRUE(MipsCpu.FPR32[1] == 1.0F && MipsCpu.FPR128[1].low == 0x3F800000);
    EXPECT_EQ(SpecialAreaMemory[0xA010], 0x5A);
    EXPECT_FALSE(Ps2Bios.dmaWritePending || Ps2Bios.dmaReadPending) << "the DMA controller saw the debugger";
    EXPECT_EQ(ask("G" + all), "OK");
    EXPECT_EQ(ask("g"), all);
}

TEST_F(DebuggerTest, TheCompleteProcessorKeepsR0) {
    r5900::chooseProcessor(true);
    EXPECT_TRUE(ask("P0=0100000000000000") == "OK" && ask("p0") == "0000000000000000");
    r5900::chooseProcessor(false);
}

TEST_F(DebuggerTest, BreakpointsStopARunButNotAStep) {
    EXPECT_EQ(ask("Z0,100000,4"), "OK");
    EXPECT_EQ(ask("c"), "(none)");
    EXPECT_EQ(debugger.beforeStep(), "S05");
    EXPECT_TRUE(debugger.mode() == Mode::Stopped && ask("?") == "S05");
    EXPECT_EQ(ask("s"), "(none)");
    EXPECT_EQ(debugger.beforeStep(), std::nullopt);
    EXPECT_EQ(debugger.afterStep(), "S05");
    EXPECT_EQ(ask("z1,100000,4"), "OK");
    EXPECT_EQ(ask("C05;100000"), "(none)");
    EXPECT_TRUE(!debugger.beforeStep() && !debugger.afterStep());
    EXPECT_EQ(ask("vCont;r100000,100008:1"), "(none)");
    MipsCpu.PC = 0x100004;
    EXPECT_EQ(debugger.afterStep(), std::nullopt) << "within the range";
    MipsCpu.PC = 0x100008;
    EXPECT_EQ(debugger.afterStep(), "S05") << "its end is outside";
    std::string reply = "OK";
    for (u64 i = 0; reply == "OK" && i < 100000; ++i) {
        reply = ask("Z0," + hex(4 * i) + ",4");
    }
    EXPECT_EQ(reply, "E1c") << "points are bounded";
    MipsCpu.pause = 1;
    MipsCpu.PC = 0;
    EXPECT_EQ(ask("D"), "OK");
    EXPECT_EQ(debugger.beforeStep(), std::nullopt) << "the breakpoints left with the debugger";
    EXPECT_EQ(MipsCpu.pause, 0) << "and the machine runs on";
}

TEST_F(DebuggerTest, WatchpointsStopBeforeTheAccess) {
    constexpr u32 beqTaken = immediate(4, 0, 0, 4), bneNotTaken = immediate(5, 0, 0, 4);
    constexpr u32 swSp4 = immediate(43, sp, v0, 4), lqSp = immediate(30, sp, v0, 0xFFF0);
    const struct {
        const char* point;
        u32 word, slot;
        std::optional<std::string> reply;
    } cases[] = {
        {"Z2,200004,4", swSp4, 0, "T05watch:00200004;"},
        {"Z2,200008,4", swSp4, 0, std::nullopt},  // beside it
        {"Z2,200000,4", swSp4, 0, std::nullopt},
        {"Z2,200001,4", swSp4, 0, "T05watch:00200004;"},  // into its last byte
        {"Z2,20200004,1", swSp4, 0, "T05watch:20200004;"},
        {"Z2,1ffff0,8", lqSp, 0, std::nullopt},
        {"Z3,1ffff8,8", lqSp, 0, "T05rwatch:001ffff8;"},
        {"Z3,200004,4", swSp4, 0, std::nullopt},
        {"Z4,200000,8", swSp4, 0, "T05awatch:00200004;"},
        {"Z2,200004,4", beqTaken, swSp4, "T05watch:00200004;"},  // in the slot
        {"Z2,200004,4", bneNotTaken, swSp4, std::nullopt},
        {"Z2,200004,4", beqTaken, beqTaken, std::nullopt},
        {"Z2,100008,4", jump(3, 0x40000), immediate(43, ra, v0, 0), "T05watch:00100008;"},
        {"Z2,200004,4", coprocessor1(8, 1, 4), swSp4, "T05watch:00200004;"},
    };
    MipsCpu.FCR[31] = 1U << 23;
    for (const auto& [point, word, slot, reply] : cases) {
        debugger.attach();
        MipsCpu.GPR[sp].low = 0x200000;
        setProgram({word, slot});
        EXPECT_EQ(ask(point), "OK");
        ask("c");
        EXPECT_EQ(debugger.beforeStep(), reply) << point << " " << hex(word) << " " << hex(slot);
    }
}

TEST_F(DebuggerTest, APausedCpuIsASignalAndContinuingTriesAgain) {
    const std::tuple<u32, u64, const char*> cases[] = {
        {immediate(51, 0, 0, 0), programStart, "S04"},  // PREF
        {immediate(35, 0, 2, 0), programStart, "S0b"},  // LW
        {12, programStart, "S0c"},                      // SYSCALL
        {13, programStart, "S05"},                      // BREAK
        {0, 0x02000000, "S0b"},                         // nothing to fetch
    };
    for (const auto& [word, pc, reply] : cases) {
        ask("c");
        EXPECT_EQ(MipsCpu.pause, 0);
        MipsCpu.pause = 1;
        MipsCpu.opcode = word;
        MipsCpu.PC = pc;
        EXPECT_EQ(debugger.afterStep(), reply);
        EXPECT_EQ(debugger.mode(), Mode::Stopped);
    }
}

// Packets that mean nothing are answered and change nothing; random ones do not read or write outside
// anything.
TEST_F(DebuggerTest, MalformedPackets) {
    const MipsCpuRecord before = MipsCpu;
    // clang-format off
    for (const char* packet : {
             "p", "p48", "pffffffffffffffff", "p10000000000000001", "P", "P4", "P4=", "P4=00", "P48=00000000",
             "G", "G00", "m", "m,", "m1", "m1,", "m1,2,", "mg,1", "M", "M100000,1", "X100000,5:", "Z", "Z0",
             "Z0,", "Z0,100000", "Z2,100000,0", "Z2,100000,ffffffff", "C", "cxyz", "Sg",
             "qXfer:features:read:target.xml:", "qXfer:features:read:target.xml:0,"}) {
        EXPECT_EQ(ask(packet), "E16") << packet;
    }
    // clang-format on
    for (const char* packet : {"", "Z5,0,0", "vMustReplyEmpty", "bs", "qUnknown", "!", "R00", "\xff"}) {
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

}  // namespace
}  // namespace tarn::test
