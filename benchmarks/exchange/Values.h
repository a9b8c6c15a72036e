#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace exchange {

/// Capture, rendering and receiving timestamps, and the depth of the jitter buffer.
using Values = std::array<std::uint64_t, 4>;

/// The number of different answers, which the engine sends in turn. Each differs from the one
/// before in all four values, so that no stale value or cached answer passes as right.
constexpr std::size_t answerCount = 16;

/// The values in the answer to request `number`, counted from 0.
Values valuesOf(std::size_t number);

/// The answers as text, all of the same size.
std::vector<std::string> textAnswers();

} // namespace exchange
