// The list of unsupported features, and how to recognise commands that use them.
#include "recording/ignored_features.h"

#include "base/bits.h"
#include "gs/palette.h"
#include "gs/primitives.h"
#include "gs/registers.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "recording/description.h"
#include "recording/register_fields.h"
#include "recording/text.h"

#include <algorithm>

namespace tarn::recording {
namespace {

struct Feature {
    const char* sentence;
    bool (*asksFor)(const Command& command);
};

bool isTextured() { return Gs.prim().tme == 1; }
bool isLine(const Command& c) { return c.kind == CommandKind::Line; }
bool isTriangle(const Command& c) { return c.kind == CommandKind::Triangle; }

bool leavesTexture(const Command& command) {
    return std::any_of(command.vertices.begin(), command.vertices.begin() + command.vertexCount,
                       [](GsVertex vertex) {
                           if (Gs.prim().fst == 0) {
                               STQtoUV(vertex);
                           }
                           return vertex.u < 0 || vertex.v < 0 || vertex.u > static_cast<s32>(Gs.tex0().tw) ||
                                  vertex.v > static_cast<s32>(Gs.tex0().th);
                       });
}

constexpr bool isWholeWord(u32 psm) { return formatBits(psm) >= 24; }

/// Features of primitives.
constexpr Feature ofPrimitives[] = {
    {"fog (FGE) has no effect", [](const Command&) { return Gs.prim().fge == 1; }},
    {"anti-aliasing (AA1) has no effect", [](const Command&) { return Gs.prim().aa1 == 1; }},
    {"blending (ABE) needs Video:Blend, and the run had it off",
     [](const Command&) { return Gs.prim().abe == 1 && Settings.blend != 1; }},
    {"the mask of the frame buffer (FBMSK) has no effect",
     [](const Command&) { return Gs.gsfb().fbmsk != 0; }},
    {"a frame buffer of 16 bits a pixel (PSM) takes a word a pixel, of 32 bits, all the same",
     [](const Command&) { return !isWholeWord(Gs.gsfb().psm); }},
    {"the depth buffer is written although it is masked (ZMSK)",
     [](const Command& c) {
         return Gs.zbuf().zmsk == 1 && Gs.test().zte == 1 && Gs.test().ztst != 0 &&
                (c.kind == CommandKind::Sprite || isTriangle(c)) && Gs.prim().iip == 0;
     }},
    {"Gouraud-shaded triangles take no depth test",
     [](const Command& c) {
         return isTriangle(c) && Gs.prim().iip == 1 && Gs.test().zte == 1 && Gs.test().ztst != 1;
     }},
    {"textured sprites take no depth test",
     [](const Command& c) {
         return c.kind == CommandKind::Sprite && isTextured() && Gs.test().zte == 1 && Gs.test().ztst != 1;
     }},
    {"points and lines take no depth test",
     [](const Command& c) {
         return (c.kind == CommandKind::Point || isLine(c)) && Gs.test().zte == 1 && Gs.test().ztst != 1;
     }},
    {"points take no alpha test",
     [](const Command& c) {
         return c.kind == CommandKind::Point && Gs.test().ate == 1 && Gs.test().atst != 1;
     }},
    {"untextured sprites whose depth is compared take no alpha test",
     [](const Command& c) {
         return c.kind == CommandKind::Sprite && !isTextured() && Gs.test().zte == 1 && Gs.test().ztst >= 2 &&
                Gs.test().ate == 1 && Gs.test().atst != 1;
     }},
    {"lines have one colour: IIP has no effect on them",
     [](const Command& c) { return isLine(c) && Gs.prim().iip == 1; }},
    {"textures have no effect on points and lines",
     [](const Command& c) { return (c.kind == CommandKind::Point || isLine(c)) && isTextured(); }},
    {"textured triangles with Gouraud shading show their texture as it is",
     [](const Command& c) {
         return isTriangle(c) && isTextured() && Gs.prim().iip == 1 && Gs.tex0().tfx != 1;
     }},
    {"triangles take every texture for one of 32 bits",
     [](const Command& c) { return isTriangle(c) && isTextured() && !isWholeWord(Gs.tex0().psm); }},
    {"sprites take textures of 16 bits for ones of 32",
     [](const Command& c) {
         return c.kind == CommandKind::Sprite && isTextured() && formatBits(Gs.tex0().psm) == 16;
     }},
    {"sprites show palette colours as they are, and modulate other textures, whatever TFX says",
     [](const Command& c) {
         const bool modulates = !isIndexed(Gs.tex0().psm);
         return c.kind == CommandKind::Sprite && isTextured() && Gs.tex0().tfx != (modulates ? 0 : 1);
     }},
    {"highlights (TFX) draw as decals, on triangles",
     [](const Command& c) { return isTriangle(c) && isTextured() && Gs.tex0().tfx >= 2; }},
    {"texels outside the texture are neither wrapped nor clamped",
     [](const Command& c) { return c.kind != CommandKind::Reserved && isTextured() && leavesTexture(c); }},
    {"textures are not filtered (MMAG, MMIN)",
     [](const Command&) { return isTextured() && (Gs.tex1().mmag != 0 || Gs.tex1().mmin != 0); }},
    {"mipmaps (MXL) have no effect", [](const Command&) { return isTextured() && Gs.tex1().mxl != 0; }},
    {"the destination alpha test (DATE) has no effect", [](const Command&) { return Gs.test().date == 1; }},
    {"pixels that fail the alpha test are dropped whatever AFAIL says",
     [](const Command&) { return Gs.test().ate == 1 && Gs.test().afail != 0; }},
    {"dithering (DTHE) has no effect", [](const Command&) { return Gs.dthe == 1; }},
    {"colours are clamped, and do not wrap as COLCLAMP says",
     [](const Command&) { return Gs.prim().abe == 1 && Gs.colclamp == 0 && Settings.blend == 1; }},
    {"PABE has no effect", [](const Command&) { return Gs.prim().abe == 1 && Gs.pabe == 1; }},
    {"FBA has no effect", [](const Command&) { return Gs.fba() == 1; }},
    {"the mask of scan lines (SCANMSK) has no effect", [](const Command&) { return Gs.smask >= 2; }},
    {"the reserved type of primitive draws nothing",
     [](const Command& c) { return c.kind == CommandKind::Reserved; }},
};

/// Features of other commands.
constexpr Feature ofOthers[] = {
    {"a palette is read where TEX0 says when it is used: TEX2 has no effect",
     [](const Command& c) { return c.address == gs_register::TEX2_1 || c.address == gs_register::TEX2_2; }},
    {"transfers from local memory to the processor (TRXDIR 1) do nothing",
     [](const Command& c) { return c.address == gs_register::TRXDIR && bits(c.value, 0, 2) == 1; }},
    {"there is no such register as the one written to",
     [](const Command& c) {
         constexpr u32 textureFlush = 0x3F;  // there is no texture cache to flush
         return c.kind == CommandKind::Register && layoutOf(c.address) == nullptr &&
                c.address != textureFlush;
     }},
    {"pixels of less than 24 bits take a word each in transfers",
     [](const Command& c) { return c.kind == CommandKind::Upload && formatBits(Gs.dstbuf.psm) < 24; }},
};

}  // namespace

void IgnoredFeatures::look(const Command& command) {
    static_assert(std::size(ofPrimitives) + std::size(ofOthers) <= 64);
    const std::span<const Feature> features =
        command.isPrimitive() ? std::span<const Feature>(ofPrimitives) : std::span<const Feature>(ofOthers);
    std::size_t index = command.isPrimitive() ? 0 : std::size(ofPrimitives);
    for (const Feature& feature : features) {
        if (!told[index] && feature.asksFor(command)) {
            told.set(index);
            const std::string place = describePlace(command);
            sentences.push_back(std::string(feature.sentence) +
                                format(": first with command %llu of frame %llu, at step %llu",
                                       command.number, command.frame, command.step) +
                                (place.empty() ? "" : ", " + place));
        }
        ++index;
    }
}

}  // namespace tarn::recording
