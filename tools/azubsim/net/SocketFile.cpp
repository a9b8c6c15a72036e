#include "tools/azubsim/net/SocketFile.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/common/Error.h"

namespace azubsim {

namespace {

using tools::Error;
using Protocol = asio::local::stream_protocol;

// Throws if anything else is there.
void removeStaleSocket(const SocketFile::Acceptor::executor_type& executor, const std::string& path,
                       const Address& address) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISSOCK(status.st_mode)) {
        throw Error("it exists and is not a socket");
    }
    Protocol::socket socket(executor);
    const asio::error_code reason = connectAtOnce(socket, address);
    if (!reason || reason == asio::error::try_again) {
        throw Error("an engine is already listening there");
    }
    if (reason != asio::error::connection_refused) {
        throw Error(reason.message());
    }
    if (unlink(path.c_str()) != 0) {
        throw Error(std::strerror(errno));
    }
}

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

Address toAddress(const std::string& path) {
    constexpr std::size_t maxSize = sizeof(sockaddr_un::sun_path) - 1;
    if (path.empty() || path.size() > maxSize) {
        throw Error("a socket path must have 1 to " + std::to_string(maxSize) + " bytes");
    }
    return {path};
}

asio::error_code connectAtOnce(Protocol::socket& socket, const Address& address,
                               const std::string& name) {
    asio::error_code error;
    socket.open(address.protocol(), error);
    if (!error && !name.empty()) {
        asio::error_code ignored;
        socket.bind(Address(name), ignored);
    }
    if (!error) {
        socket.non_blocking(true, error);
    }
    if (!error && ::connect(socket.native_handle(), address.data(),
                            static_cast<socklen_t>(address.size())) != 0) {
        error.assign(errno, asio::system_category());
    }
    return error;
}

void SocketFile::listen(const std::string& path, bool isPrivate) {
    try {
        open(path, isPrivate);
    } catch (const Error& e) {
        close();
        throw Error("cannot listen at " + path + ": " + e.what());
    } catch (const std::system_error& e) {
        close();
        throw Error("cannot listen at " + path + ": " + e.code().message());
    }
}

void SocketFile::open(const std::string& path, bool isPrivate) {
    const Address address = toAddress(path);
    removeStaleSocket(_acceptor.get_executor(), path, address);
    _acceptor.open(address.protocol());
    const mode_t usual = umask(0);
    umask(isPrivate ? 0177 : usual);
    asio::error_code error;
    _acceptor.bind(address, error);
    umask(usual);
    if (error) {
        throw Error(error.message());
    }
    // From here on, the file is this program's and must be removed.
    _path = path;
    lstat(_path.c_str(), &_identity);
    _acceptor.listen(Acceptor::max_listen_connections);
}

void SocketFile::close() {
    asio::error_code ignored;
    _acceptor.close(ignored);
    // Keep a file that another process has put in its place.
    struct stat status {};
    if (!_path.empty() && lstat(_path.c_str(), &status) == 0 && isSameFile(status, _identity)) {
        unlink(_path.c_str());
    }
    _path.clear();
}

bool SocketFile::isAt(const std::string& path) const {
    struct stat status {};
    return !_path.empty() && stat(path.c_str(), &status) == 0 && isSameFile(status, _identity);
}

} // namespace azubsim
