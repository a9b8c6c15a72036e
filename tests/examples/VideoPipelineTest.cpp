#include <memory>

#include "examples/video_pipeline/Skew.h"
#include "tests/tools/Engine.h"

using VideoPipeline = tests::EngineTest;

TEST_F(VideoPipeline, KnowsTheWindowAndTheNearestMargin) {
    EXPECT_EQ(video::bestMargin(-50.1, 20, 100), 60UL);
    EXPECT_EQ(video::bestMargin(-49.9, 20, 100), 40UL);
    EXPECT_EQ(video::bestMargin(-500, 20, 90), 80UL);
    EXPECT_EQ(video::bestMargin(30, 20, 100), 0UL);
    video::Skew skew;
    EXPECT_FALSE(skew.isInsideWindow());
    skew.add(100, 55);
    skew.add(100, 225);
    EXPECT_TRUE(skew.isInsideWindow());
    EXPECT_EQ(skew.mean(), 40);
    for (const double lateness : {54, 226}) {
        video::Skew outside = skew;
        outside.add(100, lateness);
        EXPECT_FALSE(outside.isInsideWindow());
    }
}

TEST_F(VideoPipeline, SurvivesAnEngineThatGoesAwayAndComesBack) {
    tests::Process pipeline({VIDEO_PIPELINE, "--socket", socket, "--seconds", "6"});
    pipeline.readUntil("Waiting for the engine: Cannot connect to Audio ZUB");
    auto engine = std::make_unique<tests::Engine>(socket);
    pipeline.readUntil("(measuring)");
    engine.reset();
    pipeline.readUntil("Waiting for the engine: An error has occured in the transport layer");
    engine = std::make_unique<tests::Engine>(socket);
    pipeline.readUntil("Connected to " + socket);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "inside the window", pipeline.readAll());
    EXPECT_EQ(pipeline.wait(), 0);
}
