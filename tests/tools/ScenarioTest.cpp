#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>

#include "tests/support/Files.h"
#include "tests/tools/Engine.h"
#include "tools/azubsim/engine/AudioEngine.h"

using azubsim::AudioEngine;
using azubsim::Timestamps;
using std::chrono::milliseconds;
using std::chrono::seconds;

using Scenario = tests::EngineTest;

namespace {

constexpr double unitsPerMs = 4294967.296;
const AudioEngine::Clock::time_point start{seconds(1800000000)};

Timestamps timestamps(const AudioEngine& engine, AudioEngine::Clock::time_point now) {
    Timestamps result;
    engine.timestamps(now, result);
    return result;
}

// How long before its arrival the last packet was captured, by the far end's clock.
double onTheWayMs(const AudioEngine& engine, AudioEngine::Clock::time_point now) {
    const Timestamps result = timestamps(engine, now);
    return static_cast<double>(static_cast<std::int64_t>(result.receiving - result.capture)) /
           unitsPerMs;
}

// Pictures in each second, from the rows of the pipeline's output.
std::vector<int> picturesPerSecond(const std::string& output) {
    std::vector<int> pictures;
    const std::regex row("\n *[0-9]+ +([0-9]+) ");
    for (std::sregex_iterator i(output.begin(), output.end(), row), end; i != end; ++i) {
        pictures.push_back(std::stoi((*i)[1]));
    }
    return pictures;
}

} // namespace

TEST_F(Scenario, TheFarEndsClockDriftsWithoutJumps) {
    constexpr double tolerance = 1e-3;
    AudioEngine engine;
    engine.setNetwork(milliseconds(80));
    engine.setDriftPpm(-250.5, start);
    EXPECT_NEAR(onTheWayMs(engine, start), 80, tolerance);
    const auto later = start + seconds(1000) + milliseconds(13);
    EXPECT_NEAR(onTheWayMs(engine, later), 80 + 250.5, tolerance);
    engine.setDriftPpm(100000, later);
    EXPECT_NEAR(onTheWayMs(engine, later), 80 + 250.5, tolerance);
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(2)), 80 + 250.5 - 200, tolerance);
    engine.setOffsetMs(-5, later + seconds(2));
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(2)), 80 + 5, tolerance);
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(3)), 80 + 5 - 100, tolerance);
    // A timestamp does not wrap below zero.
    const AudioEngine::Clock::time_point in1900{-seconds(2208988800)};
    engine.setOffsetMs(-1000, in1900);
    EXPECT_EQ(timestamps(engine, in1900).capture, 0U);
}

TEST_F(Scenario, TimestampsStandStillWhileTheyAreFrozen) {
    AudioEngine engine;
    engine.setJitter(milliseconds(0));
    engine.freeze(start);
    const Timestamps frozen = timestamps(engine, start);
    engine.setMargin(100, start);
    engine.setNetwork(milliseconds(500));
    engine.freeze(start + seconds(1));
    const Timestamps later = timestamps(engine, start + seconds(2));
    EXPECT_EQ(later.capture, frozen.capture);
    EXPECT_EQ(later.rendering, frozen.rendering);
    EXPECT_EQ(later.receiving, frozen.receiving);
    engine.unfreeze();
    const Timestamps thawed = timestamps(engine, start + seconds(2));
    EXPECT_EQ(thawed.receiving - frozen.receiving, 2ULL << 32);
    EXPECT_NEAR(static_cast<double>(thawed.rendering - thawed.receiving), 110 * unitsPerMs, 1);
}

TEST_F(Scenario, AMarginIsAppliedAtTheRateOfTheSlew) {
    AudioEngine engine;
    engine.setJitter(milliseconds(0));
    const auto expectMargin = [&](double marginMs, milliseconds after) {
        const Timestamps result = timestamps(engine, start + after);
        EXPECT_NEAR(static_cast<double>(result.rendering - result.receiving) / unitsPerMs,
                    10 + marginMs, 1e-3);
    };
    engine.setSlew(20, start);
    engine.setMargin(60, start);
    expectMargin(0, milliseconds(0));
    expectMargin(20, seconds(1));
    engine.setMargin(0, start + seconds(2));
    expectMargin(30, milliseconds(2500));
    engine.setSlew(10, start + milliseconds(2500));
    expectMargin(25, seconds(3));
    expectMargin(0, seconds(60));
    engine.setMargin(100, start + seconds(60));
    engine.setSlew(0, start + seconds(60));
    expectMargin(100, seconds(60));
    engine.setSlew(20, start + seconds(61));
    engine.resetMargin();
    expectMargin(0, seconds(61));
}

TEST_F(Scenario, StatusShowsWhatCommandsChanged) {
    const tests::Engine engine(socket);
    const auto replyTo = [&](const std::string& commands) {
        engine.write(commands + "status\n");
        engine.readUntil("margin 0 ms\n");
        std::string status = engine.readUntil("only all\n");
        engine.readUntil("quiet off\n");
        return status;
    };
    const std::string atFirst = replyTo("");
    EXPECT_EQ(replyTo("call off\nnetwork 90\njitter 30\n offset  -2000 \nfreeze on\nfault cut\n"
                      "every 3\nseed 7\ndrift 1.5\ndrift -0\ndrift 100000.1\nslew 20\nslew -1\n"),
              "call off\nnetwork 90 ms\njitter 30 ms\nslew 20 ms/s\noffset -2000 ms\ndrift 0 "
              "ppm\nfreeze on\n"
              "fault cut\nevery 3\nseed 7\nonly all\n");
    EXPECT_EQ(replyTo("call on\nnetwork 60\njitter auto\noffset 0\nfreeze off\nfault none\n"
                      "slew 0\nevery 1\nseed none\n"),
              atFirst);
}

TEST_F(Scenario, MistakesAreNamedWithTheirLine) {
    const std::string file = directory.path() + "/trouble.scenario";
    const auto expectError = [&](const std::string& line, const std::string& error) {
        std::ofstream(file) << "# Trouble\n\n1.5 drift -0.5\n" << line;
        expectFailure(AZUBSIM, "engine --scenario " + file + at, 1,
                      "azubsim: " + file + ":4: " + error);
    };
    expectError("2 nonsense", "invalid command: nonsense\n");
    expectError("2 network 10001\n3 nonsense",
                "invalid command: network 10001: MS must be a whole number from 0 to 10000\n");
    expectError("2 drift", "invalid command: drift: needs an argument: PPM\n");
    expectError("2 fault nonsense", "invalid command: fault nonsense: unknown fault 'nonsense'\n");
    expectError("1 call off", "time 1 is earlier than the time before it, 1.5\n");
    expectError("call off", "time 'call' must be a number of seconds from 0 to 86400\n");
    expectError("2", "no command after the time\n");
    EXPECT_FALSE(std::filesystem::exists(socket));
    expectFailure(AZUBSIM, "engine --scenario " + file + "/x" + at, 1,
                  "azubsim: " + file + "/x: Not a directory\n");
}

TEST_F(Scenario, AnEngineThatGoesAwayAgainAtTheMomentOfItsReturnComesBackOnce) {
    const std::string file = directory.path() + "/again.scenario";
    std::ofstream(file) << "0 down 0\n0 down 0\n0 down 0\n";
    const tests::Engine engine(socket, {"--scenario", file});
    engine.readUntil("end\n");
    engine.write("down 0\n");
    engine.readUntil("down 0 s\nazubsim: listening at " + socket + " again\n");
    run(LIPSYNCCTL, "timestamps" + at);
}

TEST_F(Scenario, ThePicturesOfTheExampleGoOnInAllShippedOnes) {
    struct Run {
        std::string firstTrouble;
        std::unique_ptr<tests::Engine> engine;
        std::unique_ptr<tests::Process> pipeline;
    };
    std::vector<Run> runs;
    const auto play = [&](const std::string& name, const std::string& firstTrouble) {
        const std::string path = directory.path() + '/' + name;
        const std::vector<std::string> options{
            "--scenario", tests::sourceFile("tools/azubsim/scenarios/" + name + ".scenario")};
        const std::vector<std::string> command{"examples/video_pipeline", "--socket", path,
                                               "--seconds", "10"};
        runs.push_back({firstTrouble, std::make_unique<tests::Engine>(path, options),
                        std::make_unique<tests::Process>(command)});
    };
    play("drifting-clock", "3 s: drift 2000 -> drift 2000 ppm\n");
    play("bad-network", "8 s: freeze on -> freeze on\n");
    play("restarting-engine", "3 s: down 2 -> down 2 s\n");
    for (const Run& run : runs) {
        const std::string output = run.pipeline->readAll();
        const std::vector<int> pictures = picturesPerSecond(output);
        EXPECT_EQ(pictures.size(), 10U) << output;
        for (const int count : pictures) {
            EXPECT_GE(count, 20) << output;
        }
        run.engine->signal(SIGTERM);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "scenario " + run.firstTrouble,
                            run.engine->readAll());
    }
}
