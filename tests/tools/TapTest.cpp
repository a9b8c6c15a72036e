#include <filesystem>
#include <thread>

#include "tests/support/Frames.h"
#include "tests/support/Listener.h"
#include "tests/tools/Engine.h"

using namespace tests;
using velta::zub::comms::Link;
using Tap = EngineTest;

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
    const char* const away = "azubsim: cannot connect to the engine at [^\n]*: [^\n]*;";
    EXPECT_EQ(found(output, away, {0}).size(), 1U) << output;
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
    EXPECT_IN("no answer", running.readUntil("\n"));
}

TEST_F(Tap, ShowsALongAnswerAsOne) {
    const Listener listener(socket);
    const Engine running = startTap();
    const auto client = connectTo(tap);
    write(*client, frame("<GetAudioTs_Request />"));
    Link engine(listener.accept());
    const std::string answer =
        timestampsFrame("1", "2", "3", "4", "1000", std::string(3000000, 'x'));
    std::thread writer([&] { write(engine, answer); });
    EXPECT_EQ(read(*client, answer.size()).size(), answer.size());
    writer.join();
    EXPECT_IN("GetAudioTs        ok ", running.readUntil("\n"));
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
    std::filesystem::create_symlink(tap, file);
    expectFailure(AZUBSIM, "tap " + file + atTap, 2,
                  "the engine's path leads to this tap's own socket\n");
    const Engine first = startTap();
    const Engine second(socket, {}, "tap " + tap);
    run(LIPSYNCCTL, "timestamps" + atTap, 4);
    EXPECT_IN("does the engine's path lead back to this tap?", first.readUntil("?"));
    expectStatus("\n0 clients connected");
}

TEST_F(Tap, ServesManyClientsAtOnce) {
    const Engine engine(socket);
    const Engine running = startTap();
    std::vector<std::unique_ptr<Link>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(connectTo(tap));
        write(*clients.back(), frame("<GetAudioTs_Request />"));
    }
    for (const auto& client : clients) {
        EXPECT_IN("GetAudioTs_Answer", read(*client, 100));
    }
}
