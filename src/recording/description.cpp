// Descriptions of commands.
#include "recording/description.h"

#include "gs/palette.h"
#include "gs/registers.h"
#include "machine/machine.h"
#include "recording/register_fields.h"
#include "recording/text.h"

#include <algorithm>
#include <vector>

namespace tarn::recording {
namespace {

constexpr const char* textureFunctions[] = {"modulate", "decal", "highlight", "highlight2"};
constexpr const char* alphaTests[] = {"never", "always", "a<%u", "a<=%u", "a==%u", "a>=%u", "a>%u", "a!=%u"};
constexpr const char* depthTests[] = {"z never", "z always", "z>=", "z>"};

s32 columnOf(const GsVertex& vertex) { return vertex.x - static_cast<s32>(Gs.xyoffset().ofx); }
s32 rowOf(const GsVertex& vertex) { return vertex.y - static_cast<s32>(Gs.xyoffset().ofy); }

std::string describeVertex(const GsVertex& vertex) {
    std::string text = format("(%d,%d", columnOf(vertex), rowOf(vertex));
    if (vertex.z != 0) {
        text += format(" z %u", vertex.z);
    }
    if (Gs.prim().tme == 1 && Gs.prim().fst == 1) {
        text += format(" uv %d,%d", vertex.u, vertex.v);
    } else if (Gs.prim().tme == 1) {
        text += format(" stq %g,%g,%g", double{vertex.s}, double{vertex.t}, double{vertex.q});
    }
    if (Gs.prim().iip == 1) {
        text += format(" #%08x", vertex.rgba);
    }
    return text + ")";
}

std::string describePrimitive(const Command& command) {
    const GsPrim& prim = Gs.prim();
    std::string text;
    for (u32 i = 0; i < command.vertexCount; ++i) {
        text += (i == 0 ? "" : " ") + describeVertex(command.vertices[i]);
    }
    if (prim.iip == 0 || prim.tme == 1) {
        text += format("  colour #%08x", Gs.rgba);
    }
    if (prim.tme == 1) {
        const GsTex0& tex0 = Gs.tex0();
        text += format("  texture %s-bit at 0x%x %ux%u", formatName(tex0.psm).c_str(), tex0.tbp0, tex0.tw,
                       tex0.th);
        text += std::string(" ") + textureFunctions[tex0.tfx & 3];
        if (isIndexed(tex0.psm)) {
            text += format(" palette %s-bit at 0x%x", formatName(tex0.cpsm).c_str(), tex0.cbp);
        }
    }
    text += format("  frame 0x%x/%u", Gs.gsfb().fbp, Gs.gsfb().fbw);
    const GsTest& test = Gs.test();
    if (test.zte == 1) {
        text += format("  %s at 0x%x", depthTests[test.ztst & 3], Gs.zbuf().zbp);
    }
    if (test.ate == 1) {
        char condition[32];
        std::snprintf(condition, sizeof condition, alphaTests[test.atst & 7], test.aref);
        text += std::string("  ") + condition;
    }
    text += prim.abe == 1 ? "  blended" : "";
    text += prim.ctxt == 1 ? "  context 2" : "";
    return text;
}

/// The general registers that matter to a command.
std::vector<u32> registersFor(const Command& command) {
    using namespace gs_register;
    if (command.isPrimitive()) {
        std::vector<u32> registers = {PRIM, FRAME_1, ZBUF_1, TEST_1, SCISSOR_1, XYOFFSET_1, ALPHA_1};
        if (Gs.prim().tme == 1) {
            registers.insert(registers.end(), {TEX0_1, TEX1_1, CLAMP_1});
        }
        for (u32& address : registers) {
            address += address != PRIM ? Gs.currentContext : 0;
        }
        if (Gs.prim().tme == 1) {
            registers.insert(registers.end(), {TEXA, TEXCLUT});
        }
        return registers;
    }
    if (command.kind == CommandKind::Upload || command.kind == CommandKind::Move) {
        return {BITBLTBUF, TRXPOS, TRXREG, TRXDIR};
    }
    return {};
}

std::string fieldsAsJson(const RegisterLayout& layout, u64 value, bool keptOnly) {
    std::string text = fieldsOf(layout, value, keptOnly);
    std::string json = "{";
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t equals = text.find('=', i);
        const std::size_t end = std::min(text.find(' ', i), text.size());
        json += (json.size() > 1 ? "," : "") + quoted(text.substr(i, equals - i)) + ":" +
                text.substr(equals + 1, end - equals - 1);
        i = end + 1;
    }
    return json + "}";
}

}  // namespace

std::string formatName(u32 psm) {
    return formatBits(psm) != 0 ? std::to_string(formatBits(psm)) : format("?(0x%02x)", psm);
}

std::string describe(const Command& command) {
    std::string text(command.kindName());
    text += " ";
    const RegisterLayout* const layout = layoutOf(command.address);
    switch (command.kind) {
    case CommandKind::Upload:
        text += format("%zu pixels of %s bits to 0x%x/%u, %ux%u at (%u,%u)",
                       Gs.dstbuf.psm == 1 ? command.data.size() / 3 : command.data.size() / 4,
                       formatName(Gs.dstbuf.psm).c_str(), Gs.dstbuf.bp, Gs.dstbuf.bw, Gs.imageW, Gs.imageH,
                       Gs.trxpos.dsax, Gs.trxpos.dsay);
        break;
    case CommandKind::Move:
        text += format("%ux%u from 0x%x/%u (%u,%u) to 0x%x/%u (%u,%u)", Gs.imageW, Gs.imageH, Gs.srcbuf.bp,
                       Gs.srcbuf.bw, Gs.trxpos.ssax, Gs.trxpos.ssay, Gs.dstbuf.bp, Gs.dstbuf.bw,
                       Gs.trxpos.dsax, Gs.trxpos.dsay);
        break;
    case CommandKind::Register:
    case CommandKind::Display:
        text += registerName(command.address);
        text += layout != nullptr ? " " + fieldsOf(*layout, command.value, false)
                                  : format(" = 0x%llx", command.value);
        break;
    case CommandKind::Field:
        text += format("%u", Gs.interlace);
        break;
    case CommandKind::VerticalBlank:
        text += format("%llu", command.frame);
        break;
    default:
        text += describePrimitive(command);
        break;
    }
    return text;
}

std::string describePlace(const Command& command) {
    if (command.place == nullptr) {
        return {};
    }
    const Place& place = *command.place;
    return place.name + (place.callers.empty() ? "" : " < " + place.callers);
}

std::string listLine(const Command& command) {
    const u32 pc = command.place != nullptr ? command.place->pc : 0;
    return format("%7llu  %9llu  %08x  ", command.number, command.step, pc) + describe(command) + "  [" +
           describePlace(command) + "]";
}

std::string fullState(const Command& command) {
    std::string text;
    for (const u32 address : registersFor(command)) {
        text += "    " + registerName(address) + "  " +
                fieldsOf(*layoutOf(address), heldValue(Gs, address), true) + "\n";
    }
    return text;
}

std::string describeAsJson(const Command& command, bool full) {
    std::string json = format("{\"number\":%llu,\"frame\":%llu,\"step\":%llu,\"pc\":%u,", command.number,
                              command.frame, command.step, command.place != nullptr ? command.place->pc : 0);
    json += "\"symbol\":" + quoted(command.place != nullptr ? command.place->name : "") +
            ",\"callers\":" + quoted(command.place != nullptr ? command.place->callers : "") +
            ",\"kind\":" + quoted(command.kindName()) + ",\"text\":" + quoted(describe(command));
    if (command.isPrimitive()) {
        json += ",\"vertices\":[";
        for (u32 i = 0; i < command.vertexCount; ++i) {
            const GsVertex& vertex = command.vertices[i];
            json +=
                format("%s{\"x\":%d,\"y\":%d,\"z\":%u,\"u\":%d,\"v\":%d,\"colour\":%u}", i == 0 ? "" : ",",
                       columnOf(vertex), rowOf(vertex), vertex.z, vertex.u, vertex.v, vertex.rgba);
        }
        json += "]";
    }
    if (const RegisterLayout* const layout = layoutOf(command.address);
        layout != nullptr &&
        (command.kind == CommandKind::Register || command.kind == CommandKind::Display)) {
        json += ",\"register\":" + quoted(registerName(command.address)) +
                ",\"fields\":" + fieldsAsJson(*layout, command.value, false);
    }
    if (full) {
        std::string registers;
        for (const u32 address : registersFor(command)) {
            registers += (registers.empty() ? "" : ",") + quoted(registerName(address)) + ":" +
                         fieldsAsJson(*layoutOf(address), heldValue(Gs, address), true);
        }
        json += ",\"registers\":{" + registers + "}";
    }
    return json + "}";
}

}  // namespace tarn::recording
