// Placeholders until this subsystem is built.
#include "gs/primitives.h"
namespace tarn {
const std::array<s32, 8> primTableC{};
const std::array<PrimitiveRoutine, 8> primTable{};
void vertexKick(bool) {}
void stepGSvertex() {}
void stepGSfanvertex() {}
}  // namespace tarn
