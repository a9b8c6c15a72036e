#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer::detail {

const char* ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::WrongXmlNode: return "Wrong XML node";
        case ResultCode::ChildNotFound: return "Child not found";
        case ResultCode::UnexpectedNodeType: return "Unexpected node type";
        case ResultCode::ConversionFailed: return "Conversion failed";
        case ResultCode::InvalidArgument: return "Invalid argument";
        case ResultCode::InputStreamInvalid: return "Input stream is invalid";
    }
    return result::unreachableText;
}

} // namespace velta::utilities::xmlserializer::detail
