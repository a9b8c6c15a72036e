#include <deque>
#include <filesystem>
#include <fstream>

#include "tests/support/Files.h"
#include "tests/tools/Engine.h"

using namespace tests;
using Scenario = EngineTest;

TEST_F(Scenario, StatusShowsWhatCommandsChanged) {
    const Engine engine(socket);
    const auto replyTo = [&](const std::string& commands) {
        engine.write(commands + "status\n");
        engine.readUntil("\ncall ");
        return engine.readUntil("0 clients connected\n");
    };
    const std::string changed = replyTo(
        "call off\nnetwork 90\njitter 30\n offset  -2000 \nfreeze on\nfault cut\n"
        "also split\nevery 3\nseed 7\nonly client 3\ndrift 1.5\ndrift 100000.1\n"
        "slew 20\nslew -1\nquiet on\n");
    EXPECT_IN(
        "off\nnetwork 90\njitter 30\nslew 20\noffset -2000\ndrift 1.5\nfreeze on\n"
        "every 3\nseed 7\nonly client 3\nquiet on\nmargin 0 ms\nfault cut\n"
        "fault split\nsocket ",
        changed);
    EXPECT_IN("jitter auto\n", replyTo("jitter auto\nfault none\nseed none\n"));
}

TEST_F(Scenario, ANetworkBeginsWithTheFirstClientAndEndsWithACommand) {
    std::ofstream(file) << "time_s,audio_ms,depth_ms,picture_ms\n"
                           "0,170,30,0\n1,260,50,0\n86400,0,0,0\n";
    const Engine engine(socket, {"--network", file});
    const std::string readings = run(LIPSYNCCTL, "timestamps --count 2 --interval 1100" + at);
    EXPECT_TRUE(std::regex_match(readings, std::regex(".*latency 170.0 ms  jitter 30 ms\n"
                                                      ".*latency 260.0 ms  jitter 50 ms\n")))
        << readings;
    engine.write("status\nnetwork 80\njitter 10\n");
    engine.readUntil("\nnetwork " + file);
    engine.readUntil("jitter 10\n");
    EXPECT_IN("latency 100.0 ms  jitter 10 ms", run(LIPSYNCCTL, "timestamps" + at));
}

TEST_F(Scenario, MistakesInFilesAreNamedWithTheirLine) {
    const auto expectError = [&](const std::string& option, const std::string& text,
                                 const std::string& error) {
        std::ofstream(file) << text;
        expectFailure(AZUBSIM, "engine " + option + ' ' + file + at, 1, file + ':' + error);
        expectFailure(AZUBSIM, "engine " + option + ' ' + file + "/x" + at, 1,
                      file + "/x: Not a directory\n");
    };
    for (const auto& [line, error] : std::initializer_list<std::pair<const char*, const char*>>{
             {"2 nonsense", "invalid command: nonsense\n"},
             {"2 network 10001\n3 nonsense",
              "invalid command: network 10001: MS must be a whole number from 0 to 10000\n"},
             {"2 drift", "invalid command: drift: needs an argument: PPM\n"},
             {"2 fault nonsense", "invalid command: fault nonsense: unknown fault 'nonsense'\n"},
             {"1 call off", "'1' is not a time from 1.5 to 86400 seconds\n"},
             {"call off", "'call' is not a time from 1.5 to 86400 seconds\n"},
             {"2", "no command after the time\n"}}) {
        expectError("--scenario", std::string("# Trouble\n\n1.5 drift -0.5\n") + line,
                    std::string("4: ") + error);
    }
    const std::string columns = "time_s,audio_ms,depth_ms,picture_ms";
    for (const std::string line : {"0.1,70,13", "0.1,70,13,", "0.1,70,13,119,1", "0.1,70,13,119,",
                                   "0.1,nan,13,119", "0.1, 70,13,119", ""}) {
        expectError("--network", (columns + "\n0,70,13,119.7\n").append(line + "\n1,2,3,x\n"),
                    "3: '" + line + "' is not four numbers\n");
    }
    for (const auto& [rows, error] : std::initializer_list<std::pair<std::string, std::string>>{
             {columns, " it has no rows\n"},
             {"0,70,13,119.7", "1: the header must be " + columns + '\n'},
             {columns + "\n0,70,13,119\n0,70,13,119", "3: the time must be later"},
             {columns + "\n-1,70,13,119", "2: the time must be later"},
             {columns + "\n1,-1,13,119", "2: latencies and depth must be from 0 to 10000 ms\n"}}) {
        expectError("--network", rows + '\n', error);
    }
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST_F(Scenario, AnEngineThatGoesAwayAgainAtTheMomentOfItsReturnComesBackOnce) {
    std::ofstream(file) << "0 down 0\n0 down 0\n0 down 0\n";
    const Engine engine(socket, {"--scenario", file});
    engine.readUntil("end\n");
    engine.write("down 0\n");
    engine.readUntil("down 0\nazubsim: listening at " + socket + " again\n");
    run(LIPSYNCCTL, "timestamps" + at);
}

TEST_F(Scenario, ThePicturesOfTheExampleGoOnInAllShippedOnes) {
    const std::pair<std::string, const char*> rows[] = {
        {"drifting-clock", "scenario 3 s: drift 2000\n"},
        {"bad-network", "scenario 8 s: freeze on\n"},
        {"restarting-engine", "scenario 3 s: down 2\n"}};
    std::deque<Engine> engines;
    std::deque<Process> pipelines;
    for (const auto& [name, trouble] : rows) {
        const std::string path = socket + name;
        const std::string scenario = "tools/azubsim/scenarios/" + name + ".scenario";
        engines.emplace_back(path, std::vector<std::string>{"--scenario=" + sourceFile(scenario)});
        pipelines.emplace_back("examples/video_pipeline", "--seconds 10 --socket " + path);
    }
    for (const auto& [name, trouble] : rows) {
        const std::string output = pipelines.front().readAll();
        const auto pictures = found(output, "\n *[0-9]+ +([0-9]+) ", {1});
        EXPECT_EQ(pictures.size(), 10U) << output;
        for (const std::string& count : pictures) {
            EXPECT_GE(std::stoi(count), 20) << name << output;
        }
        pipelines.pop_front();
        engines.front().signal(SIGTERM);
        EXPECT_IN(trouble, engines.front().readAll());
        engines.pop_front();
    }
}
