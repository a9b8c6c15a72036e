#pragma once

namespace velta::utilities::details {

/// The severity of a record. Always a template argument, so that outputs map it at compile time.
/// The namespace is not `detail`: both names are fixed.
struct Level {
    enum Enum { Fatal = 33, Info = 36 };
};

} // namespace velta::utilities::details
