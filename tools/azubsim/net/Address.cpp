#include "tools/azubsim/net/Address.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>

#include "tools/common/Error.h"

namespace azubsim {

Address toAddress(const std::string& path) {
    constexpr std::size_t maxSize = sizeof(sockaddr_un::sun_path) - 1;
    if (path.empty() || path.size() > maxSize) {
        throw tools::Error("a socket path must have 1 to " + std::to_string(maxSize) + " bytes");
    }
    return {path};
}

asio::error_code connectAtOnce(Socket& socket, const Address& address, const std::string& name) {
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

} // namespace azubsim
