// An independent model of drawing: every pixel from closed formulas, row by row and with nothing carried on,
// into a memory of its own. It shares only the register record with what it checks.
#pragma once

#include "machine/machine.h"
#include "machine/settings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tarn {

class DrawingModel {
  public:
    std::vector<u32> memory = std::vector<u32>(localMemoryWords);
    std::vector<u32> touched;  ///< indexes stored to
    u64 pixels = 0;            ///< how often one was stored to the frame

    /// Draws one completed primitive of the current type from the queue.
    void draw(const GsVertex* queue) {
        static constexpr int counts[] = {1, 2, 2, 3, 3, 3, 2, 0};
        const u32 type = Gs.prim().type;
        GsVertex v[3];
        for (int i = 0; i < counts[type]; ++i) {
            v[i] = queue[i];
            v[i].x -= static_cast<s32>(Gs.xyoffset().ofx);
            v[i].y -= static_cast<s32>(Gs.xyoffset().ofy);
            if (type > 0) {
                clip(v[i], Gs.prim().tme == 1 && type > 2);
            }
        }
        if (type == 0) {
            if (v[0].x >= scissorLeft() && v[0].x <= scissorRight() && v[0].y >= scissorTop() &&
                v[0].y <= scissorBottom() && v[0].x >= 0 && v[0].y >= 0 && v[0].x < width() &&
                v[0].y < height()) {
                storePixel(frameIndex(v[0].x, v[0].y), Gs.rgba);
            }
        } else if (type < 3) {
            line(v[0], v[1]);
        } else if (type < 6) {
            triangle(v);
        } else if (type == 6) {
            sprite(v[0], v[1]);
        }
    }

    void store(s64 index, u32 value) {
        memory[wrap(index)] = value;
        touched.push_back(wrap(index));
    }
    void storePixel(s64 index, u32 value) {
        store(index, value);
        ++pixels;
    }

  private:
    static u32 wrap(s64 index) { return static_cast<u32>(index & 0xFFFFF); }
    static s32 scissorLeft() { return static_cast<s32>(Gs.scissor().scax0); }
    static s32 scissorRight() { return static_cast<s32>(Gs.scissor().scax1); }
    static s32 scissorTop() { return static_cast<s32>(Gs.scissor().scay0); }
    static s32 scissorBottom() { return static_cast<s32>(Gs.scissor().scay1); }
    static s32 width() { return static_cast<s32>(Gs.gsfb().fbw); }
    static s32 height() { return static_cast<s32>(Gs.gsfb().maxRows); }
    static s64 frameIndex(s64 x, s64 y) { return Gs.gsfb().fbp + y * Gs.gsfb().fbw + x; }
    static s64 depthIndex(s64 x, s64 y) { return Gs.zbuf().zbp + y * Gs.gsfb().fbw + x; }
    static u32 byteOf(u32 word, int index) { return word >> (8 * index) & 0xFF; }

    static s32 toTexel(f32 value, f32 q, u32 size) {
        const long double texel = std::trunc(static_cast<long double>(value) / q * size);
        if (std::isnan(texel)) {
            return 0;
        }
        return static_cast<s32>(std::min(std::max(texel, -2147483648.0L), 2147483647.0L));
    }

    static void clip(GsVertex& v, bool textured) {
        if (textured && Gs.prim().fst == 0) {
            v.u = v.q == 0 ? 0 : toTexel(v.s, v.q, Gs.tex0().tw);
            v.v = v.q == 0 ? 0 : toTexel(v.t, v.q, Gs.tex0().th);
        }
        const s64 x = std::min(std::max(v.x, scissorLeft()), scissorRight());
        const s64 y = std::min(std::max(v.y, scissorTop()), scissorBottom());
        const auto limit = [](s64 value, s32 size) {
            return static_cast<s32>(std::min<s64>(std::max<s64>(value, 0), size - 1));
        };
        v.u = limit(v.u + x - v.x, width());
        v.v = limit(v.v + y - v.y, height());
        v.x = limit(x, width());
        v.y = limit(y, height());
        if (!textured) {
            v.y = std::min(v.y, 1023);
        }
    }

    /// The end of a pixel: blending where asked for, the alpha test, the store.
    void pixel(s64 x, s64 y, u32 colour) {
        const s64 index = frameIndex(x, y);
        if (Settings.blend == 1 && Gs.prim().abe == 1) {
            colour = blend(colour, memory[wrap(index)]);
        }
        const s32 difference = static_cast<s32>(colour >> 24) - static_cast<s32>(Gs.test().aref);
        const bool outcomes[] = {
            false, true, difference<0, difference <= 0, difference == 0, difference >= 0, difference> 0,
            difference != 0};
        if (Gs.test().ate == 0 || outcomes[Gs.test().atst]) {
            storePixel(index, colour);
        }
    }

    static u32 blend(u32 source, u32 destination) {
        const GsAlpha& alpha = Gs.alpha();
        const u32 inputs[] = {source, destination, 0, 0};
        const u32 factors[] = {source >> 24, destination >> 24, alpha.fix, 0};
        u32 result = 0;
        for (int i = 0; i < 3; ++i) {
            const double difference =
                static_cast<double>(byteOf(inputs[alpha.a], i)) - byteOf(inputs[alpha.b], i);
            const double value = std::floor(difference * factors[alpha.c] / 128) + byteOf(inputs[alpha.d], i);
            result |= static_cast<u32>(std::min(std::max(value, 0.0), 255.0)) << (8 * i);
        }
        return result;
    }

    static bool depthPasses(u32 z, u32 stored) {
        return Gs.test().ztst == 1 || z > stored || (Gs.test().ztst == 2 && z == stored);
    }

    static u32 modulate(u32 texel, u32 colour) {
        u32 result = 0;
        for (int i = 0; i < 4; ++i) {
            result |= std::min(byteOf(texel, i) * byteOf(colour, i) / 128, 255u) << (8 * i);
        }
        return result;
    }

    // Attributes of a triangle: texels, colour bytes from the highest, depth; as 16.16 numbers.
    static std::array<s64, 6> attributes(const GsVertex& v) {
        std::array<s64, 6> values{v.u, v.v, byteOf(v.rgba, 2), byteOf(v.rgba, 1), byteOf(v.rgba, 0), v.z};
        std::ranges::for_each(values, [](s64& value) { value *= 65536; });
        return values;
    }

    void triangle(const GsVertex* v) {
        std::array<const GsVertex*, 3> sorted = {v, v + 1, v + 2};
        std::stable_sort(sorted.begin(), sorted.end(), [](auto a, auto b) { return a->y < b->y; });
        const auto [top, middle, bottom] = sorted;
        const bool textured = Gs.prim().tme == 1;
        const bool gouraud = Gs.prim().iip == 1;
        const bool tested = Gs.test().zte == 1 && !gouraud;
        if (top->y == bottom->y || (tested && Gs.test().ztst == 0)) {
            return;
        }
        const s64 fraction = (middle->y - top->y) * 65536 / (bottom->y - top->y);
        const s64 distance = s64{top->x - middle->x} * 65536 + (bottom->x - top->x) * fraction;
        if (distance == 0) {
            return;
        }
        s64 divisor = distance;
        if (textured || gouraud) {
            divisor = distance > 0 ? std::max<s64>(distance, 4096) : std::min<s64>(distance, -4096);
        }
        std::array<s64, 6> gradient;
        for (std::size_t i = 0; i < gradient.size(); ++i) {
            const s64 t = attributes(*top)[i];
            const __int128 numerator =
                (attributes(*bottom)[i] - t) / 1024 * fraction + (t - attributes(*middle)[i]) * 64;
            gradient[i] =
                static_cast<s64>(static_cast<s64>(numerator * 1024) / static_cast<__int128>(divisor));
        }

        for (s32 y = std::max(top->y, scissorTop()); y < std::min(bottom->y, scissorBottom() + 1); ++y) {
            const auto along = [y](const GsVertex& s, const GsVertex& e, s64 from, s64 to) {
                return from + (y - s.y) * ((to - from) / (e.y - s.y));
            };
            const GsVertex& s = y < middle->y ? *top : *middle;
            const GsVertex& e = y < middle->y ? *middle : *bottom;
            const s64 bent = along(s, e, s64{s.x} << 16, s64{e.x} << 16);
            const s64 straight = along(*top, *bottom, s64{top->x} << 16, s64{bottom->x} << 16);
            const bool bentLeft = distance > 0;
            const s64 first = (bentLeft ? bent : straight) >> 16;
            const s64 end = (bentLeft ? straight : bent) >> 16;
            std::array<s64, 6> left;
            for (std::size_t i = 0; i < left.size(); ++i) {
                left[i] = bentLeft ? along(s, e, attributes(s)[i], attributes(e)[i])
                                   : along(*top, *bottom, attributes(*top)[i], attributes(*bottom)[i]);
            }
            for (s64 x = first; x < end; ++x) {
                std::array<s64, 6> a;
                for (std::size_t i = 0; i < a.size(); ++i) {
                    a[i] = static_cast<s64>(left[i] + static_cast<__int128>(x - first) * gradient[i]) >> 16;
                }
                u32 colour = Gs.rgba;
                if (textured) {
                    const s64 u = static_cast<s16>(a[0]);
                    const s64 row = static_cast<s16>(a[1]);
                    const u32 texel = memory[wrap(Gs.tex0().tbp0 + row * Gs.tex0().tbw + u)];
                    const bool decal = gouraud || Gs.tex0().tfx != 0;
                    colour = decal ? texel : modulate(texel, Gs.rgba & 0xFFFFFF);
                } else if (gouraud) {
                    colour = static_cast<u32>((a[2] & 0xFF) << 16 | (a[3] & 0xFF) << 8 | (a[4] & 0xFF));
                }
                const u32 z = static_cast<u32>(a[5]);
                if (!tested || depthPasses(z, memory[wrap(depthIndex(x, y))])) {
                    pixel(x, y, colour);
                    if (tested) {
                        store(depthIndex(x, y), z);
                    }
                }
            }
        }
    }

    /// Counts the minor steps before each pixel in closed form; a tie counts when the major axis goes up.
    void line(const GsVertex& from, const GsVertex& to) {
        const s64 dx = to.x - from.x;
        const s64 dy = to.y - from.y;
        const s64 longer = std::max(std::abs(dx), std::abs(dy));
        const s64 shorter = std::min(std::abs(dx), std::abs(dy));
        const bool alongX = std::abs(dx) > std::abs(dy);
        const bool up = (alongX ? dx : dy) >= 0;
        for (s64 i = 0; i < longer; ++i) {
            const s64 steps = (2 * shorter * i + longer - (up ? 0 : 1)) / (2 * longer);
            const s64 x = from.x + (dx < 0 ? -1 : 1) * (alongX ? i : steps);
            const s64 y = from.y + (dy < 0 ? -1 : 1) * (alongX ? steps : i);
            pixel(x, y, Gs.rgba);
        }
    }

    void sprite(const GsVertex& first, const GsVertex& second) {
        const std::array<u32, 256> palette = loadPalette();
        for (s32 y = first.y; y < second.y; ++y) {
            const s32 v = first.v + y - first.y;
            for (s32 x = first.x; x < second.x; ++x) {
                const s32 u = first.u + x - first.x;
                if (Gs.prim().tme == 0) {
                    flatSpritePixel(x, y, second.z);
                } else if (u < second.u && v < second.v) {
                    const s64 row = Gs.tex0().tbp0 + s64{v} * Gs.tex0().tbw;
                    u32 colour;
                    if (Gs.tex0().psm == 19) {
                        colour = palette[byteAt(Gs.tex0().tbp0 * s64{4} + s64{v} * Gs.tex0().tbw + u)];
                    } else if (Gs.tex0().psm == 20) {
                        const u32 pair =
                            byteAt(Gs.tex0().tbp0 * s64{4} + s64{v} * (Gs.tex0().tbw / 64 * 32) + u / 2);
                        colour = palette[u % 2 == 1 ? pair / 16 : pair % 16];
                    } else if (row > 0x100000) {
                        return;
                    } else {
                        colour = modulate(memory[wrap(row + u)], Gs.rgba);
                    }
                    pixel(x, y, colour);
                }
            }
        }
    }

    void flatSpritePixel(s32 x, s32 y, u32 z) {
        if (Gs.test().zte == 0) {
            pixel(x, y, Gs.rgba);
        } else if (Gs.test().ztst == 1) {
            pixel(x, y, Gs.rgba);
            store(depthIndex(x, y), z);
        } else if (Gs.test().ztst != 0 && depthPasses(z, memory[wrap(depthIndex(x, y))])) {
            storePixel(frameIndex(x, y), Gs.rgba);
            store(depthIndex(x, y), z);
        }
    }

    u32 byteAt(s64 index) const { return byteOf(memory[wrap(index >> 2)], static_cast<int>(index & 3)); }

    std::array<u32, 256> loadPalette() const {
        const GsTex0& tex0 = Gs.tex0();
        std::array<u32, 256> palette{};
        const u32 offset = Gs.clut.cov * Gs.clut.cbw * 64 + Gs.clut.cou * 16;
        for (u32 i = 0; i < 256; ++i) {
            if (tex0.cpsm == 2) {
                const u32 start = tex0.cbp + (tex0.csm == 1 || tex0.psm == 19 ? offset : 0);
                const u32 half = memory[wrap(start + i / 2)] >> (i % 2 * 16) & 0xFFFF;
                const u32 rgb = half % 32 * 8 | (half / 32 % 32 * 8) << 8 | (half / 1024 % 32 * 8) << 16;
                const bool clear = Gs.texa.aem == 1 && half == 0;
                palette[i] = clear ? 0 : rgb | (half >= 0x8000 ? Gs.texa.ta1 : Gs.texa.ta0) << 24;
            } else if (tex0.cpsm == 0 && (tex0.psm == 19 || i < 64)) {
                static constexpr u32 exchanged[] = {0, 2, 1, 3};
                const u32 source = tex0.psm == 19 ? i / 32 * 32 + exchanged[i / 8 % 4] * 8 + i % 8 : i;
                palette[i] = memory[wrap(tex0.cbp + (tex0.csm == 1 ? offset : 0) + source)];
            }
        }
        return palette;
    }
};

}  // namespace tarn
