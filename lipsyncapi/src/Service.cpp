#include "lipsyncapi/Service.h"

#include <memory>

#include "cmdfrmwrk/Client.h"
#include "comms/Client.h"
#include "lipsync/SerializationTraits.h"
#include "lipsyncapi/ApiLog.h"
#include "lipsyncapi/Logger.h"
#include "utilities/log/Assertion.h"

namespace velta::zub::lipsyncapi {

namespace {

using ApiLog = log::ApiLog<Logger>;

// The exported constants again, in the type of the arguments and messages.
constexpr unsigned long largestMarginMs = 100;
constexpr unsigned long marginStepMs = 20;

// Writes the log line of a call. If memory runs out, the line is dropped: the call is complete by
// then, and the caller must get its result.
template <typename Write>
void logCall(const Write& write) {
    try {
        write();
    } catch (...) {
    }
}

Service::Result notConnected() {
    return Service::Result(Service::ResultCode::BadState) << "Not connected to the audio ZUB";
}

// Translates the engine's verdict into a code of this domain.
Service::Result toServiceResult(const cmdfrmwrk::Command::Result& verdict) {
    const bool notInCall = verdict.code == cmdfrmwrk::Command::ResultCode::BadState;
    return Service::Result(
        verdict, notInCall ? Service::ResultCode::NotInCall : Service::ResultCode::ServerError,
        Service::ResultCode::Success);
}

// Runs one exchange. If it succeeds, the engine's verdict becomes the result.
template <typename Command>
Service::Result execute(cmdfrmwrk::Client& client, const typename Command::Request& request,
                        typename Command::Answer& answer) {
    const auto exchanged = client.executeCommand<Command, lipsync::Serializer>(request, answer);
    if (exchanged.isFailure()) {
        return Service::Result(exchanged, Service::ResultCode::TransportError,
                               Service::ResultCode::Success);
    }
    return toServiceResult(answer.result);
}

} // namespace

const std::string Service::defaultLipsyncSocketName = "/dev/socket/azub_lipsync";
const std::uint32_t Service::capabilityMaxAudioDelayMargin;
const std::uint32_t Service::capabilityGranularityMs;

const char* Service::ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::InvalidParam: return "Invalid Param";
        case ResultCode::BadState: return "Bad state";
        case ResultCode::CannotConnect: return "Cannot connect to Audio ZUB";
        case ResultCode::TransportError: return "An error has occured in the transport layer";
        case ResultCode::ServerError: return "The lipsync server returned an error";
        case ResultCode::NotInCall: return "The AZUB is not performing a call";
    }
    return utilities::result::unreachableText;
}

Service::Service() : _commandClient(nullptr), _state(State::Disconnected), _audioDelayMargin(0) {}

Service::~Service() {
    try {
        disconnect();
    } catch (...) {
        // Only the text of `BadState` needs memory, so there is no connection left to close.
    }
}

Service::Result Service::connect(const std::string& socketName) {
    Result result = connectInternal(socketName);
    logCall([&] {
        ApiLog()
            .addInput("lipsyncSocketName", socketName)
            .setResult(result)
            .event("Client is connecting");
    });
    return result;
}

Service::Result Service::connectInternal(const std::string& socketName) {
    if (_state != State::Disconnected) {
        return Result(ResultCode::BadState) << "Already connected to the audio ZUB";
    }
    comms::Link* newLink = nullptr;
    const auto connected = comms::Client::connectUnixServer(socketName.c_str(), newLink);
    std::unique_ptr<comms::Link> link(newLink);
    if (connected.isFailure()) {
        return Result(connected, ResultCode::CannotConnect, ResultCode::Success);
    }
    _commandClient = new cmdfrmwrk::Client(link.get());
    static_cast<void>(link.release());
    _state = State::Connected;
    return ResultCode::Success;
}

Service::Result Service::disconnect() {
    Result result = disconnectInternal();
    logCall([&] { ApiLog().setResult(result).event("Client is disconnected"); });
    return result;
}

Service::Result Service::disconnectInternal() {
    if (_state != State::Connected) {
        return notConnected();
    }
    delete _commandClient;
    _commandClient = nullptr;
    _state = State::Disconnected;
    return ResultCode::Success;
}

Service::Result Service::getCapabilities(unsigned long& granularityMs,
                                         unsigned long& maxAudioDelayMarginMs) const {
    if (_state != State::Connected) {
        return notConnected();
    }
    VELTA_ASSERT("lipsyncapi/src/Service.cpp", 114, _commandClient != NULL,
                 "Inconsistent state client is null");
    granularityMs = marginStepMs;
    maxAudioDelayMarginMs = largestMarginMs;
    return ResultCode::Success;
}

Service::Result Service::getAudioDelayMargin(unsigned long& marginMs) const {
    if (_state != State::Connected) {
        return notConnected();
    }
    marginMs = _audioDelayMargin;
    return ResultCode::Success;
}

Service::Result Service::setAudioDelayMargin(unsigned long delayMs) {
    Result result = setAudioDelayMarginInternal(delayMs);
    logCall([&] {
        ApiLog()
            .addInput("delayMs", delayMs)
            .setResult(result)
            .event("Client is setting the audio delay margin");
    });
    return result;
}

Service::Result Service::setAudioDelayMarginInternal(unsigned long delayMs) {
    if (_state != State::Connected) {
        return notConnected();
    }
    if (delayMs > largestMarginMs) {
        return Result(ResultCode::InvalidParam)
               << " audio delay margin " << delayMs << " is not in range "
               << "[0.." << largestMarginMs << "]";
    }
    if (delayMs % marginStepMs != 0) {
        return Result(ResultCode::InvalidParam)
               << " audio delay margin " << delayMs << " doesn't match "
               << " granularity of " << marginStepMs << "ms.";
    }
    VELTA_ASSERT("lipsyncapi/src/Service.cpp", 205, _commandClient != NULL,
                 "Inconsistent state client is null");
    lipsync::SetAudioDelay::Request request;
    request.delayMs = delayMs;
    lipsync::SetAudioDelay::Answer answer;
    Result result = execute<lipsync::SetAudioDelay>(*_commandClient, request, answer);
    if (result.isSuccess()) {
        _audioDelayMargin = delayMs;
    }
    return result;
}

Service::Result Service::getAudioTimestamps(common::LipSyncNtpTimestamps& timestamps) const {
    Result result = getAudioTimestampsInternal(timestamps);
    logCall([&] {
        ApiLog()
            .addOutput("audioCaptureTimestamp", timestamps.audioCaptureTimestamp)
            .addOutput("audioRenderingTimestamp", timestamps.audioRenderingTimestamp)
            .addOutput("audioReceivingTimestamp", timestamps.audioReceivingTimestamp)
            .addOutput("jbmCurrentDepth", timestamps.jbmCurrentDepth)
            .setResult(result)
            .event("Client is requesting the NTP timestamp");
    });
    return result;
}

Service::Result Service::getAudioTimestampsInternal(
    common::LipSyncNtpTimestamps& timestamps) const {
    if (_state != State::Connected) {
        return notConnected();
    }
    VELTA_ASSERT("lipsyncapi/src/Service.cpp", 142, _commandClient != NULL,
                 "Inconsistent state client is null");
    lipsync::GetAudioTs::Answer answer;
    Result result = execute<lipsync::GetAudioTs>(*_commandClient, {}, answer);
    if (result.isSuccess()) {
        timestamps = answer.timestamps;
    }
    return result;
}

Service::Result Service::setVideoTimestamps(const common::LipSyncNtpTimestamps&) {
    if (_state != State::Connected) {
        return notConnected();
    }
    return ResultCode::Success;
}

void Service::cancel() {
    if (_commandClient != nullptr) {
        _commandClient->close();
    }
}

} // namespace velta::zub::lipsyncapi
