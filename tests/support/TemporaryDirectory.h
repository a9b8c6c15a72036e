#pragma once

#include <string>

namespace tests {

/// A directory for one test in `TMPDIR`, by default "/tmp", or in the working folder if that is
/// missing. The destructor removes it with its contents.
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
