// Lines: Bresenham's algorithm from the first vertex up to, but not including, the second.
#include "gs/drawing.h"
#include "gs/local_memory.h"
#include "gs/pixel_writers.h"

#include <cstdlib>

namespace tarn {
namespace {

/// One axis of the walk.
struct Axis {
    s32 position;
    s32 end;
    s32 step;
    s32 extent;  ///< twice the distance

    Axis(s32 from, s32 to)
        : position(from), end(to), step(to < from ? -1 : 1), extent(2 * std::abs(to - from)) {}
};

/// Steps along the major axis a pixel at a time. A tie steps the minor axis only if the major one ascends, so
/// a line and its reverse do not cover the same pixels.
template <typename Write>
void walk(Axis major, Axis minor, Write write) {
    countWork(major.extent / 2, 1);
    s32 error = minor.extent - (major.extent >> 1);
    while (major.position != major.end) {
        write(major.position, minor.position);
        if (error > 0 || (error == 0 && major.step == 1)) {
            minor.position += minor.step;
            error -= major.extent;
        }
        major.position += major.step;
        error += minor.extent;
    }
}

}  // namespace

void drawLineF(const GsVertex* vertices) {
    selectPixelWriter();
    const Axis x(vertices[0].x, vertices[1].x);
    const Axis y(vertices[0].y, vertices[1].y);
    const auto write = [colour = Gs.rgba](s32 column, s32 row) {
        drawPixel(static_cast<u32>(column), static_cast<u32>(row), colour);
    };
    if (x.extent > y.extent) {
        walk(x, y, write);
    } else {
        walk(y, x, [write](s32 row, s32 column) { write(column, row); });
    }
}

void drawLineG(const GsVertex* vertices) { drawLineF(vertices); }

}  // namespace tarn
