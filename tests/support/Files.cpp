#include "tests/support/Files.h"

#include <cstdlib>
#include <filesystem>

namespace tests {

namespace {

std::string in(const char* folder, const std::string& name) {
    const char* const copies = std::getenv("ZUBLIPSYNCAPI_TEST_FILES");
    return std::filesystem::path(copies != nullptr ? copies : folder) / name;
}

} // namespace

std::string sourceFile(const std::string& name) {
    return in(SOURCE_FOLDER, name);
}

std::string builtFile(const std::string& name) {
    return in(BUILD_FOLDER, name);
}

} // namespace tests
