#include <nlohmann/json.hpp>
#include <tuple>

#include "tests/tools/Engine.h"

using namespace tests;
using LipsyncctlWatch = EngineTest;

namespace {

// The next record; error messages are between them.
nlohmann::json readRecord(const Process& watch) {
    const std::string start = "{\"time\"";
    watch.readUntil(start);
    return nlohmann::json::parse(start + watch.readUntil("\n"));
}

// The view begins with a title; without ncurses there is a message with a colon instead.
bool hasLiveView(const Process& view) {
    return view.hasStarted() && !view.readUntil("lipsyncctl").empty() && view.readUntil(" ") == " ";
}

} // namespace

TEST_F(LipsyncctlWatch, EndsQuietlyWhenItsReaderHasGone) {
    const Engine engine(socket);
    Process watch(LIPSYNCCTL, "timestamps --watch --interval 1" + at);
    watch.readUntil("captured ");
    watch.stopReading();
    EXPECT_EQ(watch.wait(), -SIGPIPE);
}

TEST_F(LipsyncctlWatch, WaitsForTheEngineAndWatchesForALimitedTime) {
    const Process waiting(LIPSYNCCTL, "capabilities --wait 60" + at);
    run(LIPSYNCCTL, "timestamps --wait 1" + at, 3);
    EXPECT_IN("lipsyncctl: 0 readings within 1 s\n",
              run(LIPSYNCCTL, "timestamps --max-time 1" + at, 4));
    const Engine engine(socket);
    EXPECT_IN("margins of 0", waiting.readAll());
    run(LIPSYNCCTL, "timestamps --interval 900 --max-time 1" + at);
    run(LIPSYNCCTL, "timestamps --interval 900 --count 3 --max-time 1" + at, 4);
}

TEST_F(LipsyncctlWatch, CanBeEndedWhenItsReaderDoesNotRead) {
    // Longer than a pipe takes.
    const Engine engine(socket, {"--fault", "error 1001 " + std::string(100000, 'x')});
    for (const std::string format : {"text", "json"}) {
        Process watch(LIPSYNCCTL, "timestamps --watch --format " + format + at);
        watch.readUntil("lipsyncctl: ");
        watch.signal(SIGINT);
        EXPECT_EQ(watch.wait(), 130);
    }
}

TEST_F(LipsyncctlWatch, ReadsAtOnceAfterAnOutageAndThenAtTheInterval) {
    const std::string watch = "timestamps --watch --format json" + at + " --interval ";
    const Process rare(LIPSYNCCTL, watch + "3600000");
    const Process frequent(LIPSYNCCTL, watch + "1000");
    for (const Process* const process : {&rare, &frequent}) {
        const nlohmann::json outage = readRecord(*process);
        EXPECT_EQ(outage["error"]["code"], 1004);
        EXPECT_TRUE(outage["latency_ms"].is_null());
    }
    // Long enough for several attempts to connect.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const Engine engine(socket);
    EXPECT_TRUE(readRecord(rare)["error"].is_null());
    const double first = readRecord(frequent)["time"];
    EXPECT_NEAR(readRecord(frequent)["time"].get<double>() - first, 1, 0.9);
}

TEST_F(LipsyncctlWatch, WatchesAnEngineThatGoesAwayComesBackAndFallsSilent) {
    auto engine = std::make_unique<Engine>(socket);
    Process watch(LIPSYNCCTL, "timestamps --watch --interval 20" + at);
    watch.readUntil("  latency ");
    engine.reset();
    watch.readUntil("lipsyncctl: Waiting for the engine: Cannot connect to Audio ZUB");
    engine = std::make_unique<Engine>(socket);
    watch.readUntil("  latency ");
    engine->write("call off\n");
    watch.readUntil(
        "lipsyncctl: The engine refused the request: The AZUB is not performing a call");
    engine->write("fault silence\n");
    engine->readUntil("fault: silence");
    // Now it waits for an answer.
    watch.signal(SIGTERM);
    EXPECT_EQ(watch.wait(), 143);
}

TEST_F(LipsyncctlWatch, ShowsALiveViewIfTheTerminalCanAndLeavesItAsItWas) {
    const Engine engine(socket);
    Process view(LIPSYNCCTL, "timestamps --watch --interval 50" + at, Process::ToTerminal);
    if (!hasLiveView(view)) {
        GTEST_SKIP() << "built without a live view, or no pseudo-terminal can be opened";
    }
    EXPECT_IN("Captured", view.readUntil("capture to rendering"));
    engine.signal(SIGTERM);
    // Only changed characters are written; this text differs from what was on the screen.
    view.readUntil("occured in the transport layer");
    view.write("\x03");
    // The terminal's previous text is restored.
    const std::string end = view.readAll();
    EXPECT_IN("\x1b[?1049l", end);
    EXPECT_IN(", outages 1\r\nLatency: min ", end);
    EXPECT_EQ(view.wait(), 130);

    const Engine again(socket);
    const std::string lines =
        run(LIPSYNCCTL, "timestamps --watch --count 1" + at, 0, Process::ToDumbTerminal);
    EXPECT_IN("captured ", lines);
    EXPECT_EQ(lines.find('\x1b'), std::string::npos) << lines;
}

TEST_F(LipsyncctlWatch, LiveViewSaysThatTheEngineIsSilentAndQuitsOnKeys) {
    // The long messages come faster than they can be shown.
    const std::string other = socket + "2";
    const Engine silent(socket, {"--fault", "silence"});
    const Engine busy(other, {"--fault", "error 1001 " + std::string(100000, 'x')});
    const std::tuple<std::string, const char*, const char*> cases[] = {
        {socket, "Connecting", "q"}, {socket, "No answer for", "\x1b"}, {other, "Refused", "Q"}};
    for (const auto& [path, state, key] : cases) {
        Process view(LIPSYNCCTL, "timestamps --interval 1 --socket " + path, Process::ToTerminal);
        if (!hasLiveView(view)) {
            GTEST_SKIP() << "built without a live view, or no pseudo-terminal can be opened";
        }
        view.readUntil(state);
        view.write(key);
        EXPECT_IN(", outages 0\r\n", view.readAll());
        EXPECT_EQ(view.wait(), 0);
    }
}
