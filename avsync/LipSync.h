#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "avsync/ExchangeLock.h"
#include "avsync/LipSyncTypes.h"
#include "avsync/Ntp.h"
#include "avsync/details/SyncThread.h"

namespace velta::zub::avsync {

/// Keeps the pictures of a call in step with its sound, in a thread of its own: connects to the
/// audio engine, reads its timestamps, decides with a `Controller`, sets the margin, and tells by
/// how much to hold back the pictures.
///
///     avsync::LipSync lipSync(options);                      // Connects, again and again.
///     lipSync.setPicture(captured, shown, heldBackMs);       // For each picture shown.
///     wait = lipSync.pictureDelayMs();                       // For the next picture.
///     log(lipSync.status().message);                         // If something is wrong.
///
/// **What it does in each state**
/// - No engine, a broken connection, or no answer within the deadline: connects again, after pauses
///   that grow from 100 ms to 2 s until there is a usable reading. Then it sets the margin again.
/// - The engine is not in a call: asks once a second. When a call begins, it sets the margin again
///   and steers anew.
/// - The engine refuses to give timestamps: asks again, after pauses that grow to a second.
/// - The engine refuses a margin: keeps the old one and steers the pictures alone. Tries again
///   after five seconds.
/// - The timestamps do not change, as in a pause of the sound, or are over a second older than
///   usual: waits for better ones. The clocks of engine and device need not agree. If new ones come
///   that are old for three seconds, then each answers an earlier request, and it connects again.
/// - No picture for a second: reads, but changes nothing.
/// - No memory: connects again, as after a broken connection.
///
/// Whatever happens, the corrections in force stay until a reading asks for others.
///
/// **Blocking.** `setPicture` and `pictureDelayMs` never block. `status` waits only while another
/// thread copies a status. `stop` and the destructor take at most the deadline plus half a second,
/// whatever the engine does.
///
/// **Threads.** Any thread may call any function at any time, except the destructor: no other
/// function may run then or later. There are two threads: one for the exchanges, which has SIGPIPE
/// blocked, and one that cancels exchanges. They use nothing of the caller's except `onReading`.
///
/// **Several objects.** Several objects may be used at the same time, also for different engines.
/// As all exchanges of the library must not overlap, they hold `exchangeLock()` during each one. If
/// you call `setAudioDelayMargin` or `getAudioTimestamps` yourself while a `LipSync` exists, hold
/// it too. So a silent engine also delays the readings of others.
///
/// **What remains to the caller** are the library's rules for descriptors 0, 1 and 2 and for
/// `fork`, see `Service`; a child process must not use or destroy the object. Destroy the object
/// before `main` returns. SIGPIPE needs no care.
class LipSync {
public:
    using Options = LipSyncOptions; ///< How it works.
    using Status = LipSyncStatus;   ///< What it is doing.

    /// Starts the threads and returns at once. Throws only what `std::thread` and the allocation of
    /// memory throw.
    explicit LipSync(Options options)
        : _work(std::make_shared<details::SyncThread>(std::move(options))),
          _thread([work = _work] { work->run(); }) {}

    /// Calls `stop`.
    ~LipSync() {
        stop();
        // Only if it runs in `onReading`.
        if (_thread.joinable()) {
            _thread.detach();
        }
    }

    LipSync(const LipSync&) = delete;
    LipSync& operator=(const LipSync&) = delete;

    /// Tells about a picture that has been shown: when it was captured, by the same clock of the
    /// sender as the sound's capture time, when it was shown, by this device's clock, both NTP
    /// 32.32, and for how long it was held back, in ms, because of `pictureDelayMs`. Call it for
    /// each picture or some times a second. Never blocks; a picture may be lost if two threads call
    /// it at once.
    void setPicture(std::uint64_t capturedNtp, std::uint64_t shownNtp, double heldBackMs) {
        _work->state().setPicture(ntpMsBetween(capturedNtp, shownNtp), heldBackMs);
    }

    /// How long the next pictures should be held back, in ms; 0 or more. Never blocks.
    double pictureDelayMs() const { return _work->state().pictureDelayMs(); }

    /// What it is doing.
    Status status() const { return _work->state().status(); }

    /// Ends the steering for good. Sets the margin back to 0 unless `Options::resetsMargin` is
    /// false or the engine does not let it. The pictures' delay stays.
    ///
    /// Returns when the thread has ended, but after at most `Options::deadline` and half a second,
    /// except that it waits for a running `onReading`. A thread that still waits for the engine to
    /// accept a connection is left behind: it owns what it needs and ends as soon as it can.
    ///
    /// Further calls have no effect. In `onReading` it returns at once, and the thread ends
    /// afterwards.
    void stop() {
        _work->state().stop();
        if (_work->state().isCalling(std::this_thread::get_id())) {
            return;
        }
        const bool hasEnded = _work->state().waitForEnd();
        const std::lock_guard<std::mutex> lock(_joining);
        if (_thread.joinable()) {
            hasEnded ? _thread.join() : _thread.detach();
        }
    }

private:
    std::shared_ptr<details::SyncThread> _work; // The thread owns it too.
    std::mutex _joining;
    std::thread _thread;
};

} // namespace velta::zub::avsync
