#include "tests/support/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>

namespace tests {

TemporaryDirectory::TemporaryDirectory() {
    const char* const parent = std::getenv("TMPDIR");
    _path = std::string(parent != nullptr ? parent : "/tmp") + "/zublipsyncXXXXXX";
    if (mkdtemp(_path.data()) == nullptr) {
        std::abort();
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

} // namespace tests
