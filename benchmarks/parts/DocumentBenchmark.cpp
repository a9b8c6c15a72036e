#include "benchmarks/parts/Measure.h"
#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

namespace {

using benchmarks::measure;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

template <typename Request>
void serialize(benchmark::State& state, const Request& request, const std::string& content) {
    // Documents do not include the end marker.
    std::string expected = tests::frame(content);
    expected.resize(expected.size() - 2);
    measure(state, [&] {
        std::string text;
        return Serializer().serialize(request, text).isSuccess() && text == expected;
    });
}

template <typename Answer, typename IsRight>
void deserialize(benchmark::State& state, const std::string& text, const IsRight& isRight) {
    measure(state, [&] {
        Answer answer;
        return Serializer().deserialize(text, answer).isSuccess() && answer.result.isSuccess() &&
               isRight(answer);
    });
}

void serializeGetAudioTs(benchmark::State& state) {
    serialize(state, GetAudioTs::Request{}, "<GetAudioTs_Request />");
}
BENCHMARK(serializeGetAudioTs);

void serializeSetAudioDelay(benchmark::State& state) {
    serialize(state, SetAudioDelay::Request{40},
              "<SetAudioDelay_Request>40</SetAudioDelay_Request>");
}
BENCHMARK(serializeSetAudioDelay);

void deserializeGetAudioTs(benchmark::State& state, const std::string& message) {
    const std::string text = tests::timestampsFrame("16963814587331346432", "16963814588104458240",
                                                    "16963814587674943488", "60", "1000", message);
    deserialize<GetAudioTs::Answer>(
        state, text.substr(0, text.size() - 2), [](const GetAudioTs::Answer& answer) {
            return answer.timestamps.audioCaptureTimestamp == 16963814587331346432UL &&
                   answer.timestamps.jbmCurrentDepth == 60;
        });
}
BENCHMARK_CAPTURE(deserializeGetAudioTs, plain, "");
// TinyXML reads answers that have an entity.
BENCHMARK_CAPTURE(deserializeGetAudioTs, byTree, "&amp;");

void deserializeSetAudioDelay(benchmark::State& state) {
    const std::string text = tests::delayFrame("1000");
    deserialize<SetAudioDelay::Answer>(state, text.substr(0, text.size() - 2),
                                       [](const SetAudioDelay::Answer&) { return true; });
}
BENCHMARK(deserializeSetAudioDelay);

} // namespace
