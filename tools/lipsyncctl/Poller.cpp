#include "tools/lipsyncctl/Poller.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace lipsyncctl {

namespace {

constexpr std::chrono::milliseconds reconnectPause{300};

// Beyond this size the oldest unread events are dropped.
constexpr std::size_t maxBytes = 1000000;

std::size_t size(const Poller::Event& event) {
    const auto* const failure = std::get_if<Failure>(&event);
    return sizeof(event) + (failure == nullptr ? 0 : std::strlen(failure->what()));
}

} // namespace

Poller::Poller(const Options& options)
    : _interval(options.intervalMs),
      _connection(options.socket, std::chrono::milliseconds(options.timeoutMs)),
      _thread([this] { poll(); }) {}

std::optional<Poller::Event> Poller::next(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(_mutex);
    if (!_changed.wait_for(lock, timeout, [this] { return !_events.empty(); })) {
        return std::nullopt;
    }
    return takeOldest();
}

Poller::~Poller() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isStopping = true;
    }
    _changed.notify_all();
    _connection.stop();
    _thread.join();
}

void Poller::poll() {
    using std::chrono::steady_clock;
    auto due = steady_clock::now();
    do {
        report(readOnce());
        const auto now = steady_clock::now();
        // Without a connection, the interval does not count: the first reading after an outage
        // comes as soon as possible, and the next ones follow it at the interval.
        due = _connection.isConnected() ? std::max(due + _interval, now) : now + reconnectPause;
    } while (pauseUntil(due));
}

Poller::Event Poller::readOnce() {
    try {
        if (!_connection.isConnected()) {
            _connection.connect();
        }
        return read(_connection);
    } catch (const Failure& failure) {
        return failure;
    }
}

void Poller::report(Event event) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _bytes += size(event);
    _events.push_back(std::move(event));
    while (_bytes > maxBytes && _events.size() > 1) {
        takeOldest();
    }
    _changed.notify_all();
}

Poller::Event Poller::takeOldest() {
    Event event = std::move(_events.front());
    _events.pop_front();
    _bytes -= size(event);
    return event;
}

// Returns false if the thread must stop.
bool Poller::pauseUntil(std::chrono::steady_clock::time_point time) {
    std::unique_lock<std::mutex> lock(_mutex);
    return !_changed.wait_until(lock, time, [this] { return _isStopping; });
}

} // namespace lipsyncctl
