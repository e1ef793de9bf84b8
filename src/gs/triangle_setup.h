// Triangle set-up and edge walk. A triangle is sorted by y and split into a left and a right chain of
// sections, listed from the bottom vertex upwards. The left edge carries the attributes from row to row. One
// template handles all variants; coordinates and attributes are 16.16 unless stated.
#pragma once

#include "machine/machine.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace tarn {

/// The attributes that a variant carries along the left edge and steps per pixel.
struct TriangleVariant {
    bool texels = false;
    bool channels = false;
    bool depth = false;

    /// Flat variants have no gradient but depth's, and so no minimum width.
    constexpr bool flat() const { return !texels && !channels; }
};

inline constexpr TriangleVariant variantF{};
inline constexpr TriangleVariant variantF_Z{.depth = true};
inline constexpr TriangleVariant variantFT{.texels = true};
inline constexpr TriangleVariant variantFT_Z{.texels = true, .depth = true};
inline constexpr TriangleVariant variantG{.channels = true};
inline constexpr TriangleVariant variantGT = variantFT;  // a textured gouraud triangle carries no colour

/// A vertex of the edge walk. R, G and B are the colour's bits 16-23, 8-15 and 0-7, each in bits 16-23.
struct SectionVertex {
    s32 x;
    s32 y;  ///< an integer row
    s32 u;
    s32 v;
    s32 R;
    s32 G;
    s32 B;
    s64 z;
};

/// Set-up and walk of one triangle. Only the fields that its variant uses are set.
struct TriangleEdges {
    std::array<SectionVertex, 3> vtx;

    // The chains; element 0 is the bottom vertex. A section goes from the element at its index to the one
    // below it.
    std::array<const SectionVertex*, 3> left_array;
    std::array<const SectionVertex*, 3> right_array;
    s32 left_section;
    s32 right_section;
    s32 left_section_height;  ///< rows left in the current section
    s32 right_section_height;

    // The edges at the current row, and their steps per row.
    s32 left_x, delta_left_x;
    s32 right_x, delta_right_x;
    s32 left_u, delta_left_u;
    s32 left_v, delta_left_v;
    s32 left_R, delta_left_R;
    s32 left_G, delta_left_G;
    s32 left_B, delta_left_B;
    s64 left_z, delta_left_z;

    // The steps per pixel, constant over the triangle.
    s32 delta_right_u;
    s32 delta_right_v;
    s32 delta_right_R;
    s32 delta_right_G;
    s32 delta_right_B;
    s64 delta_right_z;

    s32 Ymin;  ///< the first row to draw
    s32 Ymax;  ///< the last row to draw
};

/// The members that hold a 32-bit attribute in the records above.
struct TriangleAttribute {
    s32 SectionVertex::*value;
    s32 TriangleEdges::*left;
    s32 TriangleEdges::*deltaLeft;
    s32 TriangleEdges::*deltaRight;
};

template <TriangleVariant variant, typename Operation>
inline void forEachAttribute(Operation operation) {
    using V = SectionVertex;
    using E = TriangleEdges;
    if constexpr (variant.texels) {
        operation(TriangleAttribute{&V::u, &E::left_u, &E::delta_left_u, &E::delta_right_u});
        operation(TriangleAttribute{&V::v, &E::left_v, &E::delta_left_v, &E::delta_right_v});
    }
    if constexpr (variant.channels) {
        operation(TriangleAttribute{&V::R, &E::left_R, &E::delta_left_R, &E::delta_right_R});
        operation(TriangleAttribute{&V::G, &E::left_G, &E::delta_left_G, &E::delta_right_G});
        operation(TriangleAttribute{&V::B, &E::left_B, &E::delta_left_B, &E::delta_right_B});
    }
}

constexpr s32 wrapTo32(s64 value) { return static_cast<s32>(static_cast<u32>(value)); }

/// (a × 1024) ÷ b, the product wrapping at 64 bits, rounded toward zero.
constexpr s64 shl10idiv64(s64 a, s64 b) {
    const auto product = static_cast<s64>(static_cast<u64>(a) << 10);
    if (b == -1) {
        return static_cast<s64>(-static_cast<u64>(product));  // the quotient of the lowest value wraps
    }
    return product / b;
}

/// The same truncated to 32 bits. The numerator has 64 because a texel difference across a tall triangle
/// needs more than 32.
constexpr s32 shl10idiv(s64 a, s32 b) { return wrapTo32(shl10idiv64(a, b)); }

/// Starts the current section of the left chain and returns its height in rows, 0 if it is flat.
template <TriangleVariant variant>
inline s32 LeftSection(TriangleEdges& edges) {
    const auto section = static_cast<std::size_t>(edges.left_section);
    const SectionVertex& start = *edges.left_array[section];
    const SectionVertex& end = *edges.left_array[section - 1];
    const s32 height = end.y - start.y;
    if (height == 0) {
        return 0;
    }
    edges.delta_left_x = (end.x - start.x) / height;
    edges.left_x = start.x;
    forEachAttribute<variant>([&](TriangleAttribute attribute) {
        const s32 value = start.*attribute.value;
        edges.*attribute.deltaLeft = wrapTo32(s64{end.*attribute.value} - value) / height;
        edges.*attribute.left = value;
    });
    if constexpr (variant.depth) {
        edges.delta_left_z = (end.z - start.z) / height;
        edges.left_z = start.z;
    }
    edges.left_section_height = height;
    return height;
}

/// The same for the right chain, which carries only x.
inline s32 RightSection(TriangleEdges& edges) {
    const auto section = static_cast<std::size_t>(edges.right_section);
    const SectionVertex& start = *edges.right_array[section];
    const SectionVertex& end = *edges.right_array[section - 1];
    const s32 height = end.y - start.y;
    if (height == 0) {
        return 0;
    }
    edges.delta_right_x = (end.x - start.x) / height;
    edges.right_x = start.x;
    edges.right_section_height = height;
    return height;
}

template <TriangleVariant variant>
inline SectionVertex sectionVertex(const GsVertex& vertex) {
    SectionVertex result;
    result.x = vertex.x * 65536;
    result.y = vertex.y;
    if constexpr (variant.texels) {
        result.u = wrapTo32(s64{vertex.u} * 65536);
        result.v = wrapTo32(s64{vertex.v} * 65536);
    }
    if constexpr (variant.channels) {
        result.R = static_cast<s32>(vertex.rgba & 0xFF0000);
        result.G = static_cast<s32>((vertex.rgba << 8) & 0xFF0000);
        result.B = static_cast<s32>((vertex.rgba << 16) & 0xFF0000);
    }
    if constexpr (variant.depth) {
        result.z = s64{vertex.z} * 65536;
    }
    return result;
}

/// Starts the first section of a side, from `section` down, that is not flat. Returns false if all are.
template <typename Start>
[[gnu::always_inline]] inline bool startSide(s32& section, Start start) {
    while (start() < 1) {
        if (--section < 1) {
            return false;
        }
    }
    return true;
}

/// Sets up the walk of three clipped vertices. Returns false if the triangle is degenerate, and nothing is to
/// be drawn.
template <TriangleVariant variant>
inline bool SetupSections(TriangleEdges& edges, const GsVertex* vertices) {
    for (std::size_t i = 0; i < edges.vtx.size(); ++i) {
        edges.vtx[i] = sectionVertex<variant>(vertices[i]);
    }
    const SectionVertex* top = &edges.vtx[0];
    const SectionVertex* middle = &edges.vtx[1];
    const SectionVertex* bottom = &edges.vtx[2];
    if (middle->y < top->y) {
        std::swap(middle, top);
    }
    if (bottom->y < top->y) {
        std::swap(bottom, top);
    }
    if (bottom->y < middle->y) {
        std::swap(bottom, middle);
    }
    if (bottom->y == top->y) {
        return false;
    }

    // The signed distance from the middle vertex to the long edge, in the middle vertex's row.
    const s32 frac = (middle->y - top->y) * 65536 / (bottom->y - top->y);
    s32 width = (top->x - middle->x) + ((bottom->x - top->x) >> 16) * frac;
    if (width == 0) {
        return false;
    }
    // The middle vertex splits its side into two sections; the other side is one section.
    const bool leftBroken = width > 0;
    const std::array straight{bottom, top, top};
    const std::array broken{bottom, middle, top};
    edges.left_array = leftBroken ? broken : straight;
    edges.right_array = leftBroken ? straight : broken;
    edges.left_section = leftBroken ? 2 : 1;
    edges.right_section = leftBroken ? 1 : 2;
    if (!startSide(edges.left_section, [&] { return LeftSection<variant>(edges); }) ||
        !startSide(edges.right_section, [&] { return RightSection(edges); })) {
        return false;
    }
    if constexpr (!variant.flat()) {
        constexpr s32 narrowest = 4096;  // 1/16 pixel keeps the gradients of slivers bounded
        width = leftBroken ? std::max(width, narrowest) : std::min(width, -narrowest);
    }

    const s32 lastRow = static_cast<s32>(Gs.scissor().scay1) + (variant.flat() ? 1 : 0);
    edges.Ymin = top->y;
    edges.Ymax = std::min(bottom->y - 1, lastRow);

    const auto numerator = [&](s64 topValue, s64 middleValue, s64 bottomValue) {
        return ((bottomValue - topValue) >> 10) * frac + (topValue - middleValue) * 64;
    };
    forEachAttribute<variant>([&](TriangleAttribute attribute) {
        const auto value = attribute.value;
        edges.*attribute.deltaRight =
            shl10idiv(numerator(top->*value, middle->*value, bottom->*value), width);
    });
    if constexpr (variant.depth) {
        edges.delta_right_z = shl10idiv64(numerator(top->z, middle->z, bottom->z), width);
    }
    return true;
}

/// Starts the next section of a side whose current one has ended. Returns true if there is none.
template <TriangleVariant variant>
[[gnu::noinline]] bool nextLeftSection(TriangleEdges& edges) {
    return --edges.left_section < 1 || LeftSection<variant>(edges) < 1;
}
[[gnu::noinline]] inline bool nextRightSection(TriangleEdges& edges) {
    return --edges.right_section < 1 || RightSection(edges) < 1;
}

/// Advances both edges by one row. Returns true when the triangle is finished.
template <TriangleVariant variant>
[[gnu::always_inline]] inline bool NextRow(TriangleEdges& edges) {
    if (--edges.left_section_height > 0) {
        edges.left_x += edges.delta_left_x;
        forEachAttribute<variant>([&](TriangleAttribute attribute) {
            const s32 value = edges.*attribute.left;
            edges.*attribute.left = wrapTo32(s64{value} + edges.*attribute.deltaLeft);
        });
        if constexpr (variant.depth) {
            edges.left_z += edges.delta_left_z;
        }
    } else if (nextLeftSection<variant>(edges)) {
        return true;
    }
    if (--edges.right_section_height > 0) {
        edges.right_x += edges.delta_right_x;
    } else if (nextRightSection(edges)) {
        return true;
    }
    return false;
}

}  // namespace tarn
