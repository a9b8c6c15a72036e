#include <fstream>

#include "tests/tools/Engine.h"

using Console = tests::EngineTest;
using tests::Process;

TEST_F(Console, EditsALineAndPrintsAboveIt) {
    const std::string file = directory.path() + "/file.scenario";
    std::ofstream(file) << "2 every 5\n";
    Process engine({AZUBSIM, "--socket", socket, "--scenario", file}, Process::ToTerminal);
    if (!engine.hasStarted()) {
        GTEST_SKIP() << "no pseudo-terminal can be opened";
    }
    engine.readUntil("listening at " + socket);
    engine.readUntil("azubsim");
    if (engine.readUntil(" ") != "> ") {
        GTEST_SKIP() << "built without line editing";
    }
    engine.write("netx");
    engine.readUntil("netx");
    // What was typed is erased, and drawn again below the new line.
    const std::string aboveIt = engine.readUntil("every 5 -> every 5");
    EXPECT_EQ(aboveIt, "\r\x1b[Jscenario 2 s: every 5 -> every 5");
    engine.readUntil("azubsim> netx");
    engine.write("\bwork 70\r");
    engine.readUntil("network 70 ms\r\n");
    const std::string up = "\x1b[A";
    engine.write(up + "1\r");
    engine.readUntil("network 701 ms\r\n");
    // The end of the input gives the terminal back but does not end the program.
    engine.write("\x04");
    engine.readUntil("commands are no longer read");
    engine.write("\x03");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "^C", engine.readAll());
    EXPECT_EQ(engine.wait(), 0);
}
