// The framing of the GDB remote serial protocol: bytes to packets and back, and its hexadecimal
// numbers.
#pragma once

#include "base/types.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarn::gdb {

/// The longest packet, in payload characters, that is accepted or sent.
inline constexpr std::size_t maximumPacket = 0x4000;

/// Finds the packets in the bytes of a connection. Uses bounded memory.
class PacketReader {
  public:
    enum class Event : u8 {
        Nothing,    ///< no packet is complete yet
        Packet,     ///< a packet arrived: see payload()
        Interrupt,  ///< the byte 0x03 outside a packet: a request to stop the machine
        Corrupt,    ///< a packet whose checksum is wrong or not a number
        Oversized,  ///< a packet longer than maximumPacket; its payload is dropped
        Refused,    ///< a request to send the last reply again
    };

    /// Processes a byte and returns what it completes.
    Event feed(char byte);

    /// The unescaped payload of the packet that the last feed() completed.
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

/// The packet for a payload: escaped, between '$' and '#', with its checksum.
std::string framePacket(std::string_view payload);

/// Two hexadecimal digits per byte.
std::string toHex(std::span<const u8> bytes);

/// The bytes given by pairs of hexadecimal digits; nothing if `digits` is malformed.
std::optional<std::string> fromHex(std::string_view digits);

/// Removes a hexadecimal number of up to 64 bits from the front of `text`. Returns nothing, and does not
/// change `text`, if there is none.
std::optional<u64> takeHex(std::string_view& text);

/// Removes a given character from the front of `text`, if it is there.
bool takeCharacter(std::string_view& text, char character);

}  // namespace tarn::gdb
