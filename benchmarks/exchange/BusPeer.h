#pragma once

#include <string>
#include <thread>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace exchange {

/// Answers one client's method calls in the D-Bus wire format, on its own thread. The messages are
/// prepared; only the two serials are filled in for each call.
class BusPeer {
public:
    BusPeer();
    ~BusPeer();

    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    std::string path() const { return _directory.path() + "/engine"; }

private:
    void serve() const;

    const tests::TemporaryDirectory _directory;
    const tests::Listener _listener;
    std::thread _thread;
};

} // namespace exchange
