#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "lipsyncapi/Service.h"
#include "tools/common/Error.h"

namespace lipsyncctl {

/// A JSON object that keeps the order of its keys.
using Record = nlohmann::ordered_json;

/// Why a call to the engine failed.
class Failure : public tools::Error {
public:
    using Code = velta::zub::lipsyncapi::Service::ResultCode;

    Failure(Code code, const std::string& text, bool isTimeout = false)
        : Error(text, kindOf(code).exitStatus),
          _code(code),
          _kind(isTimeout ? "timeout" : kindOf(code).name) {}

    /// A time limit that was exceeded.
    static Failure timeout(const std::string& text) { return {Code::TransportError, text, true}; }

    bool isConnecting() const { return _code == Code::CannotConnect; }

    /// Whether the engine answered with an error; the connection is then still usable.
    bool isRefusal() const { return _code == Code::ServerError || _code == Code::NotInCall; }

    Record record() const {
        return {{"kind", _kind}, {"code", static_cast<int>(_code)}, {"text", what()}};
    }

private:
    struct Kind {
        const char* name;
        int exitStatus;
    };

    static Kind kindOf(Code code) {
        switch (code) {
            case Code::CannotConnect: return {"cannot-connect", 3};
            case Code::TransportError: return {"transport", 4};
            case Code::NotInCall: return {"not-in-call", 5};
            case Code::ServerError: return {"refused", 6};
            default: return {"other", tools::exitFailure};
        }
    }

    Code _code;
    const char* _kind;
};

} // namespace lipsyncctl
