// Framing: what the reader makes of well-formed, damaged, cut-off and endless input.
#include "gdb/packet.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::gdb;
using Event = PacketReader::Event;

namespace {

/// The events, Nothing left out, and the payloads of the packets, that the bytes lead to.
struct Seen {
    std::vector<Event> events;
    std::vector<std::string> payloads;
};

Seen feedAll(PacketReader& reader, std::string_view bytes) {
    Seen seen;
    for (const char byte : bytes) {
        const Event event = reader.feed(byte);
        if (event != Event::Nothing) {
            seen.events.push_back(event);
        }
        if (event == Event::Packet) {
            seen.payloads.push_back(reader.payload());
        }
    }
    return seen;
}

}  // namespace

TEST(Packet, ReaderFindsPacketsAmongAnything) {
    struct Case {
        std::string_view bytes;
        std::vector<Event> events;
        std::vector<std::string> payloads;
    };
    const Case cases[] = {
        {"$g#67", {Event::Packet}, {"g"}},
        {"+$g#67+$?#3F", {Event::Packet, Event::Packet}, {"g", "?"}},
        {"$#00", {Event::Packet}, {""}},
        {"$g#68", {Event::Corrupt}, {}},
        {"$g#zz$g#67", {Event::Corrupt, Event::Packet}, {"g"}},
        {"-\x03", {Event::Refused, Event::Interrupt}, {}},
        {"noise#00 $m1$g#67", {Event::Packet}, {"g"}},                       // cut off by the next packet
        {"$g#6$?#3f", {Event::Packet}, {"?"}},                               // the same inside the checksum
        {"$X}\x03}]\x03#b5", {Event::Packet}, {std::string("X#}\x03", 4)}},  // 0x03 inside a packet is data
    };
    for (const Case& each : cases) {
        PacketReader reader;
        const Seen seen = feedAll(reader, each.bytes);
        EXPECT_EQ(seen.events, each.events) << each.bytes;
        EXPECT_EQ(seen.payloads, each.payloads) << each.bytes;
    }
}

TEST(Packet, WhatIsFramedIsReadBack) {
    std::string everyByte;
    for (int value = 0; value < 256; ++value) {
        everyByte.push_back(static_cast<char>(value));
    }
    PacketReader reader;
    EXPECT_EQ(feedAll(reader, framePacket(everyByte)).payloads, std::vector{everyByte});
    EXPECT_EQ(framePacket("OK"), "$OK#9a");
}

TEST(Packet, OversizedPacketIsDroppedAndTheNextOneRead) {
    PacketReader reader;
    const std::string longest(maximumPacket, 'a');
    EXPECT_EQ(feedAll(reader, framePacket(longest)).payloads, std::vector{longest});
    EXPECT_EQ(feedAll(reader, framePacket(longest + "a")).events, std::vector{Event::Oversized});
    EXPECT_TRUE(feedAll(reader, "$" + std::string(100 * maximumPacket, 'b')).events.empty());
    EXPECT_LE(reader.payload().capacity(), 2 * maximumPacket);
    EXPECT_EQ(feedAll(reader, "$g#67").payloads, std::vector<std::string>{"g"});
}

TEST(Packet, Numbers) {
    std::string_view text = "1fFfg";
    EXPECT_EQ(takeHex(text), 0x1FFFU);
    EXPECT_EQ(text, "g");
    EXPECT_EQ(takeHex(text), std::nullopt);
    text = "ffffffffffffffff";
    EXPECT_EQ(takeHex(text), ~u64{0});
    text = "10000000000000000";
    EXPECT_EQ(takeHex(text), std::nullopt);
    EXPECT_EQ(fromHex("00fF"), std::string("\0\xff", 2));
    EXPECT_EQ(fromHex("0"), std::nullopt);
    EXPECT_EQ(fromHex("0g"), std::nullopt);
}
