#include "benchmarks/exchange/Answers.h"

namespace exchange {

namespace {

constexpr std::uint64_t second = std::uint64_t{1} << 32;

// A morning of 2025, a frame of 20 ms each time; all have as many digits as the first.
constexpr std::uint64_t firstCapture = 3'960'000'000 * second;

using Table = std::array<Values, answerCount>;

Table makeTable() {
    Table table{};
    std::uint64_t i = 0;
    for (Values& values : table) {
        const std::uint64_t captured = firstCapture + i * second / 50;
        values = {captured, captured + second / 6, captured + second / 16, 60 + i};
        ++i;
    }
    return table;
}

const Table table = makeTable();

std::string element(const std::string& name, std::uint64_t value) {
    return '<' + name + '>' + std::to_string(value) + "</" + name + '>';
}

std::string textAnswer(const Values& values) {
    return R"(<?xml version="1.0" ?><AZUB version="0.1.0"><GetAudioTs_Answer><LipSyncNtpTimestamps>)" +
           element("capture_timestamp", values[0]) + element("rendering_timestamp", values[1]) +
           element("receiving_timestamp", values[2]) + element("jitter_buffer_depth", values[3]) +
           "</LipSyncNtpTimestamps><Result><ErrorCode>1000</ErrorCode><Message /></Result>"
           "</GetAudioTs_Answer></AZUB>\n\n";
}

} // namespace

const Values& valuesOf(std::size_t exchange) {
    return table[exchange % answerCount];
}

const std::string textRequest =
    R"(<?xml version="1.0" ?><AZUB version="0.1.0"><GetAudioTs_Request /></AZUB>)"
    "\n\n";

std::vector<std::string> textAnswers() {
    std::vector<std::string> answers;
    for (const Values& values : table) {
        answers.push_back(textAnswer(values));
    }
    return answers;
}

} // namespace exchange
