#include <filesystem>
#include <fstream>
#include <memory>

#include "tests/support/Files.h"
#include "tests/tools/Engine.h"

using Scenario = tests::EngineTest;

namespace {

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

TEST_F(Scenario, StatusShowsWhatCommandsChanged) {
    const tests::Engine engine(socket);
    const auto replyTo = [&](const std::string& commands) {
        engine.write(commands + "status\n");
        engine.readUntil("\ncall ");
        return engine.readUntil("0 clients connected\n");
    };
    const std::string changed = replyTo(
        "call off\nnetwork 90\njitter 30\n offset  -2000 \nfreeze on\nfault cut\n"
        "also split\nevery 3\nseed 7\nonly client 3\ndrift 1.5\ndrift 100000.1\n"
        "slew 20\nslew -1\nquiet on\n");
    EXPECT_PRED_FORMAT2(testing::IsSubstring,
                        "off\nnetwork 90\njitter 30\nslew 20\noffset -2000\ndrift 1.5\nfreeze on\n"
                        "every 3\nseed 7\nonly client 3\nquiet on\nmargin 0 ms\nfault cut\n"
                        "fault split\nsocket ",
                        changed);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "jitter auto\n",
                        replyTo("jitter auto\nfault none\nseed none\n"));
}

TEST_F(Scenario, ANetworkBeginsWithTheFirstClientAndEndsWithACommand) {
    const std::string file = directory.path() + "/network.csv";
    std::ofstream(file) << "time_s,audio_ms,depth_ms,picture_ms\n"
                           "0,170,30,0\n1,260,50,0\n86400,0,0,0\n";
    const tests::Engine engine(socket, {"--network", file});
    const std::string readings = run(LIPSYNCCTL, "timestamps --count 2 --interval 1100" + at);
    EXPECT_TRUE(std::regex_match(readings, std::regex(".*latency 170.0 ms  jitter 30 ms\n"
                                                      ".*latency 260.0 ms  jitter 50 ms\n")))
        << readings;
    engine.write("status\nnetwork 80\njitter 10\n");
    engine.readUntil("\nnetwork " + file);
    engine.readUntil("jitter 10\n");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "latency 100.0 ms  jitter 10 ms",
                        run(LIPSYNCCTL, "timestamps" + at));
}

TEST_F(Scenario, MistakesInFilesAreNamedWithTheirLine) {
    const std::string file = directory.path() + "/trouble";
    const auto expectError = [&](const std::string& option, const std::string& text,
                                 const std::string& error) {
        std::ofstream(file) << text;
        expectFailure(AZUBSIM, "engine " + option + ' ' + file + at, 1,
                      "azubsim: " + file + ':' + error);
        expectFailure(AZUBSIM, "engine " + option + ' ' + file + "/x" + at, 1,
                      "azubsim: " + file + "/x: Not a directory\n");
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
    const std::string columns = "time_s,audio_ms,depth_ms,picture_ms\n";
    const std::string rows = columns + "0,70,13,119.7\n";
    expectError("--network", columns, " it has no rows\n");
    expectError("--network", "0,70,13,119.7\n",
                "1: the header must be time_s,audio_ms,depth_ms,picture_ms\n");
    for (const std::string line : {"0.1,70,13", "0.1,70,13,", "0.1,70,13,119,1", "0.1,70,13,119,",
                                   "0.1,nan,13,119", "0.1, 70,13,119", ""}) {
        expectError("--network", rows + line + "\n1,2,3,x\n",
                    "3: '" + line + "' is not four numbers\n");
    }
    expectError("--network", rows + "0,70,13,119\n", "3: the time must be later");
    expectError("--network", columns + "-1,70,13,119\n", "2: the time must be later");
    expectError("--network", rows + "1,-1,13,119\n",
                "3: latencies and depth must be from 0 to 10000 ms\n");
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST_F(Scenario, AnEngineThatGoesAwayAgainAtTheMomentOfItsReturnComesBackOnce) {
    const std::string file = directory.path() + "/again.scenario";
    std::ofstream(file) << "0 down 0\n0 down 0\n0 down 0\n";
    const tests::Engine engine(socket, {"--scenario", file});
    engine.readUntil("end\n");
    engine.write("down 0\n");
    engine.readUntil("down 0\nazubsim: listening at " + socket + " again\n");
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
    play("drifting-clock", "3 s: drift 2000\n");
    play("bad-network", "8 s: freeze on\n");
    play("restarting-engine", "3 s: down 2\n");
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
