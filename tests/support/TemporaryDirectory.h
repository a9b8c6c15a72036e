#pragma once

#include <string>

namespace tests {

/// A directory for one test, below `TMPDIR` or "/tmp". It is removed with all that is in it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return _path; }

private:
    std::string _path;
};

} // namespace tests
