#include <algorithm>
#include <iterator>
#include <memory>
#include <regex>
#include <vector>

#include "comms/Client.h"
#include "tests/support/Frames.h"
#include "tests/support/Listener.h"
#include "tests/tools/Engine.h"

using testing::IsSubstring;
using tests::Engine;
using tests::Listener;
using velta::zub::comms::Client;
using velta::zub::comms::Link;

namespace {

class Tap : public tests::EngineTest {
protected:
    static std::unique_ptr<Link> connect(const std::string& path) {
        Link* link = nullptr;
        EXPECT_TRUE(Client::connectUnixServer(path.c_str(), link).isSuccess());
        return std::unique_ptr<Link>(link);
    }

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

    Engine startTap(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"--forward", socket});
        return Engine(tap, options);
    }

    const std::string tap = directory.path() + "/tap";
    const std::string atTap = " --socket " + tap;
};

} // namespace

TEST_F(Tap, PassesAllBytesUnchanged) {
    const std::string bytes("no XML\0\n\n\n\xff<AZUB", 16);
    const Listener listener(socket);
    const Engine running = startTap();
    auto client = connect(tap);
    Link engine(listener.accept());
    write(*client, bytes + bytes);
    EXPECT_EQ(read(engine, 32), bytes + bytes);
    write(engine, bytes);
    EXPECT_EQ(read(*client, 16), bytes);
    // Also an unfinished message before the end of the connection.
    write(*client, bytes);
    client.reset();
    EXPECT_EQ(read(engine, 100), bytes);
    client = connect(tap);
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
    const std::string lines = running.readUntil("fault: error 7\n");
    EXPECT_TRUE(std::regex_match(
        lines,
        std::regex(
            "[0-9:.]{12}  client 1   GetAudioTs .* latency +[0-9.]+ ms  jitter +[0-9]+ ms .*\n"
            "[0-9:.]{12}  client 2   SetAudioDelay 40 .* margin 40 ms .*\n"
            "[0-9:.]{12}  client 3   GetAudioTs .* 7 .*error 7.*\n")))
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

TEST_F(Tap, ReportsOldRequestsOfASilentEngine) {
    const Listener silent(socket);
    const Engine running = startTap();
    const auto client = connect(tap);
    for (int i = 0; i < 1001; ++i) {
        write(*client, tests::frame("<GetAudioTs_Request />"));
    }
    EXPECT_PRED_FORMAT2(IsSubstring, "GetAudioTs", running.readUntil("no answer"));
}

TEST_F(Tap, ServesManyClientsAtOnce) {
    const Engine engine(socket);
    const Engine running = startTap();
    std::vector<std::unique_ptr<Link>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(connect(tap));
        write(*clients.back(), tests::frame("<GetAudioTs_Request />"));
    }
    for (const auto& client : clients) {
        EXPECT_PRED_FORMAT2(IsSubstring, "GetAudioTs_Answer", read(*client, 100));
    }
}
