#include "avsync/Ntp.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <utility>

using namespace std::chrono_literals;
using namespace velta::zub::avsync;
using std::chrono::nanoseconds;
using std::chrono::system_clock;

namespace {

constexpr std::uint64_t second = std::uint64_t{1} << 32;
constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();

} // namespace

TEST(Ntp, ConvertsTimesBothWays) {
    // 2036-02-07 06:28:16 UTC, when the timestamps start again from 0.
    constexpr auto newEra = 2085978496s;
    const std::pair<nanoseconds, std::uint64_t> rows[] = {
        {0s, 2208988800 * second},
        {1700000000123456us, 3908988800 * second + 530239482},
        {-250ms, 2208988799 * second + 3 * (second / 4)},
        {-2208988800s, 0},
        {newEra - 1us, last - 4294},
        {newEra + 1500ms, second + second / 2},
    };
    for (const auto& [sinceEpoch, ntp] : rows) {
        const auto time = system_clock::time_point(
            std::chrono::duration_cast<system_clock::duration>(sinceEpoch));
        EXPECT_EQ(ntpFrom(time), ntp) << sinceEpoch.count();
        EXPECT_EQ(systemTimeFrom(ntp, time + 2000000000s), time);
        EXPECT_EQ(systemTimeFrom(ntp, time - 2000000000s), time);
    }
}

TEST(Ntp, ReadsTheClocksOfThisDevice) {
    const auto before = system_clock::now();
    const auto now = systemTimeFrom(ntpNow());
    EXPECT_LE(before, now);
    EXPECT_LE(now, system_clock::now());
    EXPECT_NEAR(ntpMsBetween(ntpNow(), ntpAt(std::chrono::steady_clock::now() - 3600s)), -3600000,
                500);
}

TEST(Ntp, TakesDifferencesAndSumsAcross2036) {
    const std::tuple<std::uint64_t, double, std::uint64_t> rows[] = {
        {5 * second, -1500, 3 * second + second / 2},
        {last - second / 2 + 1, 1000, second / 2},
        {second / 2, -1000, last - second / 2 + 1},
        {7, 1e9, 1000000 * second + 7},
    };
    for (const auto& [from, ms, to] : rows) {
        EXPECT_EQ(ntpAddMs(from, ms), to) << ms;
        EXPECT_DOUBLE_EQ(ntpMsBetween(from, to), ms);
    }
    EXPECT_EQ(ntpAddMs(5, -0.6 / ntpUnitsPerMs), 4u);
}

TEST(RtpClock, ConvertsAroundTheNewestReport) {
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, double> rows[] = {
        {90000, 1000, 4000, 1000 / 30.0},
        {48000, 96000, 95040, -20},
        {90000, 0xffffff00, 0x00000084, 388 / 90.0},
        {90000, 0x00000084, 0xffffff00, -388 / 90.0},
        {1, 0, 0x80000000, -2147483648e3},
        {0xffffffff, 0, 0x7fffffff, 500},
    };
    for (const auto& [rateHz, reportRtp, rtp, msAfter] : rows) {
        // In 2023, and just before the timestamps start again.
        for (const std::uint64_t report : {3900000000 * second + 12345, last - 12345}) {
            RtpClock clock(rateHz);
            // The sender sets its clock and begins its timestamps anew.
            clock.addReport(report - 60 * second, reportRtp + 90000);
            clock.addReport(report, reportRtp);
            clock.addReport(0, 7); // From a sender without a clock.
            const auto captured = clock.captured(rtp);
            ASSERT_TRUE(captured) << rtp;
            EXPECT_NEAR(ntpMsBetween(report, *captured), msAfter, 1e-6) << rtp;
        }
    }
}

TEST(RtpClock, NeedsAReportAndARate) {
    RtpClock clock(90000);
    EXPECT_FALSE(clock.captured(0));
    clock.addReport(0, 90000);
    EXPECT_FALSE(clock.captured(90000));
    RtpClock withoutRate(0);
    withoutRate.addReport(5 * second, 90000);
    EXPECT_FALSE(withoutRate.captured(90000));
}
