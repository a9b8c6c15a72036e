#include "tools/azubsim/SocketFile.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace azubsim {

namespace {

using Protocol = asio::local::stream_protocol;

// Removes a stale socket; fails if anything else is there.
bool clearTheWay(asio::io_context& io, const std::string& path, const Protocol::endpoint& address,
                 std::string& error) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return true;
    }
    if (!S_ISSOCK(status.st_mode)) {
        error = "it exists and is not a socket";
        return false;
    }
    Protocol::socket socket(io);
    const asio::error_code reason = connectAtOnce(socket, address);
    if (!reason || reason == asio::error::try_again) {
        error = "an engine is already listening there";
        return false;
    }
    if (reason != asio::error::connection_refused) {
        error = reason.message();
        return false;
    }
    if (unlink(path.c_str()) != 0) {
        error = std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace

bool toAddress(const std::string& path, Protocol::endpoint& address, std::string& error) {
    constexpr std::size_t maxSize = sizeof(sockaddr_un::sun_path) - 1;
    if (path.empty() || path.size() > maxSize) {
        error = "a socket path must have 1 to " + std::to_string(maxSize) + " bytes";
        return false;
    }
    address.path(path);
    return true;
}

asio::error_code connectAtOnce(Protocol::socket& socket, const Protocol::endpoint& address) {
    asio::error_code error;
    socket.open(address.protocol(), error);
    if (!error) {
        socket.non_blocking(true, error);
    }
    if (!error && ::connect(socket.native_handle(), address.data(),
                            static_cast<socklen_t>(address.size())) != 0) {
        error.assign(errno, asio::system_category());
    }
    return error;
}

bool SocketFile::listen(const std::string& path, std::string& error) {
    Protocol::endpoint address;
    auto& io = static_cast<asio::io_context&>(_acceptor.get_executor().context());
    if (!toAddress(path, address, error) || !clearTheWay(io, path, address, error)) {
        return false;
    }
    asio::error_code reason;
    _acceptor.open(address.protocol(), reason);
    if (!reason) {
        _acceptor.bind(address, reason);
    }
    if (!reason) {
        // From here on, the file is this program's and must be removed.
        _path = path;
        lstat(_path.c_str(), &_identity);
        _acceptor.listen(Acceptor::max_listen_connections, reason);
    }
    if (reason) {
        error = reason.message();
        close();
    }
    return !reason;
}

void SocketFile::close() {
    asio::error_code ignored;
    _acceptor.close(ignored);
    // Keep a file that another process has put in its place.
    struct stat status {};
    if (!_path.empty() && lstat(_path.c_str(), &status) == 0 && status.st_dev == _identity.st_dev &&
        status.st_ino == _identity.st_ino) {
        unlink(_path.c_str());
    }
    _path.clear();
}

} // namespace azubsim
