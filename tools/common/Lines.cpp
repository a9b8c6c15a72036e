#include "tools/common/Lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "tools/common/Error.h"

namespace tools {

void readLines(const std::string& file,
               const std::function<void(const std::string& line)>& handle) {
    errno = 0;
    std::ifstream lines(file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        try {
            handle(line);
        } catch (const Error& e) {
            throw Error(file + ':' + std::to_string(number) + ": " + e.what());
        }
    }
    // A folder can be opened, but not read.
    if (!lines.is_open() || lines.bad()) {
        throw Error(file + ": " + std::strerror(errno));
    }
}

Words::Words(const std::string& line) {
    constexpr const char* blanks = " \t\r";
    const std::size_t start = line.find_first_not_of(blanks);
    if (start == std::string::npos) {
        return;
    }
    const std::size_t end = line.find_last_not_of(blanks) + 1;
    const std::size_t firstEnd = std::min(line.find_first_of(blanks, start), end);
    first = line.substr(start, firstEnd - start);
    const std::size_t restStart = line.find_first_not_of(blanks, firstEnd);
    if (restStart < end) {
        rest = line.substr(restStart, end - restStart);
    }
}

} // namespace tools
