#include "avsync/Ntp.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using namespace velta::zub::avsync;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

namespace {

constexpr std::uint64_t second = std::uint64_t{1} << 32;
constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();

system_clock::time_point unixTime(nanoseconds sinceEpoch) {
    return system_clock::time_point(std::chrono::duration_cast<system_clock::duration>(sinceEpoch));
}

} // namespace

TEST(Ntp, ConvertsTimesBothWays) {
    // 2036-02-07 06:28:16 UTC, when the timestamps start again from 0.
    constexpr auto newEra = 2085978496s;
    const std::vector<std::pair<nanoseconds, std::uint64_t>> rows{
        {0s, 2208988800 * second},
        {500ms, 2208988800 * second + second / 2},
        {-250ms, 2208988799 * second + 3 * (second / 4)},
        {-2208988800s, 0},
        {newEra - 1us, last - 4294},
        {newEra, 0},
        {newEra + 1500ms, second + second / 2},
    };
    for (const auto& [sinceEpoch, ntp] : rows) {
        const auto time = unixTime(sinceEpoch);
        EXPECT_EQ(ntpFrom(time), ntp) << sinceEpoch.count();
        EXPECT_EQ(systemTimeFrom(ntp, time + 2000000000s), time);
        EXPECT_EQ(systemTimeFrom(ntp, time - 2000000000s), time);
    }
    for (nanoseconds fraction = 0ns; fraction < 1s; fraction += 999983ns) {
        const auto time = unixTime(1700000000s + fraction);
        ASSERT_EQ(systemTimeFrom(ntpFrom(time)), time) << fraction.count();
    }
}

TEST(Ntp, ReadsTheClocksOfThisDevice) {
    const auto before = system_clock::now();
    const auto now = systemTimeFrom(ntpNow());
    EXPECT_LE(before, now);
    EXPECT_LE(now, system_clock::now());
    for (const auto offset : {-3600s, -1s, 0s, 1s}) {
        const std::uint64_t time = ntpAt(steady_clock::now() + offset);
        EXPECT_NEAR(ntpMsBetween(ntpNow(), time), 1000.0 * static_cast<double>(offset.count()),
                    500);
    }
}

TEST(Ntp, TakesDifferencesAndSumsAcross2036) {
    struct Row {
        std::uint64_t from;
        double ms;
        std::uint64_t to;
    };
    const std::vector<Row> rows{
        {5 * second, 0, 5 * second},
        {5 * second, 1500, 6 * second + second / 2},
        {5 * second, -1500, 3 * second + second / 2},
        {last - second / 2 + 1, 1000, second / 2},
        {second / 2, -1000, last - second / 2 + 1},
        {7, 1e9, 1000000 * second + 7},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ntpAddMs(row.from, row.ms), row.to) << row.ms;
        EXPECT_DOUBLE_EQ(ntpMsBetween(row.from, row.to), row.ms);
    }
    EXPECT_EQ(ntpAddMs(5, 0.6 / ntpUnitsPerMs), 6u);
    EXPECT_EQ(ntpAddMs(5, -0.6 / ntpUnitsPerMs), 4u);
}

TEST(RtpClock, ConvertsAroundTheNewestReport) {
    struct Row {
        const char* what;
        std::uint32_t rateHz, reportRtp, rtp;
        double msAfter;
    };
    const std::vector<Row> rows{
        {"the same moment", 90000, 1000, 1000, 0},
        {"a picture later", 90000, 1000, 4000, 1000 / 30.0},
        {"a packet before the report", 48000, 96000, 95040, -20},
        {"wraps around forwards", 90000, 0xffffff00, 0x00000084, 388 / 90.0},
        {"wraps around backwards", 90000, 0x00000084, 0xffffff00, -388 / 90.0},
        {"the latest", 90000, 10, 0x80000009, 0x7fffffff / 90.0},
        {"the earliest", 90000, 10, 0x8000000a, -2147483648.0 / 90},
        {"the earliest at 1 Hz", 1, 0, 0x80000000, -2147483648e3},
        {"the fastest clock", 0xffffffff, 0, 0x7fffffff, 500},
    };
    for (const Row& row : rows) {
        // In 2023, and just before the timestamps start again.
        for (const std::uint64_t report : {3900000000 * second + 12345, last - 12345}) {
            RtpClock clock(row.rateHz);
            clock.addReport(report, row.reportRtp);
            const auto captured = clock.captured(row.rtp);
            ASSERT_TRUE(captured) << row.what;
            EXPECT_NEAR(ntpMsBetween(report, *captured), row.msAfter, 1e-6) << row.what;
        }
    }
}

TEST(RtpClock, NeedsAReportAndARate) {
    RtpClock clock(90000);
    EXPECT_FALSE(clock.captured(0));
    clock.addReport(0, 90000); // From a sender without a clock.
    EXPECT_FALSE(clock.captured(90000));
    clock.addReport(5 * second, 90000);
    clock.addReport(0, 90000);
    EXPECT_EQ(clock.captured(0), 4 * second);
    RtpClock without(0);
    without.addReport(5 * second, 90000);
    EXPECT_FALSE(without.captured(90000));
}

TEST(RtpClock, BelievesTheNewestReportAtOnce) {
    RtpClock clock(90000);
    clock.addReport(100 * second, 0);
    clock.addReport(165 * second, 5 * 90000); // The sender set its clock by a minute.
    EXPECT_EQ(clock.captured(6 * 90000), 166 * second);
    EXPECT_EQ(clock.captured(4 * 90000), 164 * second);
    clock.addReport(170 * second, 0x90000000); // The sender began its timestamps anew.
    EXPECT_EQ(clock.captured(0x90000000 + 90000), 171 * second);
}

// A week with a report every five seconds: the timestamps wrap around many times, and each time is
// as exact as the first.
TEST(RtpClock, StaysExactInALongCall) {
    for (const std::uint32_t rateHz : {90000u, 48000u, 44100u}) {
        RtpClock clock(rateHz);
        for (std::uint64_t s = 0; s < 604800; s += 5) {
            clock.addReport((3900000000 + s) * second, static_cast<std::uint32_t>(s * rateHz));
            const std::uint64_t later = 4 * rateHz + rateHz / 2;
            const auto captured = clock.captured(static_cast<std::uint32_t>(s * rateHz + later));
            ASSERT_EQ(captured, (3900000000 + s + 4) * second + second / 2) << rateHz << ' ' << s;
        }
    }
}
