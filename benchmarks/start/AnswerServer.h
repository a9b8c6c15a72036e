#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/TemporaryDirectory.h"

namespace benchmarks {

/// A process that gives the same timestamps to every request of one client after the other, for as
/// long as this object lives.
class AnswerServer {
public:
    AnswerServer();
    ~AnswerServer();

    AnswerServer(const AnswerServer&) = delete;
    AnswerServer& operator=(const AnswerServer&) = delete;

    std::string path() const { return _directory.path() + "/engine"; }

private:
    tests::TemporaryDirectory _directory;
    pid_t _pid;
};

} // namespace benchmarks
