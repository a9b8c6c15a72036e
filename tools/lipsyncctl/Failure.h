#pragma once

#include <string>

#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Record.h"

namespace lipsyncctl {

/// The exit status for failures without a status of their own.
constexpr int exitFailure = 1;

/// Why a call failed.
struct Failure {
    using Code = velta::zub::lipsyncapi::Service::ResultCode;

    Code code = Code::UnknownError;
    std::string text;

    /// Whether the engine answered with an error; the connection is then still usable.
    bool isRefusal() const { return code == Code::ServerError || code == Code::NotInCall; }

    int exitStatus() const {
        switch (code) {
            case Code::CannotConnect: return 3;
            case Code::TransportError: return 4;
            case Code::NotInCall: return 5;
            case Code::ServerError: return 6;
            default: return exitFailure;
        }
    }

    Record record() const { return {{"code", static_cast<int>(code)}, {"text", text}}; }
};

} // namespace lipsyncctl
