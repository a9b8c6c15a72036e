#include "comms/Client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>

#include "comms/src/Descriptor.h"
#include "utilities/result/ErrnoTrait.h"

namespace velta::zub::comms {

namespace {

utilities::result::Result<utilities::result::ErrnoTrait> lastError() {
    return errno;
}

// Copies a path into an address. It has no terminator if it fills the field; a longer one is cut.
sockaddr_un unixAddress(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path, strnlen(path, sizeof(address.sun_path)));
    return address;
}

// Connects and passes the descriptor to a new link. After a failure the descriptor is closed and
// errno holds the cause.
template <typename Address>
bool connectLink(Descriptor& descriptor, const Address& address, Link*& link) {
    if (::connect(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) <
        0) {
        descriptor.close();
        return false;
    }
    link = new Link(descriptor.get());
    descriptor.release();
    return true;
}

} // namespace

const char* Client::ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::ConnectionFailed: return "Connection has failed";
    }
    return utilities::result::unreachableText;
}

Client::Result Client::connectUnixServer(const char* name, Link*& link) {
    link = nullptr;
    Descriptor descriptor(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!descriptor.isValid()) {
        return Result(ResultCode::ConnectionFailed) << lastError();
    }
    if (!connectLink(descriptor, unixAddress(name), link)) {
        const auto cause = lastError();
        return Result(ResultCode::ConnectionFailed) << "Unable to connect to " << name << cause;
    }
    return ResultCode::Success;
}

Client::Result Client::connectTcpServer(const char* host, int port, Link*& link) {
    link = nullptr;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    // It returns 0 if the text is not an address. The attempt then continues with 0.0.0.0.
    if (::inet_pton(AF_INET, host, &address.sin_addr) < 0) {
        return Result(ResultCode::ConnectionFailed) << "Bad server IP";
    }
    Descriptor descriptor(::socket(AF_INET, SOCK_STREAM, 0));
    if (!descriptor.isValid()) {
        const auto cause = lastError();
        return Result(ResultCode::ConnectionFailed)
               << "Unable to create socket to " << host << ':' << port << cause;
    }
    if (!connectLink(descriptor, address, link)) {
        const auto cause = lastError();
        return Result(ResultCode::ConnectionFailed)
               << "Unable to connect to " << host << ':' << port << cause;
    }
    return ResultCode::Success;
}

} // namespace velta::zub::comms
