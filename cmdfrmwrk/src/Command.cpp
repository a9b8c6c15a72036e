#include "cmdfrmwrk/Command.h"

namespace velta::zub::cmdfrmwrk {

const char* Command::ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::InvalidParameter: return "Invalid parameter";
        case ResultCode::BadState: return "Bad state";
    }
    return utilities::result::unreachableText;
}

} // namespace velta::zub::cmdfrmwrk
