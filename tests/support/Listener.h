#pragma once

#include <string>

namespace tests {

/// A listening Unix-domain socket. When it goes, its file stays: a socket that nobody serves.
class Listener {
public:
    explicit Listener(const std::string& path);
    ~Listener();

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// The next client's descriptor, which the caller closes; negative after `stop`. Blocks.
    int accept() const;

    /// Ends a blocked `accept`, and all later ones.
    void stop() const;

private:
    int _fd;
};

} // namespace tests
