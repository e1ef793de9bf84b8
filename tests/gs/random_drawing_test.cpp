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

    /// Registers as a sensible guest sets them: frame, depth and, mostly, texture apart and inside local
    /// memory.
    void chooseSensibleRegisters() {
        const u32 width = 64 * (1 + below(10));
        *Gs.gsfb = {.fbp = 2048 * below(64), .fbw = width, .maxRows = localMemoryWords / width};
        *Gs.zbuf = {.zbp = 0x60000 + 2048 * below(16)};
        *Gs.tex0 = {.tbp0 = chance(4) ? (chance(2) ? Gs.gsfb->fbp : Gs.zbuf->zbp) + 64 * below(64)
                                      : 0xC0000 + 64 * below(256),
                    .tbw = 64 * (1 + below(16)),
                    .psm = std::array<u32, 4>{0, 2, 19, 20}[below(4)],
                    .tw = 1u << below(11),
                    .th = 1u << below(11),
                    .tfx = below(4),
                    .cbp = 64 * below(16384),
                    .cpsm = 2 * below(2),
                    .csm = below(2)};
        *Gs.xyoffset = {.ofx = chance(2) ? 0 : below(300), .ofy = chance(2) ? 0 : below(300)};
        *Gs.scissor = {.scax0 = chance(2) ? 0 : below(200),
                       .scay0 = chance(2) ? 0 : below(200),
                       .scax1 = chance(2) ? 639 : 200 + below(400),
                       .scay1 = chance(2) ? 447 : 200 + below(200)};
    }

    /// Anything that the registers' bits can hold.
    void chooseHostileRegisters() {
        const u32 width = chance(4) ? 0 : 64 * below(64);
        *Gs.gsfb = {.fbp = 2048 * (chance(2) ? 511 : below(512)),
                    .fbw = width,
                    .maxRows = width == 0 ? localMemoryWords : localMemoryWords / width};
        *Gs.zbuf = {.zbp = chance(4) ? Gs.gsfb->fbp : 2048 * (chance(2) ? 511 : below(512))};
        *Gs.tex0 = {.tbp0 = chance(4) ? Gs.gsfb->fbp : 64 * (chance(2) ? 16383 : below(16384)),
                    .tbw = 64 * below(64),
                    .psm = chance(2) ? below(64) : 19 + below(2),
                    .tw = 1u << below(11),
                    .th = 1u << below(11),
                    .tfx = below(4),
                    .cbp = 64 * (chance(2) ? 16383 : below(16384)),
                    .cpsm = chance(4) ? below(16) : 2 * below(2),
                    .csm = below(2)};
        *Gs.xyoffset = {.ofx = chance(2) ? 0 : below(4096), .ofy = chance(2) ? 0 : below(4096)};
        *Gs.scissor = {.scax0 = chance(2) ? 0 : below(2048),
                       .scay0 = chance(2) ? 0 : below(2048),
                       .scax1 = chance(2) ? 2047 : below(2048),
                       .scay1 = chance(2) ? 2047 : below(2048)};
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
        const auto origin = [&](u32 offset, u32 first, u32 last) {
            const u32 start = first >= last || chance(8) ? below(2048) : first + below(last - first);
            return offset + start - std::min(offset + start, below(spread));
        };
        const u32 left =
            origin(Gs.xyoffset->ofx, Gs.scissor->scax0, std::min(Gs.scissor->scax1, Gs.gsfb->fbw));
        const u32 top =
            origin(Gs.xyoffset->ofy, Gs.scissor->scay0, std::min(Gs.scissor->scay1, Gs.gsfb->maxRows));
        const u32 depth = static_cast<u32>(random());
        for (GsVertex& vertex : vertices) {
            vertex.x = static_cast<s32>(std::min(left + below(spread), 4095u));
            vertex.y = static_cast<s32>(std::min(top + below(spread), 4095u));
            vertex.u = static_cast<s32>(below(chance(2) ? 2048 : 64));
            vertex.v = static_cast<s32>(below(chance(2) ? 2048 : 64));
            vertex.z = chance(2) ? static_cast<u32>(random()) : depth + below(1000);
            vertex.rgba = static_cast<u32>(random());
            vertex.q = chance(8) ? 0.0F : static_cast<f32>(1 + below(1000)) / 100;
            vertex.s = vertex.q * static_cast<f32>(below(1000)) / 700;
            vertex.t = vertex.q * static_cast<f32>(below(1000)) / 700;
            if (wild) {
                vertex.s = std::bit_cast<f32>(static_cast<u32>(random()));
                vertex.t = std::bit_cast<f32>(static_cast<u32>(random()));
                vertex.q = std::bit_cast<f32>(static_cast<u32>(random()));
            }
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
        chooseSensibleRegisters();
        Gs.prim->type = 3 + below(3);
        chooseVertices(chance(40) ? 500 : chance(2) ? 40 : 8, false);
    });
}

TEST_F(RandomDrawing, SpritesOfEveryFormat) {
    runCases(4 * 512, [&](u32 number) {
        choosePixelState(number);
        chooseSensibleRegisters();
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
        chooseSensibleRegisters();
        Gs.prim->type = below(3);
        chooseVertices(chance(2) ? 500 : 12, false);
    });
}

TEST_F(RandomDrawing, NothingLeavesLocalMemoryWhateverTheRegistersHold) {
    runCases(4096, [&](u32 number) {
        choosePixelState(number);
        chooseHostileRegisters();
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
