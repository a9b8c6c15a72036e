#pragma once

#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

namespace video {

/// How late the pictures of a recorded call are, ten times a second.
class Network {
public:
    /// Reads the last column, `picture_ms`, of a file with a line of names first. Returns false if
    /// there is a line without it, or none at all.
    bool load(const std::string& file) {
        std::ifstream lines(file);
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            const std::string number = line.substr(line.rfind(',') + 1);
            char* rest = nullptr;
            _pictureMs.push_back(std::strtod(number.c_str(), &rest));
            if (number.empty() || *rest != '\0') {
                return false;
            }
        }
        return !_pictureMs.empty();
    }

    /// The recording repeats when it ends.
    double pictureMs(double seconds) const {
        const auto index = static_cast<std::size_t>(std::floor(seconds * 10));
        return _pictureMs[index % _pictureMs.size()];
    }

private:
    std::vector<double> _pictureMs;
};

} // namespace video
