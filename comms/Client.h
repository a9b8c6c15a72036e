#pragma once

#include <cstdint>

#include "comms/Link.h"
#include "utilities/Export.h"
#include "utilities/result/Result.h"

namespace velta::zub::comms {

/// Connects to stream servers. Stateless; any thread.
///
/// Both functions block for as long as the system's `connect` does, without a timeout or a retry:
/// on a Unix-domain socket, while the server's queue of connections is full. A signal ends that
/// wait, if its handler was installed without `SA_RESTART`. On success `link` is a new link, which
/// the caller owns and deletes. After a failure it is null, and no descriptor stays open. Text
/// arguments must not be null.
///
/// `lipsyncapi::Service` says why descriptors 0, 1 and 2 must stay open, and what a child of `fork`
/// must do.
class ZUBLIPSYNCAPI_EXPORT Client {
public:
    /// What both functions return.
    enum class ResultCode : std::int32_t {
        Success = 20000,
        UnknownError = 20001,     ///< Not produced.
        ConnectionFailed = 20002, ///< Any failure; the cause says why.
    };

    /// Tells `Result` about these codes.
    struct ResultTrait {
        using ResultCode = Client::ResultCode; ///< The name that `Result` expects.
        static constexpr ResultCode successCode = ResultCode::Success; ///< Makes `isSuccess` true.
        /// A static string; "Invalid error (Unreachable)" for a number that is not listed above.
        static const char* text(ResultCode code);
    };

    /// A code, a message and the causes; `format` gives them in one line.
    using Result = utilities::result::Result<ResultTrait>;

    /// Connects to the Unix-domain socket at the path `name`. Only the first 108 bytes of the path
    /// are used. Returns `Success` or `ConnectionFailed`.
    static Result connectUnixServer(const char* name, Link*& link);

    /// Connects to a TCP port (modulo 65536) at a numeric IPv4 address. A host name is not
    /// resolved: like any text that is no such address, it means 0.0.0.0, this machine. Returns
    /// `Success` or `ConnectionFailed`.
    static Result connectTcpServer(const char* host, int port, Link*& link);
};

} // namespace velta::zub::comms
