// Replaying a recording, command by command.
#pragma once

#include "gs/primitives.h"
#include "recording/command.h"
#include "recording/recording_reader.h"

#include <optional>
#include <string>

namespace tarn::recording {

/// Is shown the commands of a replay. The GS is the machine's.
class Visitor {
  public:
    Visitor() = default;
    virtual ~Visitor() = default;
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

    /// Before a command that may draw is executed.
    virtual void before(const Command& /*command*/) {}
    /// After each command. False ends the replay.
    virtual bool after(const Command& command) = 0;
};

/// Replays one recording. There must be no other player, and nothing else may use the GS, while one lives.
class Player {
  public:
    /// Puts the GS in the state that the recording begins with.
    explicit Player(Reader& recording);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// What keeps the recording from being replayed, a sentence, or nothing.
    const std::string& error() const { return failure; }

    /// Replays to the end of the recording, or to its damage.
    void play(Visitor& visitor);

    /// The same without commands, just as the machine did it.
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
    std::optional<RegisterWrite> earlier;  ///< of the same quadword, and not yet shown
    u64 frame;
    u64 workAtStart = 0;
    bool stopped = false;
    u8 formerBlend;
};

}  // namespace tarn::recording
