#pragma once

#include <string>
#include <vector>

namespace azubsim {

/// What a call on a recorded network would show without any correction, by time. networks/README.md
/// describes the files.
class Network {
public:
    struct Row {
        double seconds; ///< Since the start.
        double audioMs; ///< From capture to rendering with margin 0.
        double depthMs; ///< Of the jitter buffer.
        double pictureMs;
    };

    /// Reads and checks the whole file. Throws a `tools::Error`, for example "FILE:LINE: reason".
    /// Otherwise there is at least one row.
    explicit Network(const std::string& file);

    const std::vector<Row>& rows() const { return _rows; }

    /// The row at this time since the start: each row holds until the next one, the last one as
    /// long as the one before it. Then the file starts again.
    const Row& at(double seconds) const;

private:
    void add(const std::string& line);

    std::vector<Row> _rows;
};

} // namespace azubsim
