#pragma once

#include <unistd.h>

namespace velta::zub::comms {

/// Owns a descriptor until a `Link` takes it over.
class Descriptor {
public:
    explicit Descriptor(int fd) : _fd(fd) {}
    ~Descriptor() { close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isValid() const { return _fd >= 0; }
    int get() const { return _fd; }

    void release() { _fd = -1; }

    void close() {
        if (isValid()) {
            ::close(_fd);
        }
        release();
    }

private:
    int _fd;
};

} // namespace velta::zub::comms
