#include "comms/Client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <memory>

#include "tests/replacements/SystemCalls.h"
#include "tests/support/Listener.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryDirectory.h"

using tests::Call;
using tests::SystemCalls;
using tests::TemporaryDirectory;
using velta::zub::comms::Client;
using velta::zub::comms::Link;

namespace {

std::string errnoText(int error) {
    return " {" + std::string(std::strerror(error)) + " (Code " + std::to_string(error) + ")}";
}

// What connecting says; no failure may leave a link or a descriptor behind.
template <typename Connect>
std::string outcome(const Connect& connect) {
    const int before = tests::openDescriptors();
    Link* link = reinterpret_cast<Link*>(1);
    const Client::Result result = connect(link);
    EXPECT_EQ(result.isSuccess(), link != nullptr);
    delete link;
    EXPECT_EQ(tests::openDescriptors(), before);
    return result.format();
}

std::string connectUnix(const std::string& path) {
    return outcome([&](Link*& link) { return Client::connectUnixServer(path.c_str(), link); });
}

std::string connectTcp(const std::string& host, int port) {
    return outcome([&](Link*& link) { return Client::connectTcpServer(host.c_str(), port, link); });
}

} // namespace

TEST(CommsClient, NamesThePathAndTheErrno) {
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/nobody";
    const std::string failure = "Connection has failed (Code 20002): Unable to connect to " + path;
    EXPECT_EQ(connectUnix(path), failure + errnoText(ENOENT));
    { const tests::Listener dead(path); }
    EXPECT_EQ(connectUnix(path), failure + errnoText(ECONNREFUSED));
}

TEST(CommsClient, ReadsTheErrnoAfterClosing) {
    SystemCalls::fail(Call::Close, 1, EIO);
    const std::string unixText = connectUnix("/nowhere");
    SystemCalls::fail(Call::Close, 1, EIO);
    const std::string tcpText = connectTcp("127.0.0.1", 1);
    SystemCalls::reset();
    EXPECT_EQ(unixText,
              "Connection has failed (Code 20002): Unable to connect to /nowhere" + errnoText(EIO));
    EXPECT_EQ(tcpText, "Connection has failed (Code 20002): Unable to connect to 127.0.0.1:1" +
                           errnoText(EIO));
}

TEST(CommsClient, TakesThe108BytesOfAPathAndNoMore) {
    const TemporaryDirectory directory;
    std::string path = directory.path() + "/";
    path.append(108 - path.size(), 'p');
    const tests::Listener listener(path);
    EXPECT_EQ(connectUnix(path), "Success");
    EXPECT_EQ(connectUnix(path + "more"), "Success");
    EXPECT_NE(connectUnix(path.substr(0, 107)), "Success");
}

TEST(CommsClient, ConnectsToTcpPortsModulo65536) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), size), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    const int port = ntohs(address.sin_port);
    const std::string refused = "Connection has failed (Code 20002): Unable to connect to ";

    EXPECT_EQ(connectTcp("127.0.0.1", port),
              refused + "127.0.0.1:" + std::to_string(port) + errnoText(ECONNREFUSED));
    ASSERT_EQ(listen(listener, 4), 0);
    EXPECT_EQ(connectTcp("127.0.0.1", port), "Success");
    EXPECT_EQ(connectTcp("127.0.0.1", port + 65536), "Success");
    // A text that is no address stands for this machine.
    EXPECT_EQ(connectTcp("localhost", port), "Success");
    close(listener);
}
