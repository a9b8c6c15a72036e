#pragma once

#include <cstddef>

#include "benchmarks/exchange/Contestant.h"
#include "benchmarks/exchange/LogOutput.h"
#include "benchmarks/exchange/ServerProcess.h"
#include "lipsyncapi/Service.h"

namespace exchange {

/// The library, through its public class.
class LibraryContestant : public Contestant {
public:
    explicit LibraryContestant(LogOutput::Kind log);
    ~LibraryContestant() override;

    /// After a turn the file must hold both lines of each call: a call that does not log is not
    /// the library's.
    void beginTurn() override;
    void endTurn() override;

    void exchange() override;

private:
    LogOutput::Kind _kind;
    ServerProcess _server;
    LogOutput _log;
    velta::zub::lipsyncapi::Service _service;
    std::size_t _next = 0;
    std::size_t _first = 0;
};

} // namespace exchange
