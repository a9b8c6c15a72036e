#include <gtest/gtest.h>

#include <csignal>
#include <memory>

#include "examples/video_pipeline/Skew.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryDirectory.h"

using tests::Process;
using video::bestMargin;
using video::Skew;

TEST(VideoPipeline, ChoosesTheNearestMarginThereIs) {
    EXPECT_EQ(bestMargin(-50.1, 20, 100), 60UL);
    EXPECT_EQ(bestMargin(-49.9, 20, 100), 40UL);
    EXPECT_EQ(bestMargin(-500, 20, 100), 100UL);
    EXPECT_EQ(bestMargin(-500, 20, 90), 80UL);
    EXPECT_EQ(bestMargin(30, 20, 100), 0UL);
}

TEST(VideoPipeline, KnowsTheWindow) {
    Skew skew;
    EXPECT_FALSE(skew.isInsideWindow());
    skew.add(100, 56);
    skew.add(100, 224);
    EXPECT_TRUE(skew.isInsideWindow());
    EXPECT_EQ(skew.mean(), 40);
    skew.add(100, 226);
    EXPECT_FALSE(skew.isInsideWindow());
    skew.clear();
    skew.add(100, 54);
    EXPECT_FALSE(skew.isInsideWindow());
}

TEST(VideoPipeline, SurvivesAnEngineThatGoesAwayAndComesBack) {
    const tests::TemporaryDirectory directory;
    const std::string socket = directory.path() + "/engine";
    const auto startEngine = [&] {
        return std::make_unique<Process>(std::vector<std::string>{AZUBSIM, "--socket", socket});
    };
    Process pipeline({VIDEO_PIPELINE, "--socket", socket, "--seconds", "6"});
    pipeline.readUntil("Waiting for the engine: Cannot connect to Audio ZUB");
    auto engine = startEngine();
    pipeline.readUntil("(measuring)");
    engine->signal(SIGKILL);
    engine->wait();
    pipeline.readUntil("Waiting for the engine: An error has occured in the transport layer");
    engine = startEngine();
    const std::string rest = pipeline.readAll();
    EXPECT_NE(rest.find("Connected to " + socket), std::string::npos) << rest;
    EXPECT_NE(rest.find("inside the window"), std::string::npos) << rest;
    EXPECT_EQ(pipeline.wait(), 0);
}
