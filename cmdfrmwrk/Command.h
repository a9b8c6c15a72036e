#pragma once

#include <cstdint>

#include "utilities/result/Result.h"

namespace velta::zub::cmdfrmwrk {

/// What all commands share: the codes of the engine's verdict, and the base of every answer. A
/// command is a class with two nested types, `Request` and `Answer`.
class Command {
public:
    /// The engine may send other numbers too; they are kept unchanged.
    enum class ResultCode : std::int32_t {
        Success = 1000,
        UnknownError = 1001,
        InvalidParameter = 1002,
        BadState = 1003, ///< The engine is not in a call.
    };

    struct ResultTrait {
        using ResultCode = Command::ResultCode;
        static constexpr ResultCode successCode = ResultCode::Success;
        static const char* text(ResultCode code);
    };

    using Result = utilities::result::Result<ResultTrait>;

    struct Answer {
        virtual ~Answer() = default;

        /// The engine's verdict; a failure until an answer is read.
        Result result = ResultCode::UnknownError;
    };
};

} // namespace velta::zub::cmdfrmwrk
