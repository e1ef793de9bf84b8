// States, checkpoints and the way back: whatever is cut, thinned or run again is the machine that it was.
#include "history/machine_state.h"
#include "history/report.h"
#include "history/state_file.h"
#include "history/stop_points.h"
#include "history/timeline.h"
#include "machine/machine_fields.h"
#include "r5900/instruction.h"
#include "support/gif_stream.h"

#include <cstring>
#include <random>

namespace tarn::test {
namespace {

using namespace history;
using namespace gs_register;

constexpr u32 packetAddress = 0x180000;
constexpr u32 counterAddress = 0x200000;

/// Everything that a run depends on, the buffers as checksums.
struct Image {
    std::vector<u8> records = saveRecords(machine);
    std::vector<u64> buffers;

    Image() {
        for (const std::span<u8> buffer : buffersOf(machine)) {
            u64 sum = buffer.size();
            for (std::size_t at = 0; at < buffer.size(); at += sizeof sum) {
                u64 word = 0;
                std::memcpy(&word, &buffer[at], std::min(sizeof word, buffer.size() - at));
                sum = (sum ^ word) * 0x100000001B3;
            }
            buffers.push_back(sum);
        }
    }
    bool operator==(const Image&) const = default;
};

/// A program that counts in memory, and sends the quadwords of a GIF stream one by one, over and over: so a
/// packet and its image are cut wherever a run is.
class HistoryTest : public MachineTest {
  protected:
    HistoryTest() {
        GifStream stream;
        stream.write(BITBLTBUF, u64{1} << 48).write(BITBLTBUF, 0);
        stream.write(TRXPOS, 0).write(TRXREG, u64{8} << 32 | 8).write(TRXDIR, hostToLocal);
        stream.tag(GifStream::image, 16, 0, 0);
        for (u64 i = 0; i < 16; ++i) {
            stream.quadword(i * 0x0101010101010101, ~i);
        }
        stream.tag(GifStream::packed, 3, 3, 0x551, GifStream::pre(6) | GifStream::endOfPacket);
        for (u64 i = 0; i < 9; ++i) {
            stream.quadword(16 * i, 16 * i);
        }
        std::memcpy(MipsMemory + packetAddress, stream.at(0), stream.quadwords() * 16);
        const u32 words[] = {
            immediate(15, 0, t0, 0x1000),
            immediate(13, t0, t0, 0xA000),  // the channel
            immediate(15, 0, t1, 0x18),
            immediate(9, 0, t2, 1),  // the packet; 1
            immediate(15, 0, a0, 0x20),
            immediate(9, 0, v0, 0x101),  // the counter; start
            immediate(43, t0, t1, 0x10),
            immediate(43, t0, t2, 0x20),  // MADR, QWC
            immediate(43, t0, v0, 0),
            immediate(35, a0, sp, 0),  // CHCR
            immediate(9, sp, sp, 1),
            immediate(43, a0, sp, 0),  // count
            immediate(9, t1, t1, 16),
            immediate(9, 0, ra, 0),  // the next quadword
            jump(2, (programStart + 6 * 4) / 4),
            0,
        };
        std::memcpy(MipsMemory + programStart, words, sizeof words);
        MipsCpu.PC = programStart;
        Ps2Bios.vsyncCountdown = vsyncPeriod;
    }

    std::mt19937 random{1};
};

// What every field held comes back, and no other byte of the machine than padding is left out: a field that
// is not in the list fails to compile, or here.
TEST_F(HistoryTest, EveryFieldIsListedAndComesBack) {
    std::vector<bool> listed(sizeof(Machine));
    const std::vector<u8> start = saveRecords(machine);
    forEachField(machine, [&]<typename Field>(Field& field) {
        const auto offset = reinterpret_cast<const u8*>(&field) - reinterpret_cast<const u8*>(&machine);
        std::fill_n(listed.begin() + offset, sizeof field, true);
        if constexpr (!std::is_same_v<Field, Buffer>) {
            std::memset(static_cast<void*>(&field), static_cast<int>(random() % 255 + 1), sizeof field);
        }
    });
    std::size_t longest = 0;
    for (std::size_t i = 0, run = 0; i < listed.size(); ++i) {
        run = listed[i] ? 0 : run + 1;
        longest = std::max(longest, run);
    }
    EXPECT_LT(longest, alignof(Machine)) << "more than padding";
    const std::vector<u8> filled = saveRecords(machine);
    EXPECT_EQ(std::count(filled.begin(), filled.end(), 0), 0) << "every byte is saved";
    EXPECT_FALSE(restoreForeignRecords(machine, filled)) << "such a machine cannot be";
    EXPECT_EQ(saveRecords(machine), filled) << "and changes nothing";
    restoreRecords(machine, start);
    EXPECT_EQ(saveRecords(machine), start);
    restoreRecords(machine, filled);
    EXPECT_EQ(saveRecords(machine), filled);
    restoreRecords(machine, start);
}

// Cut anywhere, by a file or a checkpoint, a run goes on as if it were not.
TEST_F(HistoryTest, ACutRunEqualsAnUncutOne) {
    constexpr u64 length = 20'000;
    Timeline timeline(defaultBudget, {});
    timeline.begin();
    std::vector<std::pair<u64, std::vector<u8>>> cuts;
    std::vector<std::pair<u64, Image>> images;
    for (u64 step = random() % 200; step < length; step += 1 + random() % 8'000) {
        runTo(step);
        cuts.emplace_back(step, packState(7, {}));
        images.emplace_back(step, Image());
    }
    runTo(length);
    const Image end;
    for (const auto& [step, bytes] : cuts) {
        MipsMemory[0x300000] = 0xFF;
        MipsCpu.GPR[5].low = 1;
        ASSERT_EQ(unpackState(bytes, 7, {}), std::nullopt);
        ASSERT_EQ(machine.counters.driverSteps, step);
        runTo(length);
        EXPECT_EQ(Image(), end) << step;
    }
    for (auto it = images.rbegin(); it != images.rend(); ++it) {
        timeline.goTo(it->first);
        EXPECT_EQ(Image(), it->second) << it->first;
    }
    timeline.goTo(length);
    EXPECT_EQ(Image(), end);
}

TEST_F(HistoryTest, BadStatesAreRefusedAndChangeNothing) {
    runTo(1000);
    const std::vector<u8> good = packState(7, {});
    const Image before;
    EXPECT_EQ(unpackState(good, 8, {}), "it is the state of another program");
    Settings.completeCpu = 1;
    EXPECT_EQ(unpackState(good, 7, {}), "it was saved with the default processor, without --complete-cpu");
    const std::vector<u8> complete = packState(7, {});
    Settings.completeCpu = 0;
    EXPECT_EQ(unpackState(complete, 7, {}), "it was saved with the complete processor (--complete-cpu)");
    for (std::size_t size = 0; size < good.size(); size += 1 + good.size() / 3) {
        EXPECT_NE(unpackState(std::span(good).first(size), 7, {}), std::nullopt) << size;
    }
    for (unsigned i = 0; i < 12; ++i) {
        std::vector<u8> bad = good;
        bad[i < 8 ? i * 4 : random() % bad.size()] ^= static_cast<u8>(1U << random() % 8);
        // The last bits of the compressed data may mean nothing: then the state is the same.
        if (unpackState(bad, 7, {})) {
            ASSERT_EQ(Image(), before) << i;
        }
    }
    EXPECT_EQ(Image(), before);
    // A checksum does not make a state that no run can reach harmless.
    Gs.primC = 1000;
    const std::vector<u8> impossible = packState(7, {});
    Gs.primC = 0;
    EXPECT_EQ(unpackState(impossible, 7, {}), "it is damaged");
}

TEST_F(HistoryTest, CheckpointsShareAndThin) {
    Checkpoints checkpoints(4U << 20, {});
    for (u64 i = 0; i < 40; ++i) {
        runTo(i * 100);
        std::memset(MipsMemory + 0x400000, static_cast<int>(i + 1), 0x40000);
        checkpoints.take();
    }
    EXPECT_LE(checkpoints.bytesUsed(), 4U << 20);
    EXPECT_GE(checkpoints.count(), 8U);
    EXPECT_EQ(checkpoints.firstStep(), 0U);
    for (const u64 step : {3900U, 3000U, 1U, 2000U}) {
        const u64 at = checkpoints.restore(step);
        EXPECT_TRUE(at <= step && at == machine.counters.driverSteps);
        EXPECT_EQ(MipsMemory[0x400000], at / 100 + 1);
    }
}

// Runs over decoded code end at the same steps at which single steps are found to be ones to stop at: in
// random loops, at random points, of which some are on delay slots, no-ops, and accesses by a link register.
TEST_F(HistoryTest, RunsEndAtEveryStop) {
    constexpr u64 length = 3'000;
    constexpr u16 codeWords = 40;
    const auto any = [&](std::initializer_list<u32> choices) {
        return choices.begin()[random() % choices.size()];
    };
    const auto straight = [&](u8 base) {
        const u8 value = static_cast<u8>(any({v0, a0, t1, t2}));
        const auto offset = static_cast<u16>(random() % 64 * 8);
        return any({0, 0, immediate(9, value, value, offset), immediate(35, base, value, offset),
                    immediate(43, t0, value, offset), immediate(63, t0, value, offset),
                    immediate(32, base, value, offset)});
    };
    for (unsigned round = 0; round < 24; ++round) {
        restart();
        std::vector<u32> words{immediate(15, 0, t0, 0x20), immediate(15, 0, ra, 0x20)};
        while (words.size() < codeWords) {
            const u32 target = programStart + 4 * (static_cast<u32>(words.size()) + 2);
            const u32 branch = any({immediate(4, v0, a0, 3), immediate(5, v0, t1, 2),
                                    immediate(21, t1, t2, 4), jump(3, target / 4)});
            words.push_back(random() % 4 == 0 ? branch : straight(static_cast<u8>(any({t0, ra}))));
            if (words.back() == branch) {
                words.push_back(straight(static_cast<u8>(any({t0, ra}))));
            }
        }
        words.insert(words.end(), {0, 0, 0, 0, jump(2, (programStart + 8) / 4), straight(t0)});
        std::memcpy(MipsMemory + programStart, words.data(), words.size() * sizeof(u32));
        MipsCpu.PC = programStart;
        Ps2Bios.vsyncCountdown = vsyncPeriod;

        StopPoints points;
        for (u32 i = 0; i < round % 4; ++i) {
            points.addBreakpoint(programStart + 4 * static_cast<u32>(random() % words.size()));
        }
        for (u32 i = 0; i < round / 4 % 3; ++i) {
            const u32 base = any({0x200000, 0xA0200000, programStart});
            points.addWatchpoint({static_cast<WatchKind>(random() % 3),
                                  base + static_cast<u32>(random() % 512),
                                  1 + static_cast<u32>(random() % 8)});
        }
        Timeline timeline(defaultBudget, {});
        timeline.begin();
        const auto stopsOf = [&](auto advance) {
            std::vector<u64> stops;
            while (machine.counters.driverSteps < length) {
                advance();
                if (machine.counters.driverSteps < length && points.stopHere()) {
                    stops.push_back(machine.counters.driverSteps);
                    makeStep();
                }
            }
            return stops;
        };
        const std::vector<u64> expected = stopsOf([&] {
            if (!points.stopHere()) {
                makeStep();
            }
        });
        const std::vector<u8> end = saveRecords(machine);
        timeline.goTo(0);
        const ActiveStops active(points);
        ASSERT_EQ(stopsOf([] { runTo(length); }), expected) << round;
        ASSERT_EQ(saveRecords(machine), end) << round;
    }
}

TEST_F(HistoryTest, WhoWroteThis) {
    Timeline timeline(defaultBudget, {});
    timeline.begin();
    runTo(6 + 9 * 100 + 5);
    const Image before;
    const std::string store = describeLastWrite(timeline, 0x80000000 + counterAddress, 4, {});
    EXPECT_NE(store.find("PC 0x0010002c : 0x00000063 -> 0x00000064"), std::string::npos) << store;
    const std::string dma = describeLastWrite(timeline, 0x300000, 4, {});
    EXPECT_NE(dma.find("no store from step 0 to 911"), std::string::npos) << dma;
    const std::string steps = describeSteps(timeline, 3, {});
    EXPECT_EQ(std::count(steps.begin(), steps.end(), '\n'), 3) << steps;
    EXPECT_NE(steps.find("sp="), std::string::npos) << steps;
    EXPECT_EQ(Image(), before) << "looking back leaves the machine where it is";
}

}  // namespace
}  // namespace tarn::test
