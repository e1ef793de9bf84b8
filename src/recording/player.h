// Replaying a recording, command by command.
#pragma once

#include "gs/primitives.h"
#include "recording/command.h"
#include "recording/recording_reader.h"

#include <optional>
#include <string>

namespace tarn::recording {

/// Receives the commands of a replay, which uses the machine's GS.
class Visitor {
  public:
    Visitor() = default;
    virtual ~Visitor() = default;
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

    /// Called before a command that can draw is executed.
    virtual void before(const Command& /*command*/) {}
    /// Called after each command. Returns false to end the replay.
    virtual bool after(const Command& command) = 0;
};

/// Replays a recording. While it exists, there must be no other player, and nothing else may use the GS.
class Player {
  public:
    /// Sets the GS to the recording's initial state.
    explicit Player(Reader& recording);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Why the recording cannot be replayed, or an empty string.
    const std::string& error() const { return failure; }

    /// Replays to the end of the recording, or to where it is damaged.
    void play(Visitor& visitor);

    /// The same without commands, exactly as the machine did.
    void play();

    u64 commandCount() const { return current.number; }

  private:
    bool perform(const Event& event);
    void transfer(const Event& event);
    void feed(std::span<const u8> data);
    void feedTag(const u8* quadword);
    void feedPacked(const u8* quadword);
    void feedReglist(const u8* quadword);
    std::size_t feedImage(std::span<const u8> data);
    void registerWrite(u32 address, u64 value);
    void primitive(u32 type, const GsVertex* vertices);
    void begin(CommandKind kind);
    void show();
    bool mayGoOn(u64 workAllowed, bool more);

    template <u32 type>
    static void observed(const GsVertex* vertices);
    static const std::array<PrimitiveRoutine, 8> observedRoutines;

    struct RegisterWrite {
        u32 address;
        u64 value;
    };

    Reader& reader;
    Visitor* visitor = nullptr;
    std::string failure;
    Command current;
    std::optional<RegisterWrite> earlier;  ///< of the same quadword, not yet shown
    u64 frame;
    u64 workAtStart = 0;
    bool stopped = false;
    u8 formerBlend;
};

}  // namespace tarn::recording
