#include "avsync/Watchdog.h"

#include <gtest/gtest.h>

#include <atomic>

using std::chrono::milliseconds;
using velta::zub::avsync::Watchdog;
using Ending = Watchdog::Ending;

TEST(Watchdog, CancelsOnlyCallsThatTakeTooLongAgainAndAgain) {
    std::atomic<int> cancelled{0};
    Watchdog watchdog([&] { ++cancelled; });
    const auto call = [&](Watchdog::Time limit, int until) {
        const Watchdog::Deadline deadline(watchdog, limit);
        while (cancelled < until) {
            std::this_thread::yield();
        }
    };
    const auto start = Watchdog::Clock::now();
    // The second limit is sooner than the one for which the thread sleeps.
    call(start + std::chrono::hours(1), 0);
    call(start + milliseconds(50), 2);
    EXPECT_EQ(watchdog.ending(), Ending::Limit);
    EXPECT_GE(Watchdog::Clock::now() - start, milliseconds(60));
    const int after = cancelled;
    call(Watchdog::never, 0);
    EXPECT_EQ(watchdog.ending(), Ending::Itself);
    std::thread stopper([&] { watchdog.stop(); });
    call(Watchdog::never, after + 1);
    EXPECT_EQ(watchdog.ending(), Ending::Stop);
    stopper.join();
    call(Watchdog::never, cancelled + 1);
    EXPECT_EQ(watchdog.ending(), Ending::Stop);
}
