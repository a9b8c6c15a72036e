#include <fstream>

#include "tests/tools/Engine.h"

using VideoPipeline = tests::EngineTest;

TEST_F(VideoPipeline, ShowsPicturesWhateverTheEngineDoes) {
    tests::Process pipeline("examples/video_pipeline", "--seconds 4" + at);
    pipeline.readUntil("Waiting for the engine: Cannot connect to Audio ZUB");
    const tests::Engine engine(socket);
    pipeline.readUntil("Connected to " + socket);
    EXPECT_IN(" 100.0 % inside that of", pipeline.readAll());
    EXPECT_EQ(pipeline.wait(), 0);
}

TEST_F(VideoPipeline, FollowsARecordedNetwork) {
    std::ofstream(file) << "time_s,audio_ms,depth_ms,picture_ms\n0.0,70.0,13,0.0\n0.1,70,13,2\n";
    const tests::Engine engine(socket);
    const std::string options = " --seconds 2 --network " + file + at;
    // The sound is later than these pictures, so they are held back.
    EXPECT_IN(" changes, 0 of the margin\n", run("examples/video_pipeline", options));
    std::ofstream(file) << "0.0,70.0,13,\n";
    expectFailure("examples/video_pipeline", options, 1, file + " is not a recorded network\n");
}
