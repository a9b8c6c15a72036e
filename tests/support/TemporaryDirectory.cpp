#include "tests/support/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>

namespace tests {

TemporaryDirectory::TemporaryDirectory() {
    std::error_code none;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(none);
    _path = (none ? "." : parent.string()) + "/zublipsyncXXXXXX";
    if (mkdtemp(_path.data()) == nullptr) {
        std::abort();
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

} // namespace tests
