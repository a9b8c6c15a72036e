#pragma once

#include <atomic>
#include <csignal>
#include <functional>
#include <mutex>
#include <thread>

namespace lipsyncctl {

/// Takes SIGINT, SIGTERM and SIGALRM, in a thread. They end the process at once, even if it waits
/// for ever in a write, or call a function instead. Create it before any other thread, because
/// threads inherit which signals they block.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();

    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// From now on a signal calls this function in the thread, or ends the process if it is null.
    void setHandler(std::function<void()> handler);

    /// The exit status that tells of the signal that called a function; 0 if none has.
    int exitStatus() const { return _exitStatus; }

private:
    void wait();

    sigset_t _signals{};
    std::mutex _mutex;
    std::function<void()> _handler;
    bool _isEnding = false;
    std::atomic<int> _exitStatus{0};
    std::thread _thread; ///< Last: it uses the others.
};

} // namespace lipsyncctl
