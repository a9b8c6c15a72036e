#pragma once

#include <string>

namespace tests {

/// The paths of a file in the repository and of a file in the build folder. A test that runs
/// elsewhere, as on a device, gets copies of both in the folder `ZUBLIPSYNCAPI_TEST_FILES`, or
/// beside its program if it was built without these folders.
std::string sourceFile(const std::string& name);
std::string builtFile(const std::string& name);

} // namespace tests
