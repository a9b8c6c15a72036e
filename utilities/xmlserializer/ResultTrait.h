#pragma once

#include <cstdint>

#include "utilities/result/Result.h"

namespace velta::utilities::xmlserializer {

enum class ResultCode : std::int32_t {
    Success = 66,
    UnknownError = 67,       ///< Not produced.
    WrongXmlNode = 68,       ///< An element does not have the expected name.
    ChildNotFound = 69,      ///< An element lacks a child element, or its text.
    UnexpectedNodeType = 70, ///< A node is not a text node.
    ConversionFailed = 71,   ///< A value cannot be converted, or the document's root is wrong.
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
