#include "comms/TextProtocol.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>

#include "tests/support/SocketPair.h"

using tests::SocketPair;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;

namespace {

const std::string closedByDistant =
    "Protocol has been closed by distant (Code 40005): {Closed by distant (Code 10003)}";

// The next message, or why there is none.
std::string receive(TextProtocol& protocol) {
    std::string* message = reinterpret_cast<std::string*>(1);
    const TextProtocol::Result result = protocol.receive(message);
    EXPECT_EQ(result.isSuccess(), message != nullptr);
    const std::unique_ptr<std::string> owner(message);
    return message != nullptr ? *message : result.format();
}

struct Stream {
    std::vector<std::string> packets;
    std::vector<std::string> messages;
};

} // namespace

TEST(TextProtocol, SendsTextAndMarkerInOneWrite) {
    // A socket of packets keeps writes apart.
    SocketPair pair(SOCK_SEQPACKET);
    TextProtocol protocol(new Link(pair.takeNear()));
    for (const std::string message : {"abc", "", "a\n\nb"}) {
        EXPECT_TRUE(protocol.send(message).isSuccess());
        EXPECT_EQ(pair.receive(), message + "\n\n");
    }
}

TEST(TextProtocol, CutsTheStreamIntoMessages) {
    const std::string longText(2000, 'x');
    const Stream streams[] = {
        {{"abc\n\n"}, {"abc"}},
        {{"abc\n\ndef\n\n"}, {"abc", "def"}},
        {{"abc\n", "\ndef\n\n"}, {"abc", "def"}},
        {{"a", "b", "c", "\n", "\n"}, {"abc"}},
        {{"\n\n"}, {""}},
        {{"a\n\n\n", "\n"}, {"a", ""}},
        {{"a\n\n\nb\n\n"}, {"a", "\nb"}},
        {{"a\nb\n\n"}, {"a\nb"}},
        {{longText, longText + "\n\nrest\n\n"}, {longText + longText, "rest"}},
        // A zero byte ends the chunk it stands in.
        {{std::string("ab\0cd\n\n", 7), "e\n\n"}, {"abe"}},
        {{std::string("\0ab\n\n", 5), "e\n\n"}, {"e"}},
    };
    for (const Stream& stream : streams) {
        SocketPair pair(SOCK_SEQPACKET);
        TextProtocol protocol(new Link(pair.takeNear()));
        for (const std::string& packet : stream.packets) {
            // A packet is cut off at the size of a read.
            for (std::size_t at = 0; at < packet.size(); at += 511) {
                pair.send(packet.substr(at, 511));
            }
        }
        for (const std::string& message : stream.messages) {
            EXPECT_EQ(receive(protocol), message) << stream.packets.front();
        }
        pair.closeFar();
        EXPECT_EQ(receive(protocol), closedByDistant) << stream.packets.front();
    }
}

TEST(TextProtocol, ReadsAtMost511BytesAtOnce) {
    SocketPair pair(SOCK_SEQPACKET);
    TextProtocol protocol(new Link(pair.takeNear()));
    pair.send(std::string(600, 'x'));
    pair.send("\n\n");
    EXPECT_EQ(receive(protocol), std::string(511, 'x'));
}

TEST(TextProtocol, KeepsAnUnfinishedMessageAfterAFailure) {
    SocketPair pair(SOCK_SEQPACKET);
    TextProtocol protocol(new Link(pair.takeNear()));
    pair.send("par");
    pair.send(""); // An empty packet reads as an end of the stream.
    pair.send("tial\n\n");
    EXPECT_EQ(receive(protocol), closedByDistant);
    EXPECT_EQ(receive(protocol), "partial");
}

TEST(TextProtocol, TellsWhoHasClosed) {
    std::signal(SIGPIPE, SIG_IGN);
    SocketPair pair;
    Link* const link = new Link(pair.takeNear());
    TextProtocol protocol(link);
    pair.closeFar();
    EXPECT_EQ(protocol.send("x").format(), closedByDistant);
    EXPECT_EQ(receive(protocol), closedByDistant);
    link->close();
    const std::string closed = "Protocol is closed. (Code 40004): {Closed (Code 10002)}";
    EXPECT_EQ(protocol.send("x").format(), closed);
    EXPECT_EQ(receive(protocol), closed);
}

TEST(TextProtocolDeathTest, RefusesANullLink) {
    EXPECT_DEATH(TextProtocol(nullptr),
                 "F/VELTA comms/src/TextProtocol.cpp:97: Assertion link != NULL failed: "
                 "Null pointer");
}
