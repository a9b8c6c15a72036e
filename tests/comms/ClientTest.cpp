#include "comms/Client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "tests/replacements/SystemCalls.h"
#include "tests/support/Listener.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryDirectory.h"

using tests::Call;
namespace comms = velta::zub::comms;
using velta::zub::comms::Link;

namespace {

std::string failure(const std::string& what, int error) {
    return "Connection has failed (Code 20002): " + what + " {" + std::strerror(error) + " (Code " +
           std::to_string(error) + ")}";
}

// The result of connecting to a path or, with a port, to a host. No link or descriptor may leak.
std::string connectTo(const std::string& server, int port = -1) {
    const auto before = tests::openDescriptors();
    Link* link = reinterpret_cast<Link*>(1);
    const comms::Client::Result result =
        port < 0 ? comms::Client::connectUnixServer(server.c_str(), link)
                 : comms::Client::connectTcpServer(server.c_str(), port, link);
    EXPECT_EQ(result.isSuccess(), link != nullptr);
    delete link;
    EXPECT_EQ(tests::openDescriptors(), before);
    tests::systemCalls = {};
    return result.format();
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
