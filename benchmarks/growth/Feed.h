#pragma once

#include <cstddef>
#include <string>
#include <thread>

namespace benchmarks {

/// Sends bytes in pieces into a socket: as many as the socket holds before the constructor
/// returns, so that reading them waits for nothing, and the others from a thread.
class Feed {
public:
    /// `bytes` and `socket` must outlive the feed. Somebody has to read all of it.
    Feed(int socket, const std::string& bytes, std::size_t pieceSize);
    ~Feed();

    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

private:
    void sendSome(int flags);

    const int _socket;
    const std::string& _bytes;
    const std::size_t _pieceSize;
    std::size_t _sent = 0;
    std::thread _thread;
};

} // namespace benchmarks
