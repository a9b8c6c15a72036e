#pragma once

#include <cstdint>

#include "utilities/result/Result.h"

namespace velta::utilities::xmlserializer {

enum class ResultCode : std::int32_t {
    Success = 66,
    UnknownError = 67,       ///< Not produced.
    WrongXmlNode = 68,       ///< An element has another name than the expected one.
    ChildNotFound = 69,      ///< An element lacks a child element, or its text.
    UnexpectedNodeType = 70, ///< A node is no text node.
    ConversionFailed = 71,   ///< A text is no value of the type, or the document's frame is wrong.
    InvalidArgument = 72,    ///< Not produced.
    InputStreamInvalid = 73, ///< Not produced.
};

namespace detail {

struct ResultTrait {
    using ResultCode = xmlserializer::ResultCode;
    static constexpr ResultCode successCode = ResultCode::Success;
    static const char* text(ResultCode code);
};

} // namespace detail

using Result = result::Result<detail::ResultTrait>;

} // namespace velta::utilities::xmlserializer
