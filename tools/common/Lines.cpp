#include "tools/common/Lines.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

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
    std::istringstream stream(line);
    stream >> first >> std::ws;
    rest.assign(std::istreambuf_iterator<char>(stream), {});
    rest.erase(rest.find_last_not_of(" \t\r") + 1);
}

} // namespace tools
