// A simulated video pipeline that keeps its pictures in step with a call's audio. This thread shows
// pictures and never waits for the engine; a `LipSync` talks to the engine.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Network.h"
#include "Options.h"
#include "Pictures.h"
#include "Report.h"
#include "avsync/LipSync.h"

namespace {

using namespace video;
using velta::zub::avsync::LipSync;

bool run(const Options& options, const Network* network, std::FILE* csv) {
    LipSync::Options lipSyncOptions;
    lipSyncOptions.socket = options.socket;
    lipSyncOptions.deadline = std::chrono::milliseconds(options.deadlineMs);
    Report report(options.socket, csv);
    LipSync lipSync(std::move(lipSyncOptions));
    Pictures pictures(static_cast<double>(options.latenessMs), network);
    Picture picture{};
    while (picture.seconds < static_cast<double>(options.seconds)) {
        picture = pictures.next(lipSync.pictureDelayMs());
        lipSync.setPicture(picture.captured, picture.shown, picture.delayMs);
        report.add(picture, lipSync.status());
    }
    lipSync.stop();
    return report.conclude(network != nullptr);
}

} // namespace

int main(int argc, char** argv) {
    const Options options = parseOptions(argc, argv);
    Network network;
    if (!options.network.empty() && !network.load(options.network)) {
        std::fprintf(stderr, "video_pipeline: %s is not a recorded network\n",
                     options.network.c_str());
        return EXIT_FAILURE;
    }
    std::FILE* const csv = options.csv.empty() ? nullptr : std::fopen(options.csv.c_str(), "w");
    if (!options.csv.empty() && csv == nullptr) {
        std::perror(options.csv.c_str());
        return EXIT_FAILURE;
    }
    const bool isGood = run(options, options.network.empty() ? nullptr : &network, csv);
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
