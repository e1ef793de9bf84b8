// Random primitives over random registers, the whole of local memory compared with the model after each.
// A case is determined by its number alone: TARN_CASE=N reruns case N of whichever of the tests is chosen.
#include "base/bits.h"
#include "gs/drawing_model.h"
#include "gs/gs.h"
#include "gs/primitives.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace tarn {
namespace {

class RandomDrawing : public testing::Test {
  protected:
    void SetUp() override {
        GSreset();
        ASSERT_EQ(GSinit(), 0);
        std::mt19937 noise(1);
        for (u32& word : background) {
            word = static_cast<u32>(noise());
        }
        std::memcpy(Gs.vRamUL, background.data(), localMemoryBytes);
        model.memory = background;
    }
    void TearDown() override {
        Settings.blend = 0;
        GSreset();
    }

    u32 below(u32 limit) { return static_cast<u32>(random()) % limit; }
    bool chance(u32 oneIn) { return below(oneIn) == 0; }

    /// Runs `prepare` for each case and draws one primitive from it.
    template <class Prepare>
    void runCases(u32 count, Prepare prepare) {
        const char* only = std::getenv("TARN_CASE");
        const u32 first = only == nullptr ? 0 : static_cast<u32>(std::stoul(only));
        for (u32 number = first; number < (only == nullptr ? count : first + 1); ++number) {
            random.seed(number);
            prepare(number);
            model.touched.clear();
            model.draw(vertices.data());
            primTable[Gs.prim->type](vertices.data());
            if (std::memcmp(Gs.vRamUL, model.memory.data(), localMemoryBytes) != 0) {
                u32 word = 0;
                while (Gs.vRamUL[word] == model.memory[word]) {
                    ++word;
                }
                FAIL() << "case " << number << ": word " << std::hex << word << " is " << Gs.vRamUL[word]
                       << ", the model has " << model.memory[word] << ", before it was " << background[word];
            }
            drawn += !model.touched.empty();
            for (const u32 index : model.touched) {
                model.memory[index] = Gs.vRamUL[index] = background[index];
            }
        }
        EXPECT_TRUE(only != nullptr || drawn > count / 5) << "only " << drawn << " cases drew anything";
    }

    /// Registers as a sensible guest sets them, frame, depth and, mostly, texture apart and inside local
    /// memory; or hostile ones, anything that their bits can hold.
    void chooseRegisters(bool hostile) {
        const auto end = [&](u32 count) { return chance(2) ? count - 1 : below(count); };
        const u32 width = 64 * (!hostile ? 1 + below(10) : chance(4) ? 0 : below(64));
        const u32 fbp = 2048 * (hostile ? end(512) : below(64));
        const u32 zbp = hostile ? (chance(4) ? fbp : 2048 * end(512)) : 0x60000 + 2048 * below(16);
        const u32 over = hostile ? fbp : (chance(2) ? fbp : zbp) + 64 * below(64);
        const u32 apart = hostile ? 64 * end(16384) : 0xC0000 + 64 * below(256);
        *Gs.gsfb = {.fbp = fbp, .fbw = width, .maxRows = localMemoryWords / std::max(width, 1u)};
        *Gs.zbuf = {.zbp = zbp};
        *Gs.tex0 = {.tbp0 = chance(4) ? over : apart,
                    .tbw = 64 * (hostile ? below(64) : 1 + below(16)),
                    .psm = hostile && chance(2) ? below(64) : std::array{0u, 2u, 19u, 20u}[below(4)],
                    .tw = 1u << below(11),
                    .th = 1u << below(11),
                    .tfx = below(4),
                    .cbp = 64 * (hostile ? end(16384) : below(16384)),
                    .cpsm = hostile && chance(4) ? below(16) : 2 * below(2),
                    .csm = below(2)};
        const auto from0 = [&](u32 limit) { return chance(2) ? 0 : below(limit); };
        const u32 farOffset = hostile ? 4096 : 300, farScissor = hostile ? 2048 : 200;
        *Gs.xyoffset = {.ofx = from0(farOffset), .ofy = from0(farOffset)};
        *Gs.scissor = {.scax0 = from0(farScissor),
                       .scay0 = from0(farScissor),
                       .scax1 = hostile     ? end(2048)
                                : chance(2) ? 639
                                            : 200 + below(400),
                       .scay1 = hostile     ? end(2048)
                                : chance(2) ? 447
                                            : 200 + below(200)};
    }

    /// The state that both kinds of case choose alike; the case's number runs through all the combinations.
    void choosePixelState(u32 number) {
        Gs.prim->tme = bit(number, 0);
        Gs.prim->iip = bit(number, 1);
        *Gs.test = {.ate = bit(number, 2),
                    .atst = bits(number, 3, 3),
                    .aref = chance(4) ? 255 * below(2) : below(256),
                    .zte = bit(number, 6),
                    .ztst = bits(number, 7, 2)};
        Gs.prim->fst = below(2);
        Gs.prim->abe = below(2);
        Settings.blend = static_cast<u8>(chance(4));
        *Gs.alpha = {.a = below(4), .b = below(4), .c = below(4), .d = below(4), .fix = below(256)};
        Gs.texa = {.ta0 = below(256), .ta1 = below(256), .aem = below(2)};
        Gs.clut = {.cbw = below(64), .cou = below(64), .cov = below(1024)};
        Gs.rgba = chance(4) ? (below(2) * 0xFF000000) | 0x808080 : static_cast<u32>(random());
    }

    void chooseVertices(u32 spread, bool wild) {
        const auto origin = [&](u32 offset, u32 first, u32 last, u32 size) {
            const u32 end = std::min(last, size);
            const u32 start = offset + (first >= end || chance(8) ? below(2048) : first + below(end - first));
            return start - std::min(start, below(spread));
        };
        const u32 left = origin(Gs.xyoffset->ofx, Gs.scissor->scax0, Gs.scissor->scax1, Gs.gsfb->fbw);
        const u32 top = origin(Gs.xyoffset->ofy, Gs.scissor->scay0, Gs.scissor->scay1, Gs.gsfb->maxRows);
        const u32 depth = static_cast<u32>(random());
        const auto ratio = [&](f32 q) {
            return wild ? std::bit_cast<f32>(static_cast<u32>(random()))
                        : q * static_cast<f32>(below(1000)) / 700;
        };
        for (GsVertex& vertex : vertices) {
            vertex.x = static_cast<s32>(std::min(left + below(spread), 4095u));
            vertex.y = static_cast<s32>(std::min(top + below(spread), 4095u));
            vertex.u = static_cast<s32>(below(chance(2) ? 2048 : 64));
            vertex.v = static_cast<s32>(below(chance(2) ? 2048 : 64));
            vertex.z = chance(2) ? static_cast<u32>(random()) : depth + below(1000);
            vertex.rgba = static_cast<u32>(random());
            const f32 q = chance(8) ? 0.0F : static_cast<f32>(1 + below(1000)) / 100;
            vertex.s = ratio(q), vertex.t = ratio(q), vertex.q = wild ? ratio(q) : q;
        }
    }

    std::vector<u32> background = std::vector<u32>(localMemoryWords);
    DrawingModel model;
    std::mt19937 random;
    std::array<GsVertex, 3> vertices{};
    u32 drawn = 0;
};

TEST_F(RandomDrawing, TrianglesOfEveryVariant) {
    runCases(6 * 512, [&](u32 number) {
        choosePixelState(number);
        chooseRegisters(false);
        Gs.prim->type = 3 + below(3);
        chooseVertices(chance(40) ? 500 : chance(2) ? 40 : 8, false);
    });
}

TEST_F(RandomDrawing, SpritesOfEveryFormat) {
    runCases(4 * 512, [&](u32 number) {
        choosePixelState(number);
        chooseRegisters(false);
        Gs.prim->type = 6;
        chooseVertices(chance(40) ? 500 : 40, false);
        if (!chance(8)) {  // corners out of order draw nothing
            for (const auto field : {&GsVertex::x, &GsVertex::y, &GsVertex::u, &GsVertex::v}) {
                vertices[1].*field = vertices[0].*field + std::abs(vertices[1].*field - vertices[0].*field);
            }
        }
    });
}

TEST_F(RandomDrawing, LinesAndPoints) {
    runCases(2 * 512, [&](u32 number) {
        choosePixelState(number);
        chooseRegisters(false);
        Gs.prim->type = below(3);
        chooseVertices(chance(2) ? 500 : 12, false);
    });
}

TEST_F(RandomDrawing, NothingLeavesLocalMemoryWhateverTheRegistersHold) {
    runCases(4096, [&](u32 number) {
        choosePixelState(number);
        chooseRegisters(true);
        Gs.prim->type = below(8);
        chooseVertices(chance(16) ? 4096 : 200, true);
        if (chance(2)) {  // the first rows, where buffers at the end of memory wrap
            const s32 first = std::min({vertices[0].y, vertices[1].y, vertices[2].y});
            for (GsVertex& vertex : vertices) {
                vertex.y += static_cast<s32>(Gs.xyoffset->ofy) - first;
            }
        }
    });
}

}  // namespace
}  // namespace tarn
