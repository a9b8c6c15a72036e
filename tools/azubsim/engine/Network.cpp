#include "tools/azubsim/engine/Network.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using tools::require;

constexpr const char* header = "time_s,audio_ms,depth_ms,picture_ms";
constexpr double largestMs = 10000;

Network::Row parseRow(const std::string& line) {
    std::vector<double> numbers;
    std::istringstream cells(line + ',');
    for (std::string cell; std::getline(cells, cell, ',');) {
        numbers.push_back(tools::parseNumber(cell).value_or(NAN));
    }
    const auto isNumber = [](double number) { return !std::isnan(number); };
    require(numbers.size() == 4 && std::all_of(numbers.begin(), numbers.end(), isNumber),
            "'" + line + "' is not four numbers");
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

} // namespace

Network::Network(const std::string& file) {
    bool hasHeader = false;
    tools::readLines(file, [&](const std::string& line) {
        require(hasHeader || line == header, std::string("the header must be ") + header);
        if (hasHeader) {
            add(line);
        }
        hasHeader = true;
    });
    require(!_rows.empty(), file + ": it has no rows");
}

void Network::add(const std::string& line) {
    const Row row = parseRow(line);
    require(row.seconds >= 0 && (_rows.empty() || row.seconds > _rows.back().seconds),
            "the time must be later than in the line before, and not below 0");
    const auto [least, most] = std::minmax({row.audioMs, row.depthMs, row.pictureMs});
    require(least >= 0 && most <= largestMs,
            "latencies and depth must be from 0 to " + tools::formatNumber(largestMs) + " ms");
    _rows.push_back(row);
}

const Network::Row& Network::at(double seconds) const {
    const Row& last = _rows.back();
    const double held = _rows.size() > 1 ? last.seconds - (&last - 1)->seconds : 1;
    const double time = std::fmod(std::max(seconds, 0.0), last.seconds + held);
    const auto next =
        std::upper_bound(_rows.begin(), _rows.end(), time,
                         [](double value, const Row& row) { return value < row.seconds; });
    return next == _rows.begin() ? *next : *std::prev(next);
}

} // namespace azubsim
