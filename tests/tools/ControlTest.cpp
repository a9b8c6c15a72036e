#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/tools/Engine.h"

using namespace tests;
using Control = EngineTest;

TEST_F(Control, CommandsComeThroughASocketForThisUserOnly) {
    const std::string controlSocket = socket + ".control";
    const Process teller(AZUBSIM, "tell " + socket + " offset -5");
    // It waits for an engine that is starting.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    Engine engine(socket);
    EXPECT_EQ(teller.readAll(), "offset -5\n");
    struct stat status {};
    stat(controlSocket.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_IN("\noffset -5\n", tell("status"));
    expectFailure(AZUBSIM, "tell " + socket + " offset x", 1,
                  "invalid command: offset x: MS must be");
    tell("quit");
    EXPECT_EQ(engine.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(controlSocket));
    expectFailure(AZUBSIM, "tell " + socket + " status", 1, "cannot connect to " + controlSocket);
}

TEST_F(Control, EachModeHasItsCommands) {
    const Engine engine(socket);
    const Engine running = startTap();
    const std::string status = run(AZUBSIM, "tell " + tap + " status");
    EXPECT_IN("\nengine " + socket + '\n', status);
    for (const std::string& text : {status, run(AZUBSIM, "tell " + tap + " help")}) {
        EXPECT_EQ(text.find("jitter"), std::string::npos) << text;
    }
    expectFailure(AZUBSIM, "tell " + tap + " jitter 5", 1, "invalid command: jitter 5");
    run(AZUBSIM, "tell " + tap + " fault error 7");
    run(LIPSYNCCTL, "timestamps" + atTap, 6);
    EXPECT_IN("  fault: error 7  engine: ok   latency ", running.readUntil("\n"));
}

TEST_F(Control, TheEndOfATerminalsInputEndsTheProgram) {
    Process engine(AZUBSIM, "engine" + at, Process::ToTerminal,
                   {"--fault", "error 1002 " + std::string(60, 'x')});
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
    EXPECT_IN("1 exchanges, 1 spoiled, 1 clients, ", engine.readAll());
    EXPECT_EQ(engine.wait(), 0);
}

TEST_F(Control, AReaderThatDoesNotReadStopsNothing) {
    Engine engine(socket, {"--record", file});
    run(LIPSYNCCTL, "ping --count 3000" + at);
    EXPECT_IN("3000 exchanges", tell("status"));
    engine.signal(SIGTERM);
    EXPECT_EQ(engine.wait(), 0);
    EXPECT_IN("#1 ", engine.readAll());
}

TEST_F(Control, WhatCannotBeWrittenIsAFailure) {
    // Standard output is full, or its reader has gone.
    expectFailure(AZUBSIM, "engine" + at, 1, "cannot write to standard output: No space");
    {
        Engine engine(socket);
        engine.stopReading();
        run(LIPSYNCCTL, "timestamps" + at);
        EXPECT_EQ(engine.wait(), 1);
    }
    std::ofstream(file) << "precious";
    expectFailure(AZUBSIM, "engine --record " + file + at, 1,
                  "cannot record to " + file + ": File exists\n");
    EXPECT_FALSE(std::filesystem::exists(socket));
    // The disk is full after the header of a recording.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small{200, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    Engine engine(socket, {"--record", file + '2'});
    setrlimit(RLIMIT_FSIZE, &usual);
    run(LIPSYNCCTL, "ping --count 2" + at);
    engine.signal(SIGTERM);
    // It says so once.
    EXPECT_EQ(found(engine.readAll(), "File too large; the recording ends here", {0}).size(), 1U);
    EXPECT_EQ(engine.wait(), 1);
}
