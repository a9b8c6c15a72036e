#pragma once

#include <mutex>
#include <optional>

namespace video {

/// The latest value that one thread has for another. Both only copy it under the lock, so neither
/// waits for the other's work.
template <typename T>
class Latest {
public:
    void set(const T& value) {
        const std::lock_guard lock(_mutex);
        _value = value;
    }

    /// Empty before the first `set`.
    std::optional<T> get() const {
        const std::lock_guard lock(_mutex);
        return _value;
    }

private:
    mutable std::mutex _mutex;
    std::optional<T> _value;
};

} // namespace video
