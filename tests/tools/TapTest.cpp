#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <memory>
#include <regex>
#include <thread>
#include <vector>

#include "tests/support/Frames.h"
#include "tests/support/Listener.h"
#include "tests/tools/Engine.h"

using testing::IsSubstring;
using tests::Engine;
using tests::Listener;
using velta::zub::comms::Link;

namespace {

class Tap : public tests::EngineTest {
protected:
    static void write(Link& link, const std::string& bytes) {
        EXPECT_TRUE(link.write(bytes.data(), bytes.size()).isSuccess());
    }

    // Reads this many bytes, or fewer if the connection ends.
    static std::string read(Link& link, std::size_t size) {
        std::string bytes;
        char chunk[512];
        std::size_t count = 0;
        while (bytes.size() < size &&
               link.read(chunk, std::min(size - bytes.size(), sizeof(chunk)), count).isSuccess()) {
            bytes.append(chunk, count);
        }
        return bytes;
    }

    Engine startTap(const std::vector<std::string>& options = {}) const {
        return Engine(tap, options, {"tap", socket});
    }

    // Waits until this text is in the tap's status.
    void expectStatus(const std::string& text) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        std::string status;
        do {
            status = run(AZUBSIM, "tell " + tap + " status");
        } while (status.find(text) == std::string::npos &&
                 std::chrono::steady_clock::now() < deadline);
        EXPECT_PRED_FORMAT2(IsSubstring, text, status);
    }

    const std::string tap = directory.path() + "/tap";
    const std::string atTap = " --socket " + tap;
};

} // namespace

TEST_F(Tap, PassesAllBytesUnchanged) {
    const std::string bytes("no XML\0\n\n\n\xff<AZUB", 16);
    const Listener listener(socket);
    const Engine running = startTap();
    auto client = connectTo(tap);
    Link engine(listener.accept());
    write(*client, bytes + bytes);
    EXPECT_EQ(read(engine, 32), bytes + bytes);
    write(engine, bytes);
    EXPECT_EQ(read(*client, 16), bytes);
    // Also an unfinished message before the end of the connection.
    write(*client, bytes);
    client.reset();
    EXPECT_EQ(read(engine, 100), bytes);
    client = connectTo(tap);
    {
        Link closing(listener.accept());
        write(closing, bytes);
    }
    EXPECT_EQ(read(*client, 100), bytes);
}

TEST_F(Tap, PrintsALinePerExchange) {
    const Engine engine(socket);
    const Engine running = startTap({"--fault", "error 7", "--every", "3"});
    run(LIPSYNCCTL, "timestamps" + atTap);
    run(LIPSYNCCTL, "margin set 40" + atTap);
    run(LIPSYNCCTL, "timestamps" + atTap, 6);
    std::string lines = running.readUntil("fault: error 7  engine: ");
    lines += running.readUntil("\n");
    EXPECT_TRUE(std::regex_match(
        lines,
        std::regex("[0-9:.]{12} #1    GetAudioTs        ok +latency +[0-9.]+ jitter +[0-9]+ .* ms\n"
                   "[0-9:.]{12} #2    SetAudioDelay 40  ok +margin 40 .* ms\n"
                   "[0-9:.]{12} #3    GetAudioTs        7 .*error 7  engine: ok +latency .*\n")))
        << lines;
}

TEST_F(Tap, ClosesClientsWhileTheEngineIsAwayAndSaysSoOnce) {
    const Engine running = startTap();
    auto engine = std::make_unique<Engine>(socket);
    run(LIPSYNCCTL, "timestamps" + atTap);
    engine.reset();
    for (int i = 0; i < 3; ++i) {
        run(LIPSYNCCTL, "timestamps" + atTap, 4);
    }
    engine = std::make_unique<Engine>(socket);
    run(LIPSYNCCTL, "timestamps" + atTap);
    const std::string output = running.readUntil("azubsim: connected to the engine");
    const std::regex away("azubsim: cannot connect to the engine at [^\n]*: [^\n]*;");
    EXPECT_EQ(std::distance(std::sregex_iterator(output.begin(), output.end(), away), {}), 1)
        << output;
}

TEST_F(Tap, KeepsALimitedNumberOfBytesForASilentEngine) {
    const Listener silent(socket);
    const Engine running = startTap();
    const auto client = connectTo(tap);
    write(*client, "first\n\n");
    Link engine(silent.accept());
    EXPECT_EQ(read(engine, 7), "first\n\n");
    const std::string request = std::string(60000, 'x') + "\n\n";
    for (int i = 0; i < 300; ++i) {
        write(*client, request);
        read(engine, request.size());
    }
    EXPECT_PRED_FORMAT2(IsSubstring, "no answer", running.readUntil("\n"));
}

TEST_F(Tap, ShowsALongAnswerAsOne) {
    const Listener listener(socket);
    const Engine running = startTap();
    const auto client = connectTo(tap);
    write(*client, tests::frame("<GetAudioTs_Request />"));
    Link engine(listener.accept());
    const std::string answer =
        tests::timestampsFrame("1", "2", "3", "4", "1000", std::string(3000000, 'x'));
    std::thread writer([&] { write(engine, answer); });
    EXPECT_EQ(read(*client, answer.size()).size(), answer.size());
    writer.join();
    EXPECT_PRED_FORMAT2(IsSubstring, "GetAudioTs        ok ", running.readUntil("\n"));
}

TEST_F(Tap, DropsClientsThatLeaveAStuckEngine) {
    const Listener stuck(socket);
    const Engine running = startTap();
    for (int i = 0; i < 20; ++i) {
        // The first ones are connected, but nobody reads what they send. The others wait.
        const auto client = connectTo(tap);
        write(*client, i < 2 ? std::string(500000, 'x') : "x");
    }
    expectStatus("20 clients, ");
    expectStatus("\n0 clients connected");
}

TEST_F(Tap, CutsARing) {
    const std::string link = directory.path() + "/link";
    std::filesystem::create_symlink(tap, link);
    expectFailure(AZUBSIM, "tap " + link + atTap, 2,
                  "azubsim: the engine's path leads to this tap's own socket\n");
    const Engine first = startTap();
    const Engine second(socket, {}, {"tap", tap});
    run(LIPSYNCCTL, "timestamps" + atTap, 4);
    EXPECT_PRED_FORMAT2(IsSubstring, "does the engine's path lead back to this tap?",
                        first.readUntil("?"));
    expectStatus("\n0 clients connected");
}

TEST_F(Tap, ServesManyClientsAtOnce) {
    const Engine engine(socket);
    const Engine running = startTap();
    std::vector<std::unique_ptr<Link>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(connectTo(tap));
        write(*clients.back(), tests::frame("<GetAudioTs_Request />"));
    }
    for (const auto& client : clients) {
        EXPECT_PRED_FORMAT2(IsSubstring, "GetAudioTs_Answer", read(*client, 100));
    }
}
