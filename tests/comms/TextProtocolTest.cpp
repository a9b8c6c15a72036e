#include "comms/TextProtocol.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/SocketPair.h"

using tests::SocketPair;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;

namespace {

const std::string closedByDistant =
    "Protocol has been closed by distant (Code 40005): {Closed by distant (Code 10003)}";

// Receives the next message. Returns the formatted result if there is none.
std::string receive(TextProtocol& protocol) {
    std::string* message = reinterpret_cast<std::string*>(1);
    const TextProtocol::Result result = protocol.receive(message);
    EXPECT_EQ(result.isSuccess(), message != nullptr);
    const std::unique_ptr<std::string> owner(message);
    return message != nullptr ? *message : result.format();
}

} // namespace

TEST(TextProtocol, SplitsTheStreamIntoMessages) {
    const std::string text(511, 'x');
    // Packets that each arrive in one read, and the messages received from them.
    const std::vector<std::string> streams[][2] = {
        {{"abc\n\ndef\n\n"}, {"abc", "def"}},
        {{"abc\n", "\ndef\n\n"}, {"abc", "def"}},
        {{"a\n\n\nb\n\n"}, {"a", "\nb"}},
        {{"a\nb\n\n\n\n"}, {"a\nb", ""}},
        // One read returns at most 511 bytes. The rest of a longer packet is lost.
        {{text, text + "lost", "\n\nrest\n\n"}, {text + text, "rest"}},
        // A zero byte and the bytes after it in the same read are dropped.
        {{std::string("ab\0cd\n\n", 7), "e\n\n"}, {"abe"}},
        // An empty packet looks like the end of the stream. The incomplete message is kept.
        {{"par", "", "tial\n\n"}, {closedByDistant, "partial"}},
    };
    for (const auto& [packets, messages] : streams) {
        SocketPair pair(SOCK_SEQPACKET);
        TextProtocol protocol(new Link(pair.takeNear()));
        for (const std::string& packet : packets) {
            pair.send(packet);
        }
        for (const std::string& message : messages) {
            EXPECT_EQ(receive(protocol), message);
        }
        pair.closeFar();
        EXPECT_EQ(receive(protocol), closedByDistant);
    }
}

TEST(TextProtocolDeathTest, AbortsIfTheLinkIsNull) {
    EXPECT_DEATH(TextProtocol(nullptr),
                 "F/VELTA comms/src/TextProtocol.cpp:97: Assertion link != NULL failed: "
                 "Null pointer");
}
