#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

#include "comms/Client.h"
#include "tests/support/Files.h"
#include "tests/tools/Engine.h"

using testing::IsSubstring;
using tests::Engine;
using tests::Process;
using velta::zub::comms::Client;
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
        expectFailure(AZUBSIM, at, 1, cannot + ": an engine is already listening there\n");
        run(LIPSYNCCTL, "timestamps" + at);
    }
    std::filesystem::remove(socket);
    std::ofstream(socket) << "precious";
    expectFailure(AZUBSIM, at, 1, cannot + ": it exists and is not a socket\n");
    EXPECT_EQ(std::filesystem::file_size(socket), 8U);
}

TEST_F(Azubsim, RefusesBadOptions) {
    const std::string file = directory.path() + "/file";
    std::ofstream(file) << "{}\n";
    const std::string cannot = "azubsim: cannot listen at ";
    const std::string longPath(200, 'x');
    expectFailure(AZUBSIM, "", 2, "azubsim: --socket is required");
    expectFailure(AZUBSIM, "--nonsense" + at, 2, "azubsim: The following argument");
    expectFailure(AZUBSIM, "--fault nonsense" + at, 2,
                  "azubsim: --fault: unknown fault 'nonsense'");
    expectFailure(AZUBSIM, "--fault delay" + at, 2,
                  "azubsim: --fault: fault 'delay' needs an argument: MS [SPREAD] (see");
    // What would be ignored is refused.
    for (const char* const ignored :
         {"--every 2", "--timed", "--force", "--replay x --fault cut", "--replay x --no-call",
          "--forward x --no-call", "--forward x --replay y", "--forward x --network y",
          "--replay x --network y"}) {
        expectFailure(AZUBSIM, ignored + at, 2, "azubsim: --");
    }
    expectFailure(AZUBSIM, "--socket " + longPath, 1,
                  cannot + longPath + ": a socket path must have 1 to 107 bytes\n");
    expectFailure(AZUBSIM, "--socket " + file + "/x", 1, cannot + file + "/x: Not a directory\n");
    expectFailure(AZUBSIM, "--replay " + file + at, 1,
                  "azubsim: cannot replay " + file + ": line 1 is not the header of a recording\n");
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST_F(Azubsim, HangsUpOnABadRequest) {
    const Engine engine(socket);
    Link* link = nullptr;
    Client::connectUnixServer(socket.c_str(), link);
    const std::unique_ptr<Link> owner(link);
    const std::string request = "<AZUB version='0.2.0'><GetAudioTs_Request /></AZUB>\n\n";
    link->write(request.data(), request.size());
    char byte;
    std::size_t bytesRead = 0;
    EXPECT_EQ(link->read(&byte, 1, bytesRead).code, Link::ResultCode::ClosedByDistant);
    EXPECT_EQ(engine.readUntil("\n"),
              "azubsim: bad request, connection closed: version is '0.2.0', expected '0.1.0'\n");
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
        const Engine tap(directory.path() + "/tap", {"--forward", socket, "--fault", fault});
        expectReading(expected, directory.path() + "/tap");
    }
    const std::string help = run(AZUBSIM, "--help");
    const std::size_t start = help.find("Faults:\n");
    const std::string faults = help.substr(start, help.find("\n\n", start) - start + 1);
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

TEST_F(Azubsim, ObeysCommandsOnStandardInput) {
    const Engine engine(socket);
    const auto seenAfter = [&](const std::string& line, int status) {
        engine.write(line + "\nstatus\n");
        engine.readUntil("verbose off\n");
        return run(LIPSYNCCTL, "timestamps" + at, status);
    };
    EXPECT_PRED_FORMAT2(IsSubstring, "(Code 1007)", seenAfter("call off", 5));
    EXPECT_PRED_FORMAT2(IsSubstring, "latency", seenAfter("call on", 0));
    EXPECT_PRED_FORMAT2(IsSubstring, "(Code 7)", seenAfter("fault error 7", 6));
    EXPECT_PRED_FORMAT2(IsSubstring, "(Code 7)", seenAfter("fault nonsense", 6));
    EXPECT_PRED_FORMAT2(IsSubstring, "latency", seenAfter("fault none", 0));
    engine.write("nonsense\nquit\n");
    EXPECT_EQ(engine.readAll(), "invalid command: nonsense (try help)\nquit\n");
}

TEST_F(Azubsim, AFaultForOneClientDoesNotDelayAnother) {
    const std::string engineOfTap = directory.path() + "/engine-of-tap";
    const Engine faultless(engineOfTap);
    for (const std::vector<std::string>& source :
         {std::vector<std::string>(), {"--forward", engineOfTap}}) {
        std::vector<std::string> options{"--verbose", "--fault", "delay 60000", "--fault",
                                         "flood",     "--fault", "split"};
        options.insert(options.end(), source.begin(), source.end());
        const Engine engine(socket, options);
        const Process slow({LIPSYNCCTL, "timestamps", "--socket", socket});
        engine.readUntil("client 1 >");
        const Process flooded({LIPSYNCCTL, "timestamps", "--socket", socket});
        engine.readUntil("client 2 >");
        // This client stops reading the flood.
        flooded.signal(SIGSTOP);
        run(LIPSYNCCTL, "timestamps" + at);
    }
}

TEST_F(Azubsim, ReplaysWhatItRecorded) {
    const std::string file = directory.path() + "/record";
    std::string reading;
    {
        const Engine recorder(socket,
                              {"--record", file, "--fault", "close-before", "--every", "2"});
        reading = run(LIPSYNCCTL, "timestamps" + at);
        run(LIPSYNCCTL, "timestamps" + at, 4);
    }
    const Engine replay(socket, {"--replay", file});
    EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at), reading);
    const std::string closed = run(LIPSYNCCTL, "timestamps" + at, 4);
    EXPECT_PRED_FORMAT2(IsSubstring, "{Closed by distant", closed);
    // The recording has ended.
    EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at, 4), closed);
    std::ifstream recorded(file);
    std::string exchanges;
    std::getline(recorded, exchanges, '\0');
    const std::regex expected(
        ".*\"version\":2.*\n.*\"request\":.*GetAudioTs_Request.*\"fault\":\"\".*\n"
        ".*\"fault\":\"close-before\".*\n");
    EXPECT_TRUE(std::regex_match(exchanges, expected)) << exchanges;
}
