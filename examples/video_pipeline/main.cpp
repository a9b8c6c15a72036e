// A simulated video pipeline that keeps its pictures in step with a call's audio. This thread shows
// pictures and never waits for the engine; a `SyncThread` talks to the engine.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "Options.h"
#include "Pictures.h"
#include "Report.h"
#include "SyncThread.h"

namespace {

using namespace video;

void showPictures(const Options& options, SyncThread& sync, Report& report,
                  Reading::Clock::time_point start) {
    Pictures pictures(start, static_cast<double>(options.latenessMs));
    long second = 0;
    while (second < options.seconds) {
        const auto reading = sync.reading();
        const Picture picture = pictures.next(reading ? reading->pictureDelayMs : 0);
        if (picture.due >= start + std::chrono::seconds(second + 1)) {
            report.printRow(++second);
        }
        sync.setPicture(picture);
        report.add(picture, reading);
    }
}

} // namespace

int main(int argc, char** argv) {
    const Options options = parseOptions(argc, argv);
    std::FILE* const csv = options.csv.empty() ? nullptr : std::fopen(options.csv.c_str(), "w");
    if (!options.csv.empty() && csv == nullptr) {
        std::perror(options.csv.c_str());
        return EXIT_FAILURE;
    }
    // Writing to an engine that hung up must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    const auto start = Reading::Clock::now();
    Report report(start, csv);
    SyncThread sync(options.socket, std::chrono::milliseconds(options.deadlineMs));
    showPictures(options, sync, report, start);
    sync.stop();
    return report.conclude() ? EXIT_SUCCESS : EXIT_FAILURE;
}
