// Random primitives over random registers, the whole of local memory compared with the model after each.
// A case is determined by its number alone: TARN_CASE=N reruns case N of whichever of the tests is chosen.
#include "base/bits.h"
#include "gs/display.h"
#include "gs/drawing_model.h"
#include "gs/primitives.h"
#include "support/gs_machine.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>

namespace tarn::test {
namespace {

class RandomDrawing : public GsMachine {
  protected:
    RandomDrawing() {
        fillLocalMemory();
        for (u32 i = 0; i < localMemoryWords; i += 1 + random(8)) {
            Gs.vRamUL()[i] &= 0xFFFF8000;  // black, which may be a transparent entry of a palette
        }
        model.memory = background = {Gs.vRamUL(), Gs.vRamUL() + localMemoryWords};
    }
    ~RandomDrawing() override { Settings.blend = 0; }

    bool chance(u32 oneIn) { return random(oneIn) == 0; }

    /// Draws one primitive of each case, whose type and vertices `prepare` chooses.
    template <typename Prepare>
    void runCases(u32 count, bool hostile, Prepare prepare) {
        const char* only = std::getenv("TARN_CASE");
        const u32 first = only == nullptr ? 0 : static_cast<u32>(std::stoul(only));
        for (u32 number = first; number < (only == nullptr ? count : first + 1); ++number) {
            generator.seed(number);
            const WideVectors vectors(number / 7 % 2 == 0);
            choosePixelState(number);
            chooseRegisters(hostile);
            prepare();
            model.touched.clear();
            model.pixels = 0;
            model.draw(vertices.data());
            for (u32 look = 0; look < 8 && !model.touched.empty(); ++look) {
                const u32 word = model.touched[random(static_cast<u32>(model.touched.size()))];
                GsHost.pictureWords = {word, 1};
                GsHost.pictureIntact = true;
                beforeDrawing();
                ASSERT_FALSE(GsHost.pictureIntact) << "case " << number << " writes to word " << word;
            }
            const bool counts = number / 11 % 2 == 0;
            countPixels(counts);
            pixelsWritten = 0;
            primTable[Gs.prim().type](vertices.data());
            if (std::memcmp(Gs.vRamUL(), model.memory.data(), localMemoryBytes) != 0) {
                u32 word = 0;
                while (Gs.vRamUL()[word] == model.memory[word]) {
                    ++word;
                }
                FAIL() << "case " << number << ": word " << std::hex << word << " is " << Gs.vRamUL()[word]
                       << ", the model has " << model.memory[word] << ", before it was " << background[word];
            }
            countPixels(false);
            ASSERT_EQ(pixelsWritten, counts ? model.pixels : 0) << "case " << number;
            drawn += !model.touched.empty();
            for (const u32 index : model.touched) {
                model.memory[index] = Gs.vRamUL()[index] = background[index];
            }
        }
        EXPECT_TRUE(only != nullptr || drawn > count / 5) << "only " << drawn << " cases drew anything";
    }

    /// Registers as a sensible guest sets them, frame, depth and, mostly, texture apart and inside local
    /// memory; or hostile ones, anything that their bits can hold.
    void chooseRegisters(bool hostile) {
        const auto end = [&](u32 count) { return chance(2) ? count - 1 : random(count); };
        const u32 width = 64 * (!hostile ? 1 + random(10) : chance(4) ? 0 : random(64));
        const u32 fbp = 2048 * (hostile ? end(512) : random(64));
        const u32 zbp = hostile ? (chance(4) ? fbp : 2048 * end(512)) : 0x60000 + 2048 * random(16);
        const u32 over = hostile ? fbp : (chance(2) ? fbp : zbp) + 64 * random(64);
        const u32 apart = hostile ? 64 * end(16384) : 0xC0000 + 64 * random(256);
        Gs.gsfb() = {.fbp = fbp, .fbw = width, .maxRows = localMemoryWords / std::max(width, 1u)};
        Gs.zbuf() = {.zbp = zbp};
        Gs.tex0() = {.tbp0 = chance(4) ? over : apart,
                     .tbw = 64 * (hostile ? random(64) : 1 + random(16)),
                     .psm = hostile && chance(2) ? random(64) : std::array{0u, 2u, 19u, 20u}[random(4)],
                     .tw = 1u << random(11),
                     .th = 1u << random(11),
                     .tfx = random(4),
                     .cbp = 64 * (hostile ? end(16384) : random(16384)),
                     .cpsm = hostile && chance(4) ? random(16) : 2 * random(2),
                     .csm = random(2)};
        const auto from0 = [&](u32 limit) { return chance(2) ? 0 : random(limit); };
        const u32 farOffset = hostile ? 4096 : 300, farScissor = hostile ? 2048 : 200;
        const auto last = [&](u32 whole, u32 part) {
            return hostile ? end(2048) : chance(2) ? whole : 200 + random(part);
        };
        Gs.xyoffset() = {.ofx = from0(farOffset), .ofy = from0(farOffset)};
        Gs.scissor() = {.scax0 = from0(farScissor),
                        .scay0 = from0(farScissor),
                        .scax1 = last(639, 400),
                        .scay1 = last(447, 200)};
    }

    /// The state that both kinds of case choose alike; the case's number runs through all the combinations.
    void choosePixelState(u32 number) {
        Gs.prim().tme = bit(number, 0);
        Gs.prim().iip = bit(number, 1);
        Gs.test() = {.ate = bit(number, 2),
                     .atst = bits(number, 3, 3),
                     .aref = chance(4) ? 255 * random(2) : random(256),
                     .zte = bit(number, 6),
                     .ztst = bits(number, 7, 2)};
        Gs.prim().fst = random(2);
        Gs.prim().abe = random(2);
        Settings.blend = static_cast<u8>(chance(4));
        Gs.alpha() = {.a = random(4), .b = random(4), .c = random(4), .d = random(4), .fix = random(256)};
        Gs.texa = {.ta0 = random(256), .ta1 = random(256), .aem = random(2)};
        Gs.clut = {.cbw = random(64), .cou = random(64), .cov = random(1024)};
        Gs.rgba = chance(4) ? (random(2) * 0xFF000000) | 0x808080 : static_cast<u32>(generator());
    }

    void chooseVertices(u32 spread, bool wild) {
        const auto origin = [&](u32 offset, u32 first, u32 last, u32 size) {
            const u32 end = std::min(last, size);
            const u32 start =
                offset + (first >= end || chance(8) ? random(2048) : first + random(end - first));
            return start - std::min(start, random(spread));
        };
        const u32 left = origin(Gs.xyoffset().ofx, Gs.scissor().scax0, Gs.scissor().scax1, Gs.gsfb().fbw);
        const u32 top = origin(Gs.xyoffset().ofy, Gs.scissor().scay0, Gs.scissor().scay1, Gs.gsfb().maxRows);
        const u32 depth = static_cast<u32>(generator());
        const auto ratio = [&](f32 q) {
            return wild ? std::bit_cast<f32>(static_cast<u32>(generator()))
                        : q * static_cast<f32>(random(1000)) / 700;
        };
        for (GsVertex& vertex : vertices) {
            vertex.x = static_cast<s32>(std::min(left + random(spread), 4095u));
            vertex.y = static_cast<s32>(std::min(top + random(spread), 4095u));
            vertex.u = static_cast<s32>(random(chance(2) ? 2048 : 64));
            vertex.v = static_cast<s32>(random(chance(2) ? 2048 : 64));
            vertex.z = chance(2) ? static_cast<u32>(generator()) : depth + random(1000);
            vertex.rgba = static_cast<u32>(generator());
            const f32 q = chance(8) ? 0.0F : static_cast<f32>(1 + random(1000)) / 100;
            vertex.s = ratio(q), vertex.t = ratio(q), vertex.q = wild ? ratio(q) : q;
        }
    }

    std::vector<u32> background;
    DrawingModel model;
    std::array<GsVertex, 3> vertices{};
    u32 drawn = 0;
};

TEST_F(RandomDrawing, TrianglesOfEveryVariant) {
    runCases(6 * 512, false, [&] {
        Gs.prim().type = 3 + random(3);
        chooseVertices(chance(40) ? 500 : chance(2) ? 40 : 8, false);
    });
}

TEST_F(RandomDrawing, SpritesOfEveryFormat) {
    runCases(4 * 512, false, [&] {
        Gs.prim().type = 6;
        chooseVertices(chance(40) ? 500 : 40, false);
        if (!chance(8)) {  // corners out of order draw nothing
            for (const auto field : {&GsVertex::x, &GsVertex::y, &GsVertex::u, &GsVertex::v}) {
                vertices[1].*field = vertices[0].*field + std::abs(vertices[1].*field - vertices[0].*field);
            }
        }
    });
}

TEST_F(RandomDrawing, LinesAndPoints) {
    runCases(2 * 512, false, [&] {
        Gs.prim().type = random(3);
        chooseVertices(chance(2) ? 500 : 12, false);
    });
}

TEST_F(RandomDrawing, NothingLeavesLocalMemoryWhateverTheRegistersHold) {
    runCases(4096, true, [&] {
        Gs.prim().type = random(8);
        chooseVertices(chance(16) ? 4096 : 200, true);
        if (chance(2)) {  // the first rows, where buffers at the end of memory wrap
            const s32 first = std::min({vertices[0].y, vertices[1].y, vertices[2].y});
            for (GsVertex& vertex : vertices) {
                vertex.y += static_cast<s32>(Gs.xyoffset().ofy) - first;
            }
        }
    });
}

}  // namespace
}  // namespace tarn::test
