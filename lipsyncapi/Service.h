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
/// One thread at a time for one object. Calls that exchange a message with the engine
/// (`setAudioDelayMargin`, `getAudioTimestamps`) must not run at the same time even on two
/// objects: they receive through one buffer. A caller with several threads puts one lock around
/// all of them.
///
/// Calls block: there is no time-out anywhere, and an engine that stays silent blocks its caller
/// until it answers or goes away. Nothing is retried.
///
/// Nothing is thrown but `std::bad_alloc`. After that the object is as usable as after
/// `TransportError`, and as then the connection has to be replaced: the answer to the call may
/// still be on its way. What the XML parser held when memory ran out is not freed.
///
/// The process should ignore `SIGPIPE`: otherwise it dies by it when it writes to an engine that
/// has gone. It must keep its standard input open: descriptor 0 is refused as a socket, and the
/// process is aborted.
///
/// After a failed exchange the object is still connected. A caller who reads `TransportError`
/// disconnects and connects again.
class ZUBLIPSYNCAPI_EXPORT Service {
public:
    /// How the calls of this class can end.
    enum class ResultCode : std::int32_t {
        Success = 1000,
        UnknownError = 1001,   ///< Not produced.
        InvalidParam = 1002,   ///< The margin is too large or no multiple of the granularity.
        BadState = 1003,       ///< Not connected, or for `connect` connected already.
        CannotConnect = 1004,  ///< No connection to the engine; the cause says why.
        TransportError = 1005, ///< The exchange failed; the cause says where. Reconnect.
        ServerError = 1006,    ///< The engine answered with an error; the cause is its answer.
        NotInCall = 1007,      ///< The engine is not in a call; the cause is its answer.
    };

    /// The domain of these codes.
    struct ResultTrait {
        using ResultCode = Service::ResultCode;                        ///< The codes.
        static constexpr ResultCode successCode = ResultCode::Success; ///< The one success.
        static const char* text(ResultCode code); ///< The fixed text of a code.
    };

    /// A code, and the chain of causes behind it.
    using Result = utilities::result::Result<ResultTrait>;

    /// Path of the engine's lip-sync socket.
    static const std::string defaultLipsyncSocketName;

    /// Largest audio delay margin; ms.
    static const std::uint32_t capabilityMaxAudioDelayMargin = 100;

    /// An audio delay margin is a whole multiple of this; ms.
    static const std::uint32_t capabilityGranularityMs = 20;

    /// A service that is not connected.
    Service();

    /// Disconnects; writes the same log line as `disconnect`.
    ~Service();

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Connects to the Unix-domain stream socket with this path, of which only the first 108
    /// bytes count. Sends nothing. Blocks for as long as the system's `connect` does. Writes one
    /// log line.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: connected already; that connection keeps working;
    /// - `CannotConnect`: no engine listens there, or the system refused; the service stays
    ///   unconnected.
    Result connect(const std::string& socketName = defaultLipsyncSocketName);

    /// Closes the connection. Does not block. Writes one log line.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected.
    Result disconnect();

    /// What margins the engine takes: multiples of `granularityMs` up to `maxAudioDelayMarginMs`,
    /// both in ms. The values are fixed: the engine is not asked. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected; the arguments are untouched.
    Result getCapabilities(unsigned long& granularityMs,
                           unsigned long& maxAudioDelayMarginMs) const;

    /// The last margin, in ms, that the engine accepted through this object, 0 before the first;
    /// it survives a reconnection. The engine is not asked: another client, or a restart of the
    /// engine, may have changed its margin. Does not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected; `marginMs` is untouched.
    Result getAudioDelayMargin(unsigned long& marginMs) const;

    /// Asks the engine to delay the audio by `delayMs`, in ms. Blocks until the engine answers.
    /// Writes one log line.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected;
    /// - `InvalidParam`: over 100 ms, or no multiple of 20 ms; nothing was sent;
    /// - `TransportError`: no readable answer; whether the engine took the margin is unknown;
    /// - `NotInCall`, `ServerError`: the engine refused.
    ///
    /// After any failure `getAudioDelayMargin` still gives the previous value.
    Result setAudioDelayMargin(unsigned long delayMs);

    /// Reads the engine's timestamps. Blocks until the engine answers. Writes one log line.
    ///
    /// Returns
    /// - `Success`: all four values of `timestamps` are set;
    /// - `BadState`: not connected;
    /// - `TransportError`: no readable answer;
    /// - `NotInCall`, `ServerError`: the engine refused.
    ///
    /// After any failure `timestamps` is untouched.
    Result getAudioTimestamps(common::LipSyncNtpTimestamps& timestamps) const;

    /// Hands over the timestamps of the pictures. They are neither checked, stored nor sent. Does
    /// not block.
    ///
    /// Returns
    /// - `Success`;
    /// - `BadState`: not connected.
    Result setVideoTimestamps(const common::LipSyncNtpTimestamps& timestamps);

private:
    enum class State : std::int32_t { Disconnected = 0, Connected = 1 };

    ZUBLIPSYNCAPI_LOCAL Result connectInternal(const std::string& socketName);
    ZUBLIPSYNCAPI_LOCAL Result disconnectInternal();
    ZUBLIPSYNCAPI_LOCAL Result setAudioDelayMarginInternal(unsigned long delayMs);
    ZUBLIPSYNCAPI_LOCAL Result
    getAudioTimestampsInternal(common::LipSyncNtpTimestamps& timestamps) const;

    cmdfrmwrk::Client* _commandClient;
    State _state;
    unsigned long _audioDelayMargin;
};

} // namespace velta::zub::lipsyncapi
