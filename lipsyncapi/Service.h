#pragma once

#include <cstdint>
#include <string>

#include "lipsync/common/LipSyncNtpTimestamps.h"
#include "utilities/Export.h"
#include "utilities/result/Result.h"

namespace velta::zub::cmdfrmwrk {
class Client;
}

namespace velta::zub::lipsyncapi {

/// A connection to the audio engine, for keeping pictures in step with a call's audio.
///
/// **Blocking.** There is no timeout: a silent engine blocks `setAudioDelayMargin` and
/// `getAudioTimestamps` until it answers or closes the connection, or until another thread calls
/// `cancel`. `connect` sends nothing, but blocks while the engine's queue of connections is full:
/// until the engine accepts one or stops listening. `cancel` does not end that wait; a signal does,
/// if its handler was installed without `SA_RESTART`. The other calls return at once.
///
/// **Threads.** The library starts no threads and takes no locks. Use one `Service` from one thread
/// at a time; only `cancel` may be called from another one. `setAudioDelayMargin` and
/// `getAudioTimestamps` must not run at the same time even on two objects, because all objects
/// share one receive buffer. With several threads, hold one lock around every such call.
///
/// **Cancel.** `cancel` must not overlap `connect`, `disconnect` or the destructor: those create
/// and delete what it uses, and the descriptor that it shuts down may already belong to someone
/// else. The exchange that it ends and every later one return `TransportError` until you reconnect.
/// An exchange whose answer has already been read still succeeds.
///
/// **SIGPIPE.** Ignore it: otherwise it kills the process when the library writes to an engine that
/// has gone, or after `cancel`. It can also come from the exchange that is being cancelled, if that
/// has not written its request yet.
///
/// **Descriptors 0, 1 and 2.** Keep them open. If a socket gets descriptor 0, the library aborts
/// the process. If it gets 1 or 2, the engine receives what the process prints there; without
/// standard error, that is the library's own log lines. These lines at the start of `main` keep all
/// three open:
///
///     for (int fd = 0; fd <= 2; ++fd)
///         if (fcntl(fd, F_GETFD) < 0) open("/dev/null", O_RDWR);
///
/// **Fork.** The socket is not close-on-exec, and a child of `fork` shares its parent's connection.
/// A child must not use or destroy the `Service`: its destructor shuts the parent's connection, and
/// `exit` runs that of a static `Service`. End the child with `_exit`, or with `exec` after closing
/// the descriptors from 3 upwards: a program that inherits the socket holds the connection open
/// when the parent is killed.
///
/// After a failed exchange the object is still connected. After `TransportError` reconnect: call
/// `disconnect` and `connect`, then set the margin again, because the engine may have been
/// restarted.
///
/// The only exception thrown is `std::bad_alloc`. Reconnect afterwards, as after `TransportError`:
/// the answer may still arrive. The XML parser leaks what it held at the time.
class ZUBLIPSYNCAPI_EXPORT Service {
public:
    /// What the functions of this class return.
    enum class ResultCode : std::int32_t {
        Success = 1000,
        UnknownError = 1001,   ///< Not produced.
        InvalidParam = 1002,   ///< The margin is above 100 ms or not a multiple of 20 ms.
        BadState = 1003,       ///< Not connected; from `connect`: already connected.
        CannotConnect = 1004,  ///< Connecting failed; the cause says why.
        TransportError = 1005, ///< The exchange failed; the cause says where. Reconnect.
        ServerError = 1006,    ///< The engine answered with an error; the cause is its result.
        NotInCall = 1007,      ///< The engine is not in a call; the cause is its result.
    };

    /// Tells `Result` about these codes.
    struct ResultTrait {
        using ResultCode = Service::ResultCode; ///< The name that `Result` expects.
        static constexpr ResultCode successCode = ResultCode::Success; ///< Makes `isSuccess` true.
        /// A static string; "Invalid error (Unreachable)" for a number that is not listed above.
        static const char* text(ResultCode code);
    };

    /// A code, a message and the causes; `format` gives them in one line.
    using Result = utilities::result::Result<ResultTrait>;

    /// The path that `connect` uses by default: "/dev/socket/azub_lipsync".
    static const std::string defaultLipsyncSocketName;

    /// The largest audio delay margin, in ms.
    static const std::uint32_t capabilityMaxAudioDelayMargin = 100;

    /// Every audio delay margin is a multiple of this, in ms.
    static const std::uint32_t capabilityGranularityMs = 20;

    /// Creates an object that is not connected.
    Service();

    /// Calls `disconnect`, so it writes one log line even if not connected.
    ~Service();

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Connects to the Unix-domain stream socket at this path. Only the first 108 bytes of the
    /// path are used. Sends nothing to the engine. Writes one log line. Blocks while the
    /// engine's queue of connections is full.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: already connected; the existing connection stays usable;
    /// - `CannotConnect`: no engine listens there, the system refused, or a signal ended the wait;
    ///   the object stays unconnected.
    Result connect(const std::string& socketName = defaultLipsyncSocketName);

    /// Closes the connection. Writes one log line. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected.
    Result disconnect();

    /// Gets the margins that the engine accepts: multiples of `granularityMs` from 0 to
    /// `maxAudioDelayMarginMs`. Both values are constants; the engine is not asked. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected; both arguments are unchanged.
    ///
    /// Both values are in ms.
    Result getCapabilities(unsigned long& granularityMs,
                           unsigned long& maxAudioDelayMarginMs) const;

    /// Gets the last margin that the engine accepted from this object, or 0 if there is none yet.
    /// Reconnecting keeps the value. The engine is not asked, so the value is out of date if
    /// another client or a restart of the engine has changed the margin. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected; `marginMs` is unchanged.
    ///
    /// `marginMs` is in ms.
    Result getAudioDelayMargin(unsigned long& marginMs) const;

    /// Asks the engine to delay the audio by `delayMs`. Writes one log line. Blocks until the
    /// engine answers or closes the connection.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected;
    /// - `InvalidParam`: above 100 ms or not a multiple of 20 ms; nothing was sent;
    /// - `TransportError`: no readable answer; the engine may or may not have set the margin;
    /// - `NotInCall`, `ServerError`: the engine refused.
    ///
    /// After a failure `getAudioDelayMargin` still gives the previous value. `delayMs` is in ms.
    Result setAudioDelayMargin(unsigned long delayMs);

    /// Gets the engine's timestamps. Writes one log line. Blocks until the engine answers or closes
    /// the connection.
    ///
    /// Returns
    /// - `Success`: all four values of `timestamps` are set;
    /// - `BadState`: not connected;
    /// - `TransportError`: no readable answer;
    /// - `NotInCall`, `ServerError`: the engine refused.
    ///
    /// After a failure `timestamps` is unchanged.
    Result getAudioTimestamps(common::LipSyncNtpTimestamps& timestamps) const;

    /// Accepts the pictures' timestamps but does not check, store or send them. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected.
    Result setVideoTimestamps(const common::LipSyncNtpTimestamps& timestamps);

    /// Closes the connection, so that a blocked exchange ends. Does not block. Writes no log line.
    ///
    /// Any thread may call this while another is inside `setAudioDelayMargin` or
    /// `getAudioTimestamps` of the same object; the class comment says what it must not overlap. A
    /// cancelled exchange has the cause "Connection closed". The object counts as connected until
    /// `disconnect`. Does nothing without a connection.
    ///
    /// `avsync/Watchdog.h` calls this when a call takes too long.
    void cancel();

private:
    enum class State : std::int32_t { Disconnected = 0, Connected = 1 };

    ZUBLIPSYNCAPI_LOCAL Result connectInternal(const std::string& socketName);
    ZUBLIPSYNCAPI_LOCAL Result disconnectInternal();
    ZUBLIPSYNCAPI_LOCAL Result setAudioDelayMarginInternal(unsigned long delayMs);
    ZUBLIPSYNCAPI_LOCAL Result
    getAudioTimestampsInternal(common::LipSyncNtpTimestamps& timestamps) const;

    cmdfrmwrk::Client* _commandClient;
    State _state; // Assertions compare it with the pointer.
    unsigned long _audioDelayMargin;
};

} // namespace velta::zub::lipsyncapi
