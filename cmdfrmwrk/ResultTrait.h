#pragma once

#include <string>

#include "cmdfrmwrk/Command.h"
#include "utilities/TypeList.h"
#include "utilities/serializer/CastConvertor.h"
#include "utilities/serializer/Child.h"
#include "utilities/serializer/NamedTextTrait.h"

namespace velta::zub::cmdfrmwrk {

template <typename ResultType>
struct ResultTrait;

/// The engine's verdict as an XML element.
template <>
struct ResultTrait<Command::Result> {
    using Type = Command::Result;

    static constexpr const char* tag = "Result";
    static constexpr const char* errorCode = "ErrorCode";
    static constexpr const char* message = "Message";

    static Type initialValue() { return Command::ResultCode::UnknownError; }

    static Command::ResultCode getErrorCode(const Type& result) { return result.code; }
    static void setErrorCode(Type& result, const Command::ResultCode& code) {
        const std::string text = result.getMainMessage() + result.trailer;
        result = Type(code);
        result.message = text;
    }

    static std::string getMessage(const Type& result) { return result.message; }
    static void setMessage(Type& result, const std::string& text) { result << text; }

    using ErrorCode = utilities::serializer::NamedTextTrait<
        Command::ResultCode, &errorCode, false,
        utilities::serializer::CastConvertor<Command::ResultCode, int>>;
    using Message =
        utilities::serializer::NamedTextTrait<std::string, &message, true,
                                              utilities::serializer::Convertor<std::string>>;
    using Children = utilities::TypeList<
        utilities::serializer::Child<ErrorCode, &getErrorCode, &setErrorCode>,
        utilities::TypeList<utilities::serializer::Child<Message, &getMessage, &setMessage>>>;
};

/// The child that every answer has: the engine's verdict.
struct ResultChild {
    static Command::Result getResult(const Command::Answer& answer) { return answer.result; }
    static void setResult(Command::Answer& answer, const Command::Result& result) {
        answer.result = result;
    }

    using Type = utilities::serializer::Child<ResultTrait<Command::Result>, &getResult, &setResult>;
};

} // namespace velta::zub::cmdfrmwrk
