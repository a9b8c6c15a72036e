#pragma once

namespace velta::utilities::details {

/// How grave a record is. Always a template argument: every output maps it at compile time.
struct Level {
    enum Enum { Fatal = 33, Info = 36 };
};

} // namespace velta::utilities::details
