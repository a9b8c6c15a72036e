#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>

#include "tests/support/Files.h"
#include "tests/tools/Engine.h"

using testing::IsSubstring;
using tests::Engine;
using tests::Process;
using velta::zub::comms::Link;

namespace {

class Azubsim : public tests::EngineTest {
protected:
    // Expects this outcome of `lipsyncctl timestamps`, as docs/faults.md writes it.
    static void expectReading(const std::string& expected, const std::string& path) {
        const Process reader({LIPSYNCCTL, "timestamps", "--timeout", "300", "--socket", path});
        const std::string output = reader.readAll();
        if (expected == "blocks") {
            EXPECT_PRED_FORMAT2(IsSubstring, "lipsyncctl: no answer within 300 ms", output);
            return;
        }
        // Compared up to the "...": the rest depends on where the document is cut.
        const std::string failure = (expected + '\n').substr(0, expected.find("..."));
        EXPECT_PRED_FORMAT2(
            IsSubstring, expected == "Success" ? "  latency " : "lipsyncctl: " + failure, output);
    }
};

} // namespace

TEST_F(Azubsim, EndsCleanlyOnSignals) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        Engine engine(socket);
        engine.signal(number);
        EXPECT_EQ(engine.wait(), 0);
        EXPECT_FALSE(std::filesystem::exists(socket));
    }
}

TEST_F(Azubsim, ReplacesOnlyAStaleSocket) {
    const std::string cannot = "azubsim: cannot listen at " + socket;
    { const Engine killed(socket); }
    {
        const Engine live(socket);
        expectFailure(AZUBSIM, "engine" + at, 1,
                      cannot + ": an engine is already listening there\n");
        run(LIPSYNCCTL, "timestamps" + at);
    }
    std::filesystem::remove(socket);
    std::ofstream(socket) << "precious";
    expectFailure(AZUBSIM, "engine" + at, 1, cannot + ": it exists and is not a socket\n");
    EXPECT_EQ(std::filesystem::file_size(socket), 8U);
}

TEST_F(Azubsim, RefusesBadOptions) {
    const std::string file = directory.path() + "/file";
    std::ofstream(file) << "{}\n";
    const std::string cannot = "azubsim: cannot listen at ";
    const std::string longPath(200, 'x');
    expectFailure(AZUBSIM, "", 2, "azubsim: a command is required (see azubsim --help)\n");
    expectFailure(AZUBSIM, "engine", 2,
                  "azubsim: --socket is required (see azubsim engine --help)");
    expectFailure(AZUBSIM, "engine b a" + at, 2, "azubsim: unexpected argument 'b'");
    expectFailure(
        AZUBSIM, "engine --fault cut --every abc" + at, 2,
        "azubsim: invalid command: every abc: N must be a whole number from 1 to 1000000000");
    expectFailure(AZUBSIM, "engine --fault nonsense" + at, 2,
                  "azubsim: invalid command: fault nonsense: unknown fault 'nonsense'");
    expectFailure(AZUBSIM, "engine --fault delay" + at, 2,
                  "azubsim: invalid command: fault delay: fault 'delay' needs an argument: MS [SP");
    expectFailure(
        AZUBSIM, "engine --only Nothing" + at, 2,
        "azubsim: invalid command: only Nothing: 'Nothing' is not one of GetAudioTs, SetAudioDe");
    // What would be ignored is refused.
    for (const char* const ignored :
         {"engine --timed", "replay x --fault cut", "tap x --no-call"}) {
        expectFailure(AZUBSIM, ignored + at, 2, "azubsim: ");
    }
    expectFailure(AZUBSIM, "engine --socket " + longPath, 1,
                  cannot + longPath + ": a socket path must have 1 to 107 bytes, not 200\n");
    expectFailure(AZUBSIM, "engine --socket " + file + "/x", 1,
                  cannot + file + "/x: Not a directory\n");
    expectFailure(AZUBSIM, "replay " + file + at, 1,
                  "azubsim: cannot read " + file + ": line 1: it is not the header of a recording");
    expectFailure(AZUBSIM, "--help", 1, "azubsim: cannot write to standard output: No space left");
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST_F(Azubsim, HangsUpOnABadRequest) {
    const Engine engine(socket);
    for (const std::string& request :
         {std::string("<AZUB version='0.2.0'><GetAudioTs_Request /></AZUB>\n\n"),
          std::string(70000, 'x')}) {
        const auto link = connectTo(socket);
        link->write(request.data(), request.size());
        char byte;
        std::size_t bytesRead = 0;
        EXPECT_EQ(link->read(&byte, 1, bytesRead).code, Link::ResultCode::ClosedByDistant);
    }
    EXPECT_PRED_FORMAT2(
        IsSubstring, "bad request       no answer, closed \"version is '0.2.0', expected '0.1.0'\"",
        engine.readUntil("\n"));
}

TEST_F(Azubsim, FaultsGiveTheResultsThatAreDocumented) {
    std::ifstream document(tests::sourceFile("docs/faults.md"));
    const std::regex row("\\| `([^`]+)` \\| `([^`]+)` \\|.*");
    std::smatch cells;
    std::set<std::string> documented;
    for (std::string line; std::getline(document, line);) {
        if (!std::regex_match(line, cells, row)) {
            continue;
        }
        const std::string fault = cells[1];
        const std::string expected = cells[2];
        SCOPED_TRACE(line);
        documented.insert(fault.substr(0, fault.find(' ')));
        {
            const Engine engine(socket, {"--fault", fault});
            expectReading(expected, socket);
        }
        // The same if a tap spoils the answers of a faultless engine.
        const Engine engine(socket);
        const Engine tap(directory.path() + "/tap", {"--fault", fault}, {"tap", socket});
        expectReading(expected, directory.path() + "/tap");
    }
    const std::string help = run(AZUBSIM, "engine --help");
    const std::size_t start = help.find("Faults:\n");
    const std::string faults = help.substr(start);
    const std::regex name("\n  ([a-z-]+) ");
    std::set<std::string> listed;
    for (std::sregex_iterator i(faults.begin(), faults.end(), name); i != std::sregex_iterator();
         ++i) {
        listed.insert((*i)[1]);
    }
    EXPECT_EQ(documented, listed);
}

TEST_F(Azubsim, DelaysAnAnswerAndSendsAnAnswerTwice) {
    const Engine engine(socket, {"--fault", "delay 100", "--fault", "double"});
    const std::string ping = run(LIPSYNCCTL, "ping --count 1 --format csv" + at);
    EXPECT_TRUE(std::regex_match(ping, std::regex(".*\n1,[0-9]{3,}[.].*\n"))) << ping;
    const std::string readings = run(LIPSYNCCTL, "timestamps --watch --count 2 --interval 50" + at);
    EXPECT_TRUE(std::regex_match(readings, std::regex("(.*)\n\\1\n"))) << readings;
}

TEST_F(Azubsim, SpoilsSomeAnswersRepeatably) {
    const auto outcomes = [&](std::vector<std::string> options) {
        options.insert(options.end(), {"--fault", "error 7", "--fault", "error 8"});
        const Engine engine(socket, options);
        const std::string text = run(LIPSYNCCTL, "timestamps --watch --count 8 --interval 1" + at);
        const std::string failures = std::regex_replace(text, std::regex("captured.*\n"), ".");
        return std::regex_replace(failures, std::regex("lipsyncctl:.*Code (.)\\)\\}\n"), "$1");
    };
    EXPECT_EQ(outcomes({"--every", "3"}), "..7..8..7..");
    const std::string random = outcomes({"--every", "2", "--seed", "5"});
    EXPECT_EQ(outcomes({"--every", "2", "--seed", "5"}), random);
    EXPECT_NE(outcomes({"--every", "2", "--seed", "6"}), random);
}

TEST_F(Azubsim, AFaultForOneClientDoesNotDelayAnother) {
    const std::string engineOfTap = directory.path() + "/engine-of-tap";
    const Engine faultless(engineOfTap);
    for (const std::vector<std::string>& mode :
         {std::vector<std::string>{"engine"}, {"tap", engineOfTap}}) {
        const Engine engine(
            socket, {"--fault", "delay 60000", "--fault", "flood", "--fault", "split"}, mode);
        const Process slow({LIPSYNCCTL, "timestamps", "--socket", socket});
        engine.readUntil("#1 ");
        const Process flooded({LIPSYNCCTL, "timestamps", "--socket", socket});
        engine.readUntil("#2 ");
        // This client stops reading the flood.
        flooded.signal(SIGSTOP);
        run(LIPSYNCCTL, "timestamps" + at);
    }
}

TEST_F(Azubsim, FaultsAimAtACommandOrAClient) {
    const Engine engine(socket, {"--fault", "error 7", "--only", "SetAudioDelay"});
    const auto tell = [&](const std::string& command) {
        return run(AZUBSIM, "tell " + socket + ' ' + command);
    };
    run(LIPSYNCCTL, "timestamps" + at);
    run(LIPSYNCCTL, "margin set 40" + at, 6);
    tell("only client 4");
    run(LIPSYNCCTL, "margin set 40" + at);
    run(LIPSYNCCTL, "timestamps" + at, 6);
    tell("only all");
    run(LIPSYNCCTL, "timestamps" + at, 6);
    tell("only client 6");
    run(LIPSYNCCTL, "timestamps" + at, 6);
    run(LIPSYNCCTL, "timestamps" + at);
    EXPECT_PRED_FORMAT2(IsSubstring, "7 exchanges, 4 spoiled, 7 clients", tell("status"));
}

TEST_F(Azubsim, ReplaysWhatItRecordedByCommand) {
    const std::string file = directory.path() + "/record";
    std::string reading;
    {
        const Engine recorder(socket,
                              {"--record", file, "--fault", "close-before", "--every", "3"});
        run(LIPSYNCCTL, "margin set 40" + at);
        reading = run(LIPSYNCCTL, "timestamps" + at);
        run(LIPSYNCCTL, "timestamps" + at, 4);
        recorder.signal(SIGTERM);
        // The recording shows the lines that were printed.
        const std::string lines = recorder.readAll();
        EXPECT_EQ(run(AZUBSIM, "show " + file) + "azubsim: ",
                  lines.substr(0, lines.find("azubsim: ") + 9));
    }
    {
        const Engine replay(socket, {}, {"replay", file});
        EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
        const std::string closed = run(LIPSYNCCTL, "timestamps" + at, 4);
        EXPECT_PRED_FORMAT2(IsSubstring, "{Closed by distant", closed);
        // There is no other answer.
        EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at, 4), closed);
        run(LIPSYNCCTL, "margin set 100" + at);
    }
    const Engine replay(socket, {"--in-order", "--repeat"}, {"replay", file});
    for (int i = 0; i < 2; ++i) {
        run(LIPSYNCCTL, "timestamps" + at, 4);
        EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
        run(LIPSYNCCTL, "timestamps" + at, 4);
    }
}
