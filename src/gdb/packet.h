// The framing of the GDB remote serial protocol: bytes to packets and back, and its hexadecimal
// numbers.
#pragma once

#include "base/types.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarn::gdb {

/// The longest packet, in payload characters, that is taken from a debugger or sent to one.
inline constexpr std::size_t maximumPacket = 0x4000;

/// Takes the bytes of a connection one at a time and finds the packets in them. Its memory is bounded
/// whatever arrives.
class PacketReader {
  public:
    enum class Event : u8 {
        Nothing,    ///< no packet is complete yet
        Packet,     ///< a packet arrived: see payload()
        Interrupt,  ///< the byte 0x03 outside a packet: the debugger wants the machine stopped
        Corrupt,    ///< a packet whose checksum is wrong or no number
        Oversized,  ///< a packet longer than maximumPacket; its payload is dropped
        Refused,    ///< the debugger did not get the last reply and wants it again
    };

    /// Takes one byte and says what it completes.
    Event feed(char byte);

    /// The payload of the packet that the last feed() completed, unescaped.
    const std::string& payload() const { return text; }

  private:
    enum class State : u8 { Outside, Payload, Escape, FirstDigit, SecondDigit };

    void append(char byte);

    State state = State::Outside;
    std::string text;
    bool tooLong = false;
    u8 sum = 0;
    int firstDigit = 0;
};

/// The bytes that carry `payload` to the debugger: escaped, between '$' and '#', with its checksum.
std::string framePacket(std::string_view payload);

/// The bytes as hexadecimal digits, two each.
std::string toHex(std::span<const u8> bytes);

/// The bytes that pairs of hexadecimal digits stand for; nothing when `digits` is anything else.
std::optional<std::string> fromHex(std::string_view digits);

/// Takes a hexadecimal number of up to 64 bits off the front of `text`; nothing, and `text` unchanged,
/// without one.
std::optional<u64> takeHex(std::string_view& text);

/// Takes one given character off the front of `text`, if it is there.
bool takeCharacter(std::string_view& text, char character);

}  // namespace tarn::gdb
