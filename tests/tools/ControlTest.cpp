#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/tools/Engine.h"

using testing::IsSubstring;
using tests::Engine;
using tests::Process;

namespace {

class Control : public tests::EngineTest {
protected:
    const std::string tell = "tell " + socket + ' ';
    const std::string controlSocket = socket + ".control";
};

} // namespace

TEST_F(Control, CommandsComeThroughASocketForThisUserOnly) {
    const Process teller({AZUBSIM, "tell", socket, "offset", "-5"});
    // It waits for an engine that is starting.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    Engine engine(socket);
    EXPECT_EQ(teller.readAll(), "offset -5\n");
    struct stat status {};
    stat(controlSocket.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_PRED_FORMAT2(IsSubstring, "\noffset -5\n", run(AZUBSIM, tell + "status"));
    expectFailure(AZUBSIM, tell + "offset x", 1, "azubsim: invalid command: offset x: MS must be");
    run(AZUBSIM, tell + "quit");
    EXPECT_EQ(engine.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(controlSocket));
    expectFailure(AZUBSIM, tell + "status", 1, "azubsim: cannot connect to " + controlSocket);
}

TEST_F(Control, EachModeHasItsCommands) {
    const Engine engine(socket);
    const std::string path = directory.path() + "/tap";
    const Engine tap(path, {}, {"tap", socket});
    const std::string status = run(AZUBSIM, "tell " + path + " status");
    EXPECT_PRED_FORMAT2(IsSubstring, "\nengine " + socket + '\n', status);
    EXPECT_EQ(status.find("jitter"), std::string::npos);
    expectFailure(AZUBSIM, "tell " + path + " jitter 5", 1, "azubsim: invalid command: jitter 5");
    EXPECT_EQ(run(AZUBSIM, "tell " + path + " help").find("jitter"), std::string::npos);
    run(AZUBSIM, "tell " + path + " fault cut");
}

TEST_F(Control, TheEndOfATerminalsInputEndsTheProgram) {
    Process engine(
        {AZUBSIM, "engine", "--socket", socket, "--fault", "error 1002 " + std::string(60, 'x')},
        Process::ToTerminal);
    if (!engine.hasStarted()) {
        GTEST_SKIP() << "no pseudo-terminal can be opened";
    }
    engine.readUntil("listening at");
    run(LIPSYNCCTL, "timestamps" + at, 6);
    // Lines are broken at 80 columns, perhaps also that with the path of the socket.
    std::istringstream lines(engine.readUntil("latency"));
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 81U) << line;
    }
    engine.write("jitter  5\n");
    engine.readUntil("jitter 5\r\n");
    engine.write("\x04");
    EXPECT_PRED_FORMAT2(IsSubstring, "1 exchanges, 1 spoiled, 1 clients, ", engine.readAll());
    EXPECT_EQ(engine.wait(), 0);
}

TEST_F(Control, AReaderThatDoesNotReadStopsNothing) {
    Engine engine(socket, {"--record", directory.path() + "/record"});
    run(LIPSYNCCTL, "ping --count 3000" + at);
    EXPECT_PRED_FORMAT2(IsSubstring, "3000 exchanges", run(AZUBSIM, tell + "status"));
    engine.signal(SIGTERM);
    EXPECT_EQ(engine.wait(), 0);
    EXPECT_PRED_FORMAT2(IsSubstring, "#1 ", engine.readAll());
}

TEST_F(Control, WhatCannotBeWrittenIsAFailure) {
    // Standard output is full, or its reader has gone.
    expectFailure(AZUBSIM, "engine" + at, 1, "azubsim: cannot write to standard output: No space");
    {
        Engine engine(socket);
        engine.stopReading();
        run(LIPSYNCCTL, "timestamps" + at);
        EXPECT_EQ(engine.wait(), 1);
    }
    expectFailure(AZUBSIM, "engine --record /dev/full" + at, 1,
                  "azubsim: cannot record to /dev/full: File exists\n");
    EXPECT_FALSE(std::filesystem::exists(socket));
}
