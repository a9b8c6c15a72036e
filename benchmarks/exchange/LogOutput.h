#pragma once

#include <android/log.h>

#include <cstddef>

namespace exchange {

/// Where the two logs of the library go while one contestant has its turn: its standard error, and
/// the platform's log, which on Linux writes to standard error as well.
class LogOutput {
public:
    enum class Kind { File, Nowhere };

    /// A file is one in memory without a name. Nowhere is "/dev/null" for standard error, and a
    /// writer that does nothing for the platform's log, which still formats the record for it.
    explicit LogOutput(Kind kind);
    ~LogOutput();

    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    /// Directs both logs here, and empties the file.
    void install();
    void restore();

    /// Lines in the file since it was emptied.
    std::size_t lines() const;

private:
    int _fd;
    int _standardError;
    __android_logger_function _writer;
};

} // namespace exchange
