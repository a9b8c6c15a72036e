#pragma once

#include <fstream>
#include <string>

namespace azubsim {

/// A file that grows while the simulator runs. A killed program leaves everything written so far.
class OutputFile {
public:
    /// Refuses to overwrite an existing regular file unless `force` is set. Returns false with the
    /// reason in `error`.
    bool open(const std::string& path, bool force, std::string& error);

    bool isOpen() const { return _file.is_open(); }

    /// Writes the text through to the system. Returns false once, when that fails. After that,
    /// and before `open`, it does nothing and returns true.
    bool write(const std::string& text);

private:
    std::ofstream _file;
};

} // namespace azubsim
