#include "tools/lipsyncctl/Poller.h"

#include <algorithm>
#include <utility>

#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

constexpr std::chrono::milliseconds reconnectPause{300};

// Beyond this number the oldest unread events are dropped.
constexpr std::size_t maxEvents = 1000;

} // namespace

Poller::Poller(const Options& options)
    : _interval(options.intervalMs),
      _connection(options.socket, std::chrono::milliseconds(options.timeoutMs)),
      _thread([this] { poll(); }) {}

Poller::~Poller() {
    stop();
}

std::optional<Poller::Event> Poller::next(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(_mutex);
    if (!_changed.wait_for(lock, timeout, [this] { return !_events.empty(); })) {
        return std::nullopt;
    }
    Event event = std::move(_events.front());
    _events.pop_front();
    return event;
}

void Poller::stop() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isStopping = true;
    }
    _changed.notify_all();
    _connection.stop();
    if (_thread.joinable()) {
        _thread.join();
    }
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
    if (!_connection.isConnected()) {
        if (const auto failure = _connection.connect()) {
            return {std::nullopt, *failure};
        }
    }
    Reading reading;
    if (const auto failure = _connection.getTimestamps(reading.timestamps)) {
        if (!failure->isRefusal()) {
            _connection.disconnect();
        }
        return {std::nullopt, *failure};
    }
    reading.time = now();
    _connection.service().getAudioDelayMargin(reading.marginMs);
    return {reading, {}};
}

void Poller::report(Event event) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _events.push_back(std::move(event));
    if (_events.size() > maxEvents) {
        _events.pop_front();
    }
    _changed.notify_all();
}

// Returns false if the thread must stop.
bool Poller::pauseUntil(std::chrono::steady_clock::time_point time) {
    std::unique_lock<std::mutex> lock(_mutex);
    return !_changed.wait_until(lock, time, [this] { return _isStopping; });
}

} // namespace lipsyncctl
