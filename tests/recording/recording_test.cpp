// Recordings: replayed command by command they give what they gave at once; damage; what becomes of pixels.
#include "base/checksum.h"
#include "gs/gs_records.h"
#include "gs/local_memory.h"
#include "machine/settings.h"
#include "recording/buffer_picture.h"
#include "recording/outcomes.h"
#include "recording/player.h"
#include "recording/recording_writer.h"
#include "recording/register_fields.h"
#include "recording/replay.h"
#include "support/gs_machine.h"
#include "support/run_directory.h"

#include <cstring>
#include <functional>

namespace tarn::recording {
namespace {

using namespace gs_register;
using test::GifStream;

constexpr const char* path = "test.gsr";

class RecordingTest : public test::GsMachine {
  protected:
    /// Records `stream`, handed over in pieces of up to `piece` quadwords, and leaves the GS as it is then.
    static void record(const GifStream& stream, u32 piece = ~u32{0}, bool complete = true) {
        const FilePtr file(std::fopen(path, "wb"));
        Writer writer(
            file.get(),
            {.program = "test", .emulator = "test", .records = saveGsRecords(Gs), .localMemory = Gs.vRam});
        const u32 place = writer.placeNumber({.pc = 0x100000, .name = "main", .callers = ""});
        u64 step = 0;
        for (u32 at = 0; at < stream.quadwords();) {
            const u32 asked = std::min(piece, stream.quadwords() - at);
            const u32 done = GSgifTransferStep(stream.at(at), asked);
            writer.add({.kind = EventKind::Transfer, .step = ++step, .data = {stream.at(at), done * 16}},
                       place);
            at += done;
        }
        if (complete) {
            writer.finish(step);
        }
    }

    u64 random64() { return u64{generator()} << 32 | generator(); }

    /// Register writes, primitives, images and moves, whole and in pieces that fit together by chance.
    GifStream randomStream() {
        GifStream stream;
        stream.write(FRAME_1, 0x10000 * (1 + random(2))).write(SCISSOR_1, 0x003F0000003F0000);
        for (u32 i = 0; i < 24; ++i) {
            const u32 count = random(7);
            switch (random(6)) {
            case 0:
                stream.write(random(0x54), random64());
                break;
            case 1:  // any registers, also those that draw, two a quadword
                stream.tag(GifStream::reglist, count, random(16), random64());
                break;
            case 2:
                stream.tag(GifStream::packed, count, 1 + random(3), 0x531, GifStream::pre(random(0x800)));
                break;
            case 3:
                stream.write(BITBLTBUF, random64() & 0x0103FFFF0103FFFF)
                    .write(TRXPOS, random64() & 0x003F003F003F003F);
                stream.write(TRXREG, 0x0000000800000008).write(TRXDIR, random(3));
                break;
            default:
                stream.tag(GifStream::image, count, 0, 0);
                break;
            }
            for (u32 k = random(20); k > 0; --k) {
                stream.quadword(random64() & 0xFFFFFFFF03FF03FF, random64() & 0xFF0000000FFF03FF);
            }
        }
        return stream;
    }
};

class Nothing : public Visitor {
  public:
    bool after(const Command&) override { return true; }
};

TEST_F(RecordingTest, CommandByCommandIsTheSame) {
    const test::RunDirectory directory;
    for (u32 number = 0; number < 60; ++number) {
        SCOPED_TRACE(number);
        generator.seed(number);
        restart();
        randomStream().send();
        record(randomStream(), number % 3 == 0 ? ~u32{0} : 1 + random(9));
        const test::GsImage expected;

        Reader reader(path);
        ASSERT_EQ(reader.error(), "");
        Nothing visitor;
        Player(reader).play(visitor);
        EXPECT_EQ(reader.damage(), "");
        ASSERT_TRUE(expected == test::GsImage());

        reader.rewind();
        const FilePtr output(std::fopen("/dev/null", "w"));
        ASSERT_EQ(checkReplay(reader, output.get()), ReplayResult::Same);
    }
}

TEST_F(RecordingTest, AnotherEndIsDifferent) {
    const test::RunDirectory directory;
    const FilePtr file(std::fopen(path, "wb"));
    Start start;
    start.records = saveGsRecords(Gs);
    start.localMemory = Gs.vRam;
    start.blends = true;
    Writer writer(file.get(), start);
    localWord(77) = 1;
    writer.finish(0);
    std::fflush(file.get());
    Reader reader(path);
    const FilePtr output(std::fopen("/dev/null", "w"));
    EXPECT_EQ(checkReplay(reader, output.get()), ReplayResult::Different);
    EXPECT_EQ(Settings.blend, 0) << "as it was";
    GSwrite(0x10001, FRAME_1);
    GSwrite(0x002F0000003F0000, SCISSOR_1);
    EXPECT_EQ(shownRows(), 48U) << "of a buffer that is not the display's";
}

TEST_F(RecordingTest, DamageEndsReading) {
    const test::RunDirectory directory;
    GifStream stream;
    for (u32 i = 0; i < 40; ++i) {
        stream.write(FRAME_1, i);
    }
    record(stream, 2);
    const std::string whole = test::RunDirectory::read(path);
    const auto eventsOf = [&](const std::string& contents) {
        directory.write(path, contents);
        Reader reader(path);
        u64 count = 0;
        while (reader.error().empty() && reader.next()) {
            ++count;
        }
        EXPECT_EQ(reader.error().empty() && reader.damage().empty(), contents == whole);
        EXPECT_LE(count, 40U);
        return count;
    };
    EXPECT_EQ(eventsOf(whole), 40U);
    EXPECT_EQ(eventsOf(whole.substr(0, whole.size() - 1)), 40U);  // only the end is missing
    const auto behindBlock = [&](std::size_t at) {
        u32 size = 0;
        std::memcpy(&size, &whole[at], sizeof size);
        return at + sizeof size + size;
    };
    const std::size_t events = behindBlock(magicWord.size() + sizeof formatVersion);
    EXPECT_EQ(eventsOf(whole.substr(0, events) + whole.substr(behindBlock(events))), 0U) << "its end counts";
    for (std::size_t at = 0; at < whole.size(); at += 11) {
        SCOPED_TRACE(at);
        eventsOf(whole.substr(0, at));
        std::string other = whole;
        other[at] = static_cast<char>(other[at] ^ 0x55);
        eventsOf(other);
    }
}

TEST_F(RecordingTest, StatesThatAreNoneAreRefused) {
    const GsState former = Gs;
    const std::vector<u8> bytes = saveGsRecords(Gs);
    EXPECT_TRUE(restoreGsRecords(Gs, bytes));
    EXPECT_FALSE(restoreGsRecords(Gs, std::span(bytes).first(bytes.size() - 1)));
    const std::function<void(GsState&)> changes[] = {[](GsState& s) { s.primC = 3; },
                                                     [](GsState& s) { s.primC = -1; },
                                                     [](GsState& s) { s._gsfb[1].fbw = 1 << 20; },
                                                     [](GsState& s) { s._prim[0].type = 8; },
                                                     [](GsState& s) { s.currentContext = 2; },
                                                     [](GsState& s) { s.gsvertex[2].y = -1; },
                                                     [](GsState& s) { s._test[0].ztst = 4; },
                                                     [](GsState& s) { s.regn = 16; },
                                                     [](GsState& s) { s._tex0[0].tw = 4096; },
                                                     [](GsState& s) { s.dstbuf.maxRows = 7; }};
    for (const auto& change : changes) {
        GsState state = former;
        change(state);
        EXPECT_FALSE(restoreGsRecords(Gs, saveGsRecords(state)));
        EXPECT_EQ(saveGsRecords(Gs), bytes);
    }
}

TEST_F(RecordingTest, HeldRegistersAreWhatWasWritten) {
    for (u32 address = 0; address < 0x60; ++address) {
        const RegisterLayout* const layout = layoutOf(address);
        if (layout == nullptr || (address >= RGBAQ && address <= XYZ2) || address == XYZF3 ||
            address == XYZ3) {
            continue;
        }
        restart();
        GSwrite(0, address == PRMODE ? PRMODECONT : address);
        u64 value = random64() & 0xFFFFFFFFFBFFFFFF;  // no texture of more than 1024
        value &= address == TRXREG ? 0x00000FFF00000FFF : ~u64{0};
        value = address == TRXDIR ? 1 : value;
        GSwrite(value, address);
        for (const RegisterField& field : layout->fields) {
            const auto of = [&field](u64 word) {
                return word >> field.first & ((u64{1} << field.count) - 1);
            };
            const bool partly = layout->address == CLAMP_1 && field.first < 4;
            const u64 kept = partly ? 2 : layout->address == XYOFFSET_1 ? 0xFFF0 : ~u64{0};
            if (field.kept && field.name != std::string_view("TH") && field.name != std::string_view("TW")) {
                EXPECT_EQ(of(heldValue(Gs, address)), of(value) & kept) << layout->name << " " << field.name;
            }
        }
    }
}

/// The outcome of one pixel of the last primitive of a stream.
class OutcomeOf : public Visitor {
  public:
    OutcomeOf(s32 column, s32 row) : place{column, row, 1, 1} {}
    void before(const Command& command) override { probe.before(command); }
    bool after(const Command& command) override {
        if (command.isPrimitive()) {
            const test::GsImage image;
            outcome = probe.outcomes(command, place)[0];
            EXPECT_TRUE(image == test::GsImage());
            reached = probe.reach().contains(place.x, place.y);
        }
        return true;
    }
    Outcome outcome = Outcome::NotReached;
    bool reached = false;

  private:
    Rectangle place;
    OutcomeProbe probe;
};

TEST_F(RecordingTest, OutcomesHaveReasons) {
    const test::RunDirectory directory;
    constexpr u64 depth = u64{1} << 16;
    constexpr u64 greater = depth | u64{3} << 17;
    constexpr u64 alphaLess8 = 1 | 2 << 1 | 8 << 4;
    struct Row {
        const char* what;
        u64 prim;
        u64 test;
        u64 scissor;
        u32 z;
        s32 x, y;
        Outcome expected;
        u64 zbp = 100;
    };
    constexpr u64 wide = 0x003F0000003F0000;
    const Row rows[] = {
        {"sprite", 6, 0, wide, 5, 10, 10, Outcome::Written},
        {"the colour that was there", 6, depth | 1 << 17, wide, 0, 3, 3, Outcome::Written},
        {"depth", 6, greater, wide, 5, 10, 10, Outcome::DepthTest},
        {"no depth passes", 6, depth, wide, 9, 10, 10, Outcome::DepthTest},
        {"deeper", 6, greater, wide, 9, 10, 10, Outcome::Written},
        {"alpha", 6, alphaLess8, wide, 5, 10, 10, Outcome::AlphaTest},
        {"depth comes before alpha", 3, alphaLess8 | greater, wide, 5, 8, 6, Outcome::DepthTest},
        {"alpha behind depth", 3, alphaLess8 | greater, wide, 9, 8, 6, Outcome::AlphaTest},
        {"depths that are the colours", 6, greater, wide, 5, 10, 10, Outcome::NotReached, 0},
        {"scissor", 6, 0, 0x003F000000080000, 5, 10, 10, Outcome::Scissor},
        {"scissor and depth", 6, greater, 0x003F000000080000, 5, 10, 10, Outcome::Scissor},
        {"beside a triangle", 3, 0, wide, 5, 18, 18, Outcome::NotReached},
        {"a point", 0, 0, wide, 5, 20, 4, Outcome::Written},
        {"a line's end", 1, 0, wide, 5, 20, 4, Outcome::NotReached},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        restart();
        localWord(static_cast<u32>(row.zbp) * 2048 + 10 * 64 + 10) = 7;  // the depths that are there
        localWord(u32{100} * 2048 + 6 * 64 + 8) = 7;
        localWord(3 * 64 + 3) = 0x80402010;
        GifStream stream;
        stream.write(FRAME_1, 0x10000)
            .write(ZBUF_1, row.zbp)
            .write(SCISSOR_1, row.scissor)
            .write(TEST_1, row.test);
        stream.write(PRIM, row.prim).write(RGBAQ, 0x80402010);
        const auto vertex = [&](u64 x, u64 y) { stream.write(XYZ2, u64{row.z} << 32 | y << 20 | x << 4); };
        vertex(2, 2);
        if (row.prim != 0) {
            vertex(20, row.prim == 6 ? 20 : 4);
        }
        if (row.prim == 3) {
            vertex(4, 20);
        } else if (row.prim == 0) {
            vertex(20, 4);
        }
        record(stream);
        Reader reader(path);
        OutcomeOf visitor(row.x, row.y);
        Player(reader).play(visitor);
        EXPECT_EQ(visitor.outcome, row.expected);
    }
}

}  // namespace
}  // namespace tarn::recording
