#pragma once

#include <cstddef>
#include <cstdint>

#include "utilities/Export.h"
#include "utilities/result/Result.h"

namespace velta::zub::comms {

/// A connected stream socket. `comms::Client` creates links; their owner deletes them.
///
/// One thread at a time, with one exception: any thread may call `close` while another is blocked
/// in `read` or `write`, and the blocked call then returns `Closed`.
///
/// The library leaves the process's signals alone: a process that does not ignore `SIGPIPE` dies
/// by it when it writes to a peer that has gone.
class ZUBLIPSYNCAPI_EXPORT Link {
public:
    /// How reading and writing can end.
    enum class ResultCode : std::int32_t {
        Success = 10000,
        UnknownError = 10001,    ///< Not produced.
        Closed = 10002,          ///< `close` was called on this side.
        ClosedByDistant = 10003, ///< The peer has closed or reset the connection.
        IoError = 10004,         ///< The system call failed otherwise; the errno is the cause.
        InternalError = 10005,   ///< Not produced.
        InvalidArgument = 10006, ///< A null buffer or a size of 0; no system call was made.
    };

    /// The domain of these codes.
    struct ResultTrait {
        using ResultCode = Link::ResultCode;                           ///< The codes.
        static constexpr ResultCode successCode = ResultCode::Success; ///< The one success.
        static const char* text(ResultCode code); ///< The fixed text of a code.
    };

    /// A code, and the chain of causes behind it.
    using Result = utilities::result::Result<ResultTrait>;

    /// Takes over a connected descriptor, which must be greater than 0: any other aborts the
    /// process.
    explicit Link(int fdLinkSocket);

    /// Closes the connection and the descriptor.
    ~Link();

    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    /// Shuts the connection down in both directions and wakes a blocked `read` or `write`. The
    /// descriptor stays open until destruction. Calling it again does nothing. Does not block.
    /// Any thread.
    void close();

    /// Writes all `size` bytes, blocking without a time-out until the socket has taken them.
    ///
    /// Returns `Success`, `Closed`, `ClosedByDistant`, `IoError` or `InvalidArgument`. After a
    /// failure some of the bytes may have been written; the link stays usable.
    Result write(const void* data, std::size_t size);

    /// Reads what there is, at most `size` bytes, blocking without a time-out until there is
    /// something. Never waits for the buffer to fill.
    ///
    /// Returns `Success`, `Closed`, `ClosedByDistant`, `IoError` or `InvalidArgument`. `bytesRead`
    /// is the number of bytes read, and keeps its value after a failure.
    Result read(void* buffer, std::size_t size, std::size_t& bytesRead);

private:
    int _fdLinkSocket;
    bool _isClosed;
};

} // namespace velta::zub::comms
