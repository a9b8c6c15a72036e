#include "tests/support/Files.h"

#include <cstdlib>
#include <filesystem>

namespace tests {

namespace {

using std::filesystem::path;

#ifndef SOURCE_FOLDER
// The platform's build puts a test's files beside its program.
const path SOURCE_FOLDER = std::filesystem::read_symlink("/proc/self/exe").parent_path();
const path BUILD_FOLDER = SOURCE_FOLDER;
#endif

std::string in(const path& folder, const std::string& name) {
    const char* const copies = std::getenv("ZUBLIPSYNCAPI_TEST_FILES");
    return (copies != nullptr ? copies : folder) / name;
}

} // namespace

std::string sourceFile(const std::string& name) {
    return in(SOURCE_FOLDER, name);
}

std::string builtFile(const std::string& name) {
    return in(BUILD_FOLDER, name);
}

} // namespace tests
