#include <filesystem>
#include <fstream>
#include <set>
#include <tuple>

#include "tests/support/Files.h"
#include "tests/tools/Engine.h"

using namespace tests;

namespace {

// Expects this outcome of `lipsyncctl timestamps`, as docs/faults.md writes it.
void expectReading(const std::string& expected, const std::string& path) {
    // Compared up to the "...": the rest depends on where the document is cut.
    std::string text = "lipsyncctl: " + (expected + '\n').substr(0, expected.find("..."));
    if (expected == "Success") {
        text = "  latency ";
    } else if (expected == "blocks") {
        text = "lipsyncctl: no answer within 300 ms";
    }
    const Process reader(LIPSYNCCTL, "timestamps --timeout 300 --socket " + path);
    EXPECT_IN(text, reader.readAll());
}

using Azubsim = EngineTest;

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
    { const Engine killed(socket); }
    const Engine live(socket);
    expectFailure(AZUBSIM, "engine" + at, 1,
                  "cannot listen at " + socket + ": an engine is already listening there\n");
    run(LIPSYNCCTL, "timestamps" + at);
    std::ofstream(file) << "precious";
    expectFailure(AZUBSIM, "engine --socket " + file, 1,
                  "cannot listen at " + file + ": it exists and is not a socket\n");
    EXPECT_EQ(std::filesystem::file_size(file), 8U);
}

TEST_F(Azubsim, RefusesBadOptions) {
    std::ofstream(file) << "{}\n";
    const std::string longPath(200, 'x');
    const std::tuple<std::string, int, std::string> rows[] = {
        {"", 2, "a command is required (see azubsim --help)\n"},
        {"engine", 2, "--socket is required (see azubsim engine --help)"},
        {"engine b a" + at, 2, "unexpected argument 'b'"},
        {"engine --fault cut --every abc" + at, 2,
         "invalid command: every abc: N must be a whole number from 1 to 1000000000"},
        {"engine --fault nonsense" + at, 2,
         "invalid command: fault nonsense: unknown fault 'nonsense'"},
        {"engine --fault delay" + at, 2,
         "invalid command: fault delay: fault 'delay' needs an argument: MS [SP"},
        {"engine --only Nothing" + at, 2,
         "invalid command: only Nothing: 'Nothing' is not one of GetAudioTs, SetAudioDe"},
        // What would be ignored is refused.
        {"engine --timed" + at, 2, ""},
        {"replay x --fault cut" + at, 2, ""},
        {"tap x --no-call" + at, 2, ""},
        {"engine --socket " + longPath, 1,
         "cannot listen at " + longPath + ": a socket path must have 1 to 107 bytes, not 200\n"},
        {"engine --socket " + file + "/x", 1, "cannot listen at " + file + "/x: Not a directory\n"},
        {"replay " + file + at, 1,
         "cannot read " + file + ": line 1: it is not the header of a recording"},
        {"--help", 1, "cannot write to standard output: No space left"},
    };
    for (const auto& [arguments, status, error] : rows) {
        expectFailure(AZUBSIM, arguments, status, error);
    }
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST_F(Azubsim, HangsUpOnABadRequest) {
    const Engine engine(socket);
    for (const std::string& request :
         {std::string("<AZUB version='0.2.0'><GetAudioTs_Request /></AZUB>\n\n"),
          std::string(70000, 'x')}) {
        const auto link = connectTo(socket);
        write(*link, request);
        EXPECT_EQ(read(*link, 1), "");
    }
    EXPECT_IN("bad request       no answer, closed \"version is '0.2.0', expected '0.1.0'\"",
              engine.readUntil("\n"));
}

TEST_F(Azubsim, FaultsGiveTheResultsThatAreDocumented) {
    std::ifstream document(sourceFile("docs/faults.md"));
    const std::string page(std::istreambuf_iterator<char>(document), {});
    const auto cells = found(page, "\n\\| `([^`]+)` \\| `([^`]+)` \\|", {1, 2});
    std::set<std::string> documented;
    for (std::size_t i = 0; i < cells.size(); i += 2) {
        SCOPED_TRACE(cells[i]);
        documented.insert(cells[i].substr(0, cells[i].find(' ')));
        {
            const Engine engine(socket, {"--fault", cells[i]});
            expectReading(cells[i + 1], socket);
        }
        // The same if a tap spoils the answers of a faultless engine.
        const Engine engine(socket);
        const Engine running = startTap({"--fault", cells[i]});
        expectReading(cells[i + 1], tap);
    }
    const std::string help = run(AZUBSIM, "engine --help");
    const auto listed = found(help.substr(help.find("Faults:\n")), "\n  ([a-z-]+) ", {1});
    EXPECT_EQ(documented, std::set<std::string>(listed.begin(), listed.end()));
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
        return found(text, "captured|Code (.)\\)\\}\n", {1});
    };
    EXPECT_EQ(outcomes({"--every", "3"}),
              (std::vector<std::string>{"", "", "7", "", "", "8", "", "", "7", "", ""}));
    const auto random = outcomes({"--every", "2", "--seed", "5"});
    EXPECT_EQ(outcomes({"--every", "2", "--seed", "5"}), random);
    EXPECT_NE(outcomes({"--every", "2", "--seed", "6"}), random);
}

TEST_F(Azubsim, AFaultForOneClientDoesNotDelayAnother) {
    const Engine faultless(tap);
    for (const std::string& mode : {std::string("engine"), "tap " + tap}) {
        const Engine engine(
            socket, {"--fault", "delay 60000", "--fault", "flood", "--fault", "split"}, mode);
        const Process slow(LIPSYNCCTL, "timestamps" + at);
        engine.readUntil("#1 ");
        const Process flooded(LIPSYNCCTL, "timestamps" + at);
        engine.readUntil("#2 ");
        // This client stops reading the flood.
        flooded.signal(SIGSTOP);
        run(LIPSYNCCTL, "timestamps" + at);
    }
}

TEST_F(Azubsim, FaultsAimAtACommandOrAClient) {
    const Engine engine(socket, {"--fault", "error 7", "--only", "SetAudioDelay"});
    const auto expect = [&](int ofReading, int ofMargin) {
        run(LIPSYNCCTL, "timestamps" + at, ofReading);
        run(LIPSYNCCTL, "margin set 40" + at, ofMargin);
    };
    expect(0, 6);
    tell("only client 3");
    expect(6, 0);
    tell("only all");
    expect(6, 6);
    tell("only client 8");
    expect(0, 6);
    EXPECT_IN("8 exchanges, 5 spoiled, 8 clients", tell("status"));
}

TEST_F(Azubsim, ReplaysWhatItRecordedByCommand) {
    std::string reading;
    {
        const Engine recorder(socket, {"--record", file, "--fault", "close-before", "--every=3"});
        run(LIPSYNCCTL, "margin set 40" + at);
        reading = run(LIPSYNCCTL, "timestamps" + at);
        run(LIPSYNCCTL, "timestamps" + at, 4);
        recorder.signal(SIGTERM);
        // The recording shows the lines that were printed.
        const std::string lines = recorder.readAll();
        EXPECT_EQ(run(AZUBSIM, "show " + file), lines.substr(0, lines.find("azubsim: ")));
    }
    {
        const Engine replay(socket, {}, "replay " + file);
        EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
        const std::string closed = run(LIPSYNCCTL, "timestamps" + at, 4);
        EXPECT_IN("{Closed by distant", closed);
        // There is no other answer.
        EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at, 4), closed);
        run(LIPSYNCCTL, "margin set 100" + at);
    }
    {
        const Engine replay(socket, {"--in-order", "--repeat"}, "replay " + file);
        for (int i = 0; i < 2; ++i) {
            run(LIPSYNCCTL, "timestamps" + at, 4);
            EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
            run(LIPSYNCCTL, "timestamps" + at, 4);
        }
    }
    // The last exchange is cut short.
    std::filesystem::resize_file(file, std::filesystem::file_size(file) - 1);
    const std::string warning = "is unfinished and is left out\n";
    EXPECT_EQ(found(run(AZUBSIM, "show " + file), "#", {0}).size(), 2U);
    EXPECT_IN(warning, run(AZUBSIM, "show " + file));
    EXPECT_IN(warning, run(AZUBSIM, "trace " + file));
    const Process replay(AZUBSIM, "replay " + file + at);
    EXPECT_IN(warning, replay.readUntil("listening"));
    EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
}
