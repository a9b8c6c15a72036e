#pragma once

#include <cstdint>

#include "comms/Link.h"
#include "utilities/Export.h"
#include "utilities/result/Result.h"

namespace velta::zub::comms {

/// Connects to stream servers. Stateless; any thread.
///
/// Both functions block for as long as the system's `connect` does: there is no time-out and no
/// retry. Both set `link` to null first; only success stores a new link in it, which the caller
/// then owns and deletes. A failure leaves no descriptor behind. Text arguments must not be null.
///
/// The process must keep its standard input open: a link refuses descriptor 0 and aborts.
class ZUBLIPSYNCAPI_EXPORT Client {
public:
    /// How connecting can end.
    enum class ResultCode : std::int32_t {
        Success = 20000,
        UnknownError = 20001,     ///< Not produced.
        ConnectionFailed = 20002, ///< Any failure; the cause says why.
    };

    /// The domain of these codes.
    struct ResultTrait {
        using ResultCode = Client::ResultCode;                         ///< The codes.
        static constexpr ResultCode successCode = ResultCode::Success; ///< The one success.
        static const char* text(ResultCode code); ///< The fixed text of a code.
    };

    /// A code, and the chain of causes behind it.
    using Result = utilities::result::Result<ResultTrait>;

    /// Connects to the Unix-domain socket with the path `name`, of which only the first 108 bytes
    /// count. Returns `Success` or `ConnectionFailed`.
    static Result connectUnixServer(const char* name, Link*& link);

    /// Connects to a TCP port, taken modulo 65536, of a numeric IPv4 address. Host names are not
    /// resolved: a text that is no address is taken for 0.0.0.0, this machine. Returns `Success`
    /// or `ConnectionFailed`.
    static Result connectTcpServer(const char* host, int port, Link*& link);
};

} // namespace velta::zub::comms
