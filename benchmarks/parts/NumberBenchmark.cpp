#include <climits>
#include <string>

#include "benchmarks/parts/Measure.h"
#include "utilities/serializer/Convertor.h"

namespace {

using benchmarks::measure;

template <typename T>
void write(benchmark::State& state, T value, const std::string& expected) {
    measure(state, [&] {
        std::string text;
        return velta::utilities::serializer::Convertor<T>::toString(value, text) &&
               text == expected;
    });
}
BENCHMARK_CAPTURE(write, delay, 40UL, "40");
BENCHMARK_CAPTURE(write, timestamp, ULONG_MAX, std::to_string(ULONG_MAX));

template <typename T>
void read(benchmark::State& state, const std::string& text, T expected) {
    measure(state, [&] {
        T value{};
        return velta::utilities::serializer::Convertor<T>::fromString(text, value) &&
               value == expected;
    });
}
BENCHMARK_CAPTURE(read, depth, "60", 60UL);
BENCHMARK_CAPTURE(read, timestamp, std::to_string(ULONG_MAX), ULONG_MAX);
BENCHMARK_CAPTURE(read, timestampInHex, "0xffffffffffffffff", ULONG_MAX);
BENCHMARK_CAPTURE(read, errorCode, "1000", 1000);

} // namespace
