#include "benchmarks/exchange/Values.h"

#include "tests/support/Frames.h"

namespace exchange {

namespace {

constexpr std::uint64_t second = std::uint64_t{1} << 32;

// A time in 2025. Captures are 20 ms apart, and all have the same number of digits.
constexpr std::uint64_t firstCapture = 3'960'000'000 * second;

} // namespace

Values valuesOf(std::size_t number) {
    const std::size_t i = number % answerCount;
    const std::uint64_t captured = firstCapture + i * second / 50;
    return {captured, captured + second / 6, captured + second / 16, 60 + i};
}

std::vector<std::string> textAnswers() {
    std::vector<std::string> answers;
    for (std::size_t i = 0; i < answerCount; ++i) {
        const Values values = valuesOf(i);
        answers.push_back(
            tests::timestampsFrame(std::to_string(values[0]), std::to_string(values[1]),
                                   std::to_string(values[2]), std::to_string(values[3])));
    }
    return answers;
}

} // namespace exchange
