#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace exchange {

/// Captured, rendered, received, depth of the jitter buffer.
using Values = std::array<std::uint64_t, 4>;

/// What the engine says, in turn, on every connection. Each answer differs from the one before in
/// all four values, so that neither a stale value nor a remembered answer passes for a right one.
constexpr std::size_t answerCount = 16;

/// The values of the answer to the request with this number, counted from 0.
Values valuesOf(std::size_t number);

/// The answers as the library reads them, all of the same size.
std::vector<std::string> textAnswers();

} // namespace exchange
