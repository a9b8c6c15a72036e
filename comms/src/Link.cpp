#include "comms/Link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "utilities/log/Assertion.h"
#include "utilities/result/ErrnoTrait.h"

namespace velta::zub::comms {

namespace {

using utilities::result::ErrnoTrait;

bool mustRetry(int error) {
    return error == EAGAIN || error == EINTR;
}

Link::Result ioError(int error) {
    return Link::Result(Link::ResultCode::IoError) << utilities::result::Result<ErrnoTrait>(error);
}

} // namespace

const char* Link::ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::Closed: return "Closed";
        case ResultCode::ClosedByDistant: return "Closed by distant";
        case ResultCode::IoError: return "I/O error";
        case ResultCode::InternalError: return "Internal error";
        case ResultCode::InvalidArgument: return "Invalid Argument(s)";
    }
    return utilities::result::unreachableText;
}

Link::Link(int fdLinkSocket) : _fdLinkSocket(fdLinkSocket), _isClosed(false) {
    VELTA_ASSERT("comms/src/Link.cpp", 40, fdLinkSocket > 0, "Invalid file descritpor");
}

Link::~Link() {
    close();
    ::close(_fdLinkSocket);
    _fdLinkSocket = 0;
}

void Link::close() {
    VELTA_ASSERT("comms/src/Link.cpp", 54, _fdLinkSocket > 0, "Invalid File Descriptor");
    // Set the flag first: the call that `shutdown` wakes must see it.
    if (!_isClosed.exchange(true, std::memory_order_relaxed)) {
        ::shutdown(_fdLinkSocket, SHUT_RDWR);
    }
}

Link::Result Link::write(const void* data, std::size_t size) {
    VELTA_ASSERT("comms/src/Link.cpp", 65, _fdLinkSocket > 0, "Invalid File Descriptor");
    if (data == nullptr || size == 0) {
        return ResultCode::InvalidArgument;
    }
    const char* const bytes = static_cast<const char*>(data);
    std::size_t written = 0;
    while (written < size) {
        const ssize_t n = ::write(_fdLinkSocket, bytes + written, size - written);
        const int error = errno;
        if (_isClosed.load(std::memory_order_relaxed)) {
            return ResultCode::Closed;
        }
        if (n >= 0) {
            written += static_cast<std::size_t>(n);
        } else if (error == EPIPE) {
            return ResultCode::ClosedByDistant;
        } else if (!mustRetry(error)) {
            return ioError(error);
        }
    }
    return ResultCode::Success;
}

Link::Result Link::read(void* buffer, std::size_t size, std::size_t& bytesRead) {
    VELTA_ASSERT("comms/src/Link.cpp", 107, _fdLinkSocket > 0, "Invalid File Descriptor");
    if (buffer == nullptr || size == 0) {
        return ResultCode::InvalidArgument;
    }
    for (;;) {
        const ssize_t n = ::read(_fdLinkSocket, buffer, size);
        const int error = errno;
        if (_isClosed.load(std::memory_order_relaxed)) {
            return ResultCode::Closed;
        }
        if (n > 0) {
            bytesRead = static_cast<std::size_t>(n);
            return ResultCode::Success;
        }
        if (n == 0 || error == ECONNRESET) {
            return ResultCode::ClosedByDistant;
        }
        if (!mustRetry(error)) {
            return ioError(error);
        }
    }
}

} // namespace velta::zub::comms
