#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <vector>

#include "comms/Client.h"
#include "comms/Link.h"
#include "comms/TextProtocol.h"
#include "tests/replacements/SystemCalls.h"
#include "tests/support/Listener.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/SocketPair.h"
#include "tests/support/TemporaryDirectory.h"

using tests::Call;
using tests::SocketPair;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;

namespace {

std::string failure(const std::string& what, int error) {
    return "Connection has failed (Code 20002): " + what + " {" + std::strerror(error) + " (Code " +
           std::to_string(error) + ")}";
}

// The result of connecting to a path or, with a port, to a host. No link or descriptor may leak.
std::string connectTo(const std::string& server, int port = -1) {
    const auto before = tests::openDescriptors();
    Link* link = reinterpret_cast<Link*>(1);
    using velta::zub::comms::Client;
    const Client::Result result = port < 0 ? Client::connectUnixServer(server.c_str(), link)
                                           : Client::connectTcpServer(server.c_str(), port, link);
    EXPECT_EQ(result.isSuccess(), link != nullptr);
    delete link;
    EXPECT_EQ(tests::openDescriptors(), before);
    tests::systemCalls = {};
    return result.format();
}

const std::string endOfStream =
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

TEST(CommsClient, UsesOnlyTheFirst108BytesOfAPath) {
    SKIP_WITHOUT_SOCKET_FILES();
    const tests::TemporaryDirectory directory;
    std::string path = directory.path() + "/";
    path.append(108 - path.size(), 'p');
    const tests::Listener listener(path);
    EXPECT_EQ(connectTo(path), "Success");
    EXPECT_EQ(connectTo(path + "more"), "Success");
    EXPECT_EQ(connectTo(path.substr(0, 107)),
              failure("Unable to connect to " + path.substr(0, 107), ENOENT));
}

TEST(CommsClient, ConnectsToTcpPortsModulo65536) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    if (listener < 0) {
        GTEST_SKIP() << "no TCP socket can be created: " << std::strerror(errno);
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), size), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    const int port = ntohs(address.sin_port);
    const std::string target = "127.0.0.1:" + std::to_string(port);

    EXPECT_EQ(connectTo("127.0.0.1", port),
              failure("Unable to connect to " + target, ECONNREFUSED));
    tests::systemCalls = {Call::ParseAddress, 0, 1, EAFNOSUPPORT};
    EXPECT_EQ(connectTo("127.0.0.1", port), "Connection has failed (Code 20002): Bad server IP");
    tests::systemCalls = {Call::Socket, 0, 1, EMFILE};
    EXPECT_EQ(connectTo("127.0.0.1", port),
              failure("Unable to create socket to " + target, EMFILE));
    // The client reads errno only after it has closed the socket.
    tests::systemCalls = {Call::Close, 0, 1, EIO};
    EXPECT_EQ(connectTo("127.0.0.1", port), failure("Unable to connect to " + target, EIO));

    ASSERT_EQ(listen(listener, 4), 0);
    EXPECT_EQ(connectTo("127.0.0.1", port), "Success");
    EXPECT_EQ(connectTo("127.0.0.1", port + 65536), "Success");
    // A host that is not an address is taken as 0.0.0.0, which is this machine.
    EXPECT_EQ(connectTo("localhost", port), "Success");
    close(listener);
}

TEST(Link, ChecksArgumentsAndShutsTheSocketDownOnlyOnce) {
    std::signal(SIGPIPE, SIG_IGN);
    const tests::SocketPair pair;
    Link link(pair.takeNear());
    pair.send("there is data");
    char byte = 'x';
    std::size_t bytesRead = 7;
    const auto expectBoth = [&](char* buffer, std::size_t size, const std::string& result) {
        EXPECT_EQ(link.write(buffer, size).format(), result);
        EXPECT_EQ(link.read(buffer, size, bytesRead).format(), result);
        EXPECT_EQ(bytesRead, 7U);
    };
    expectBoth(&byte, 0, "Invalid Argument(s) (Code 10006)");
    expectBoth(nullptr, 5, "Invalid Argument(s) (Code 10006)");
    tests::systemCalls = {};
    link.close();
    link.close();
    EXPECT_EQ(tests::systemCalls.shutdowns, 1);
    expectBoth(&byte, 1, "Closed (Code 10002)");
}

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
        {{"par", "", "tial\n\n"}, {endOfStream, "partial"}},
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
        EXPECT_EQ(receive(protocol), endOfStream);
    }
}

TEST(CommsDeathTest, InvalidArgumentsAbort) {
    EXPECT_DEATH(Link(0),
                 "F/VELTA comms/src/Link.cpp:40: Assertion fdLinkSocket > 0 failed: "
                 "Invalid file descritpor");
    EXPECT_DEATH(TextProtocol(nullptr),
                 "F/VELTA comms/src/TextProtocol.cpp:97: Assertion link != NULL failed: "
                 "Null pointer");
}
