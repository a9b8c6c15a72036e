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

Poller::Poller(std::string socket, std::chrono::milliseconds interval)
    : _socket(std::move(socket)), _interval(interval), _thread([this] { poll(); }) {}

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
        if (_exchanging != nullptr) {
            _exchanging->cancel();
        }
    }
    _changed.notify_all();
    if (_thread.joinable()) {
        _thread.join();
    }
}

void Poller::poll() {
    Service service;
    bool isConnected = false;
    auto due = std::chrono::steady_clock::now();
    for (;;) {
        report(readOnce(service, isConnected));
        const auto now = std::chrono::steady_clock::now();
        due = std::max(due + _interval, now);
        if (!pause(isConnected ? due - now : reconnectPause)) {
            return;
        }
    }
}

Poller::Event Poller::readOnce(Service& service, bool& isConnected) {
    if (!isConnected) {
        const Service::Result connected = service.connect(_socket);
        if (connected.isFailure()) {
            return {std::nullopt, Failure{connected.code, connected.format()}};
        }
        isConnected = true;
    }
    Reading reading;
    const Service::Result result = exchange(service, reading);
    if (result.isSuccess()) {
        return {reading, {}};
    }
    if (result.code == Service::ResultCode::TransportError) {
        service.disconnect();
        isConnected = false;
    }
    return {std::nullopt, Failure{result.code, result.format()}};
}

Poller::Service::Result Poller::exchange(Service& service, Reading& reading) {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_isStopping) {
            return Service::ResultCode::UnknownError;
        }
        _exchanging = &service;
    }
    Service::Result result = service.getAudioTimestamps(reading.timestamps);
    reading.time = now();
    const std::lock_guard<std::mutex> lock(_mutex);
    _exchanging = nullptr;
    return result;
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
bool Poller::pause(std::chrono::nanoseconds time) {
    std::unique_lock<std::mutex> lock(_mutex);
    return !_changed.wait_for(lock, time, [this] { return _isStopping; });
}

} // namespace lipsyncctl
