// The framing of the GDB remote serial protocol.
#include "gdb/packet.h"

namespace tarn::gdb {

namespace {

constexpr char interruptByte = 0x03;
constexpr char escapeMark = '}';
constexpr char escapeFlip = 0x20;  ///< an escaped byte is sent with this bit inverted
constexpr char hexDigits[] = "0123456789abcdef";

/// The value of a hexadecimal digit, or -1.
constexpr int digitValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

}  // namespace

void PacketReader::append(char byte) {
    if (text.size() < maximumPacket) {
        text.push_back(byte);
    } else {
        tooLong = true;
    }
}

PacketReader::Event PacketReader::feed(char byte) {
    // '$' is always escaped inside a packet: the previous packet was incomplete.
    if (byte == '$' && state != State::Escape) {
        state = State::Payload;
        text.clear();
        tooLong = false;
        sum = 0;
        return Event::Nothing;
    }
    switch (state) {
    case State::Outside:
        if (byte == interruptByte) {
            return Event::Interrupt;
        }
        return byte == '-' ? Event::Refused : Event::Nothing;

    case State::Payload:
        if (byte == '#') {
            state = State::FirstDigit;
            return Event::Nothing;
        }
        sum = static_cast<u8>(sum + static_cast<u8>(byte));
        if (byte == escapeMark) {
            state = State::Escape;
        } else {
            append(byte);
        }
        return Event::Nothing;

    case State::Escape:
        sum = static_cast<u8>(sum + static_cast<u8>(byte));
        append(static_cast<char>(byte ^ escapeFlip));
        state = State::Payload;
        return Event::Nothing;

    case State::FirstDigit:
        firstDigit = digitValue(byte);
        state = State::SecondDigit;
        return Event::Nothing;

    case State::SecondDigit:
        state = State::Outside;
        const int secondDigit = digitValue(byte);
        if (firstDigit < 0 || secondDigit < 0 || firstDigit * 16 + secondDigit != sum) {
            return Event::Corrupt;
        }
        return tooLong ? Event::Oversized : Event::Packet;
    }
    return Event::Nothing;
}

std::string framePacket(std::string_view payload) {
    std::string bytes = "$";
    u8 sum = 0;
    const auto put = [&](char byte) {
        sum = static_cast<u8>(sum + static_cast<u8>(byte));
        bytes.push_back(byte);
    };
    for (const char byte : payload) {
        if (byte == '$' || byte == '#' || byte == '*' || byte == escapeMark) {
            put(escapeMark);
            put(static_cast<char>(byte ^ escapeFlip));
        } else {
            put(byte);
        }
    }
    bytes.push_back('#');
    bytes.push_back(hexDigits[sum >> 4]);
    bytes.push_back(hexDigits[sum & 15]);
    return bytes;
}

std::string toHex(std::span<const u8> bytes) {
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const u8 byte : bytes) {
        digits.push_back(hexDigits[byte >> 4]);
        digits.push_back(hexDigits[byte & 15]);
    }
    return digits;
}

std::optional<std::string> fromHex(std::string_view digits) {
    if (digits.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = digitValue(digits[i]);
        const int low = digitValue(digits[i + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(high * 16 + low));
    }
    return bytes;
}

std::optional<u64> takeHex(std::string_view& text) {
    u64 value = 0;
    std::size_t count = 0;
    while (count < text.size() && digitValue(text[count]) >= 0) {
        if (value >> 60 != 0) {
            return std::nullopt;
        }
        value = value * 16 + static_cast<u64>(digitValue(text[count]));
        ++count;
    }
    if (count == 0) {
        return std::nullopt;
    }
    text.remove_prefix(count);
    return value;
}

bool takeCharacter(std::string_view& text, char character) {
    if (!text.starts_with(character)) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

}  // namespace tarn::gdb
