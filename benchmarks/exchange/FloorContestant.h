#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "benchmarks/exchange/Contestant.h"
#include "benchmarks/exchange/ServerProcess.h"

namespace exchange {

/// The least that an exchange can cost: the bytes of the library's request and answer, moved with
/// the system calls that the library makes for them, and nothing made of them.
class FloorContestant : public Contestant {
public:
    FloorContestant();
    ~FloorContestant() override;

    void exchange() override;

private:
    void send() const;
    std::size_t receive();

    ServerProcess _server;
    std::vector<std::string> _answers;
    char _received[4096];
    std::size_t _next = 0;
    int _fd;
};

} // namespace exchange
