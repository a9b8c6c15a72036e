#include "tools/azubsim/Network.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tools/azubsim/Decimal.h"

namespace azubsim {

namespace {

constexpr const char* header = "time_s,audio_ms,depth_ms,picture_ms";
constexpr double largestMs = 10000;

bool parseRow(const std::string& line, Network::Row& row) {
    std::istringstream cells(line + ',');
    std::string cell;
    for (double* const value : {&row.seconds, &row.audioMs, &row.depthMs, &row.pictureMs}) {
        if (!std::getline(cells, cell, ',') || !parseDecimal(cell, *value)) {
            return false;
        }
    }
    return !std::getline(cells, cell, ',');
}

bool isHeader(const std::string& line, std::string& error) {
    error = std::string("the header must be ") + header;
    return line == header;
}

bool isLatency(double ms) {
    return ms >= 0 && ms <= largestMs;
}

} // namespace

bool Network::open(const std::string& file, std::string& error) {
    errno = 0;
    std::ifstream lines(file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (number == 1 ? !isHeader(line, error) : !add(line, error)) {
            error.insert(0, file + ':' + std::to_string(number) + ": ");
            return false;
        }
    }
    // A folder can be opened, but not read.
    if (!lines.is_open() || lines.bad()) {
        error = file + ": " + std::strerror(errno);
        return false;
    }
    error = file + ": it has no rows";
    return !_rows.empty();
}

bool Network::add(const std::string& line, std::string& error) {
    Row row;
    if (!parseRow(line, row)) {
        error = "'" + line + "' is not four numbers";
        return false;
    }
    if (row.seconds < 0 || (!_rows.empty() && row.seconds <= _rows.back().seconds)) {
        error = "the time must be later than in the line before, and not below 0";
        return false;
    }
    if (!isLatency(row.audioMs) || !isLatency(row.depthMs) || !isLatency(row.pictureMs)) {
        error = "latencies and depth must be from 0 to " + formatDecimal(largestMs) + " ms";
        return false;
    }
    _rows.push_back(row);
    return true;
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
