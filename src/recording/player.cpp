// Replaying: the stream is passed to the GIF quadword by quadword, and commands are recognised by their
// effects.
#include "recording/player.h"

#include "base/bits.h"
#include "gs/gs.h"
#include "gs/gs_records.h"
#include "gs/registers.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "memory/width_helpers.h"

#include <algorithm>
#include <utility>

namespace tarn::recording {
namespace {

/// Words of local memory covered before a replay is aborted: some minutes of replaying, an hour of the run.
constexpr u64 longestReplay = u64{1} << 37;

Player* player = nullptr;

constexpr std::array<CommandKind, 8> primitiveKinds = {
    CommandKind::Point,    CommandKind::Line,     CommandKind::Line,   CommandKind::Triangle,
    CommandKind::Triangle, CommandKind::Triangle, CommandKind::Sprite, CommandKind::Reserved};

/// Whether a register belongs to a vertex, so that writes are shown as part of the primitive.
constexpr bool isOfVertex(u32 address) {
    using namespace gs_register;
    return (address >= RGBAQ && address <= XYZ2) || address == XYZF3 || address == XYZ3;
}

u32 nextDescriptor(u32 ahead) {
    const u32 place = Gs.gtag.nreg == 0 ? 0 : (Gs.regn + ahead) % Gs.gtag.nreg;
    return static_cast<u32>(Gs.regs >> (4 * place)) & 15;
}

}  // namespace

Player::Player(Reader& recording)
    : reader(recording), frame(recording.start().frame), formerBlend(Settings.blend) {
    const Start& start = reader.start();
    player = this;
    if (Gs.vRam == nullptr && !Gs.vRam.allocate(localMemoryBytes)) {
        failure = "there is no memory for the GS";
        return;
    }
    if (start.localMemory.size() != localMemoryBytes || !restoreGsRecords(Gs, start.records)) {
        failure = "the state that it begins with is none that the GS can be in";
        return;
    }
    std::ranges::copy(start.localMemory, Gs.vRam.begin());
    Settings.blend = start.blends ? 1 : 0;
    workAtStart = Gs.work;
}

Player::~Player() {
    primitiveRoutines = &primTable;
    Settings.blend = formerBlend;
    player = nullptr;
}

template <u32 type>
void Player::observed(const GsVertex* vertices) {
    player->primitive(type, vertices);
}

const std::array<PrimitiveRoutine, 8> Player::observedRoutines = {
    observed<0>, observed<1>, observed<2>, observed<3>, observed<4>, observed<5>, observed<6>, observed<7>};

void Player::play(Visitor& shownTo) {
    visitor = &shownTo;
    primitiveRoutines = &observedRoutines;
    play();
    primitiveRoutines = &primTable;
}

void Player::play() {
    while (!stopped) {
        const std::optional<Event> event = reader.next();
        if (!event || !perform(*event)) {
            break;
        }
    }
}

void Player::begin(CommandKind kind) {
    current = {.number = current.number + 1,
               .frame = frame,
               .kind = kind,
               .step = current.step,
               .place = current.place};
}

void Player::show() { stopped = !visitor->after(current) || stopped; }

/// Whether the GS is within the limit on words covered. `more` quadwords of a transfer follow.
bool Player::mayGoOn(u64 workAllowed, bool more) {
    const std::string where = " in the block at byte " + std::to_string(reader.offset());
    if (more && Gs.work >= workAllowed) {
        reader.reject("a transfer" + where + " draws more than one driver step may");
    } else if (Gs.work - workAtStart > longestReplay) {
        reader.reject("it draws more than is replayed, with what is" + where);
    } else {
        return true;
    }
    stopped = true;
    return false;
}

bool Player::perform(const Event& event) {
    current.step = event.step;
    current.place = event.place;
    const auto showAccess = [&](CommandKind kind) {
        if (visitor != nullptr) {
            begin(kind);
            current.address = event.address;
            current.value = event.value;
            show();
        }
    };
    switch (event.kind) {
    case EventKind::Transfer:
        transfer(event);
        break;
    case EventKind::Write32:
        GSwrite32(event.address, static_cast<u32>(event.value));
        showAccess(CommandKind::Display);
        break;
    case EventKind::Write64:
        GSwrite64(event.address, event.value);
        showAccess(CommandKind::Display);
        break;
    case EventKind::Read64:
        GSread64(event.address);
        showAccess(CommandKind::Field);
        break;
    default:
        showAccess(CommandKind::VerticalBlank);
        ++frame;
        break;
    }
    return !stopped;
}

void Player::transfer(const Event& event) {
    const u64 workAllowed = Gs.work + gifStepWork;
    std::span<const u8> rest = event.data;
    while (!rest.empty() && !stopped) {
        std::size_t size = quadwordBytes;
        if (visitor == nullptr) {
            const u32 quadwords = static_cast<u32>(rest.size() / quadwordBytes);
            size = std::size_t{GSgifTransferStep(rest.data(), quadwords)} * quadwordBytes;
        } else if (Gs.gifMode == GifMode::Image && Gs.gtag.nloop > 0) {
            size = feedImage(rest);
        } else if (Gs.gifMode == GifMode::Packed && Gs.gtag.nloop > 0) {
            feedPacked(rest.data());
        } else if (Gs.gifMode == GifMode::Reglist && Gs.gtag.nloop > 0) {
            feedReglist(rest.data());
        } else {
            feedTag(rest.data());
        }
        rest = rest.subspan(size);
        if (!mayGoOn(workAllowed, !rest.empty())) {
            return;
        }
    }
}

void Player::feed(std::span<const u8> data) {
    GSgifTransfer(data.data(), static_cast<u32>(data.size() / quadwordBytes));
}

void Player::registerWrite(u32 address, u64 value) {
    begin(CommandKind::Register);
    current.address = address;
    current.value = value;
    show();
}

void Player::feedTag(const u8* quadword) {
    const u64 tag = loadFrom<u64>(quadword, 0);
    feed({quadword, quadwordBytes});
    if (bits(tag, 58, 2) == 0 && bit(tag, 46) == 1) {
        registerWrite(gs_register::PRIM, bits(tag, 47, 11));
    }
}

void Player::feedPacked(const u8* quadword) {
    const u32 descriptor = nextDescriptor(0);
    const u64 low = loadFrom<u64>(quadword, 0);
    const u32 address = descriptor == 0xE ? loadFrom<u8>(quadword, 8) : descriptor;
    const bool moves = address == gs_register::TRXDIR && bits(low, 0, 2) == 2;
    // Of the other descriptors only PRIM writes a register that does not belong to a vertex; the rest have no
    // effect.
    const bool shows = (descriptor == 0 || descriptor == 0xE) && !isOfVertex(address);
    if (shows && moves) {
        begin(CommandKind::Move);
        visitor->before(current);
        feed({quadword, quadwordBytes});
        show();
        return;
    }
    feed({quadword, quadwordBytes});
    if (shows) {
        registerWrite(address, descriptor == 0 ? bits(low, 0, 32) : low);
    }
}

void Player::feedReglist(const u8* quadword) {
    const RegisterWrite first{nextDescriptor(0), loadFrom<u64>(quadword, 0)};
    const RegisterWrite second{nextDescriptor(1), loadFrom<u64>(quadword, 8)};
    const bool isLast = Gs.gtag.nloop == 1 && Gs.regn + 1 >= Gs.gtag.nreg;
    earlier = isOfVertex(first.address) ? std::nullopt : std::optional(first);
    feed({quadword, quadwordBytes});
    if (earlier) {
        registerWrite(earlier->address, std::exchange(earlier, std::nullopt)->value);
    }
    if (!isLast && !isOfVertex(second.address)) {
        registerWrite(second.address, second.value);
    }
}

/// Passes on the data of the image. A 24-bit image is in groups of three quadwords; an incomplete group is
/// read as tags.
std::size_t Player::feedImage(std::span<const u8> data) {
    std::size_t quadwords = std::min<std::size_t>(data.size() / quadwordBytes, Gs.gtag.nloop);
    if (Gs.dstbuf.psm == 1) {
        quadwords = std::min<std::size_t>(data.size() / quadwordBytes / 3, Gs.gtag.nloop) * 3;
        if (quadwords == 0) {
            feedTag(data.data());
            return quadwordBytes;
        }
    }
    begin(CommandKind::Upload);
    current.data = data.first(quadwords * quadwordBytes);
    visitor->before(current);
    feed(current.data);
    show();
    return current.data.size();
}

void Player::primitive(u32 type, const GsVertex* vertices) {
    if (earlier) {
        const RegisterWrite write = *std::exchange(earlier, std::nullopt);
        registerWrite(write.address, write.value);
    }
    if (stopped) {
        return;
    }
    begin(primitiveKinds[type]);
    current.vertexCount = static_cast<u32>(primTableC[type]);
    std::copy_n(vertices, current.vertexCount, current.vertices.begin());
    visitor->before(current);
    primTable[type](vertices);
    show();
}

}  // namespace tarn::recording
