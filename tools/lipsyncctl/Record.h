#pragma once

#include <nlohmann/json.hpp>

namespace lipsyncctl {

/// A JSON object that keeps the order of its keys.
using Record = nlohmann::ordered_json;

} // namespace lipsyncctl
