#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tests {

/// A directory for one test in `TMPDIR`, by default "/tmp", or in the working folder if that is
/// missing. The destructor removes it with its contents.
class TemporaryDirectory {
public:
    TemporaryDirectory() : _path(pattern()) {
        if (mkdtemp(_path.data()) == nullptr) {
            std::abort();
        }
    }

    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return _path; }

private:
    static std::string pattern() {
        std::error_code isMissing; // Then the folder is an empty path.
        return std::filesystem::temp_directory_path(isMissing) / "zublipsyncXXXXXX";
    }

    std::string _path;
};

} // namespace tests
