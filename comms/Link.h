#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "utilities/Export.h"
#include "utilities/result/Result.h"

namespace velta::zub::comms {

/// A connected stream socket. `comms::Client` creates links; their owner deletes them.
///
/// One thread at a time, with one exception: any thread may call `close` while another is blocked
/// in `read` or `write`. The blocked call then returns `Closed`.
///
/// The library does not handle `SIGPIPE`. Ignore it: otherwise it kills the process in a `write` to
/// a peer that has gone, or after `close`.
class ZUBLIPSYNCAPI_EXPORT Link {
public:
    /// What `read` and `write` return.
    enum class ResultCode : std::int32_t {
        Success = 10000,
        UnknownError = 10001,    ///< Not produced.
        Closed = 10002,          ///< `close` was called on this side.
        ClosedByDistant = 10003, ///< The peer has closed the connection or, in `read`, reset it.
        IoError = 10004,         ///< Any other error of the system call; errno is the cause.
        InternalError = 10005,   ///< Not produced.
        InvalidArgument = 10006, ///< A null buffer or a size of 0; no system call was made.
    };

    /// Tells `Result` about these codes.
    struct ResultTrait {
        using ResultCode = Link::ResultCode; ///< The name that `Result` expects.
        static constexpr ResultCode successCode = ResultCode::Success; ///< Makes `isSuccess` true.
        /// A static string; "Invalid error (Unreachable)" for a number that is not listed above.
        static const char* text(ResultCode code);
    };

    /// A code, a message and the causes; `format` gives them in one line.
    using Result = utilities::result::Result<ResultTrait>;

    /// Takes ownership of a connected descriptor. Aborts the process unless it is above 0.
    explicit Link(int fdLinkSocket);

    /// Shuts the connection down and closes the descriptor. In a child of `fork` that ends the
    /// parent's connection too.
    ~Link();

    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    /// Shuts the connection down in both directions and wakes a blocked `read` or `write`. The
    /// destructor closes the descriptor. A second call does nothing. Does not block. Any thread.
    void close();

    /// Writes all `size` bytes. Blocks without a timeout until the socket has taken them.
    ///
    /// Returns `Success`, `Closed`, `ClosedByDistant`, `IoError` or `InvalidArgument`. A failure
    /// may come after some of the bytes are written; it does not close the link.
    Result write(const void* data, std::size_t size);

    /// Reads the bytes that are available, at most `size`, and stores their number in `bytesRead`.
    /// Blocks without a timeout until there is at least one.
    ///
    /// Returns `Success`, `Closed`, `ClosedByDistant` (also at the end of the stream), `IoError` or
    /// `InvalidArgument`. After a failure `bytesRead` is unchanged.
    Result read(void* buffer, std::size_t size, std::size_t& bytesRead);

private:
    int _fdLinkSocket;
    // Written by `close` in one thread, read in another. Relaxed order is enough: `shutdown` is
    // what wakes the other thread.
    std::atomic<bool> _isClosed;
    static_assert(sizeof(std::atomic<bool>) == sizeof(bool), "the layout is part of the interface");
};

} // namespace velta::zub::comms
