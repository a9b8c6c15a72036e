#include "Options.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>

namespace video {

namespace {

constexpr const char* usage =
    "Usage: video_pipeline [OPTION...]\n"
    "Keeps the pictures of a simulated call in step with the engine's audio.\n"
    "  --socket PATH   the engine's socket\n"
    "  --seconds N     how long to run: 2 to 86400, default 10\n"
    "  --deadline MS   how long the engine may take to answer: 10 to 60000, default 500\n"
    "  --lateness MS   how late the pictures are without a delay: 0 to 1000, default 195\n"
    "  --network FILE  how late the pictures are: the column picture_ms of a recorded network\n"
    "  --csv FILE      write the figures of every picture to FILE\n"
    "Exit status: 0 if nobody would notice the skew of any steered picture, -45 to 125 ms, or "
    "with\n"
    "--network, if any picture was steered; otherwise 1; for wrong usage 2.\n";

[[noreturn]] void endWithUsage() {
    constexpr int exitUsage = 2;
    std::fputs(usage, stderr);
    std::exit(exitUsage);
}

long parseNumber(const char* name, const char* text, long smallest, long largest) {
    char* rest = nullptr;
    const long number = std::strtol(text, &rest, 10);
    if (*rest != '\0' || number < smallest || number > largest) {
        std::fprintf(stderr, "video_pipeline: %s must be %ld to %ld, not '%s'\n", name, smallest,
                     largest, text);
        endWithUsage();
    }
    return number;
}

} // namespace

Options parseOptions(int argc, char** argv) {
    const option names[] = {{"socket", required_argument, nullptr, 's'},
                            {"seconds", required_argument, nullptr, 'n'},
                            {"deadline", required_argument, nullptr, 'd'},
                            {"lateness", required_argument, nullptr, 'l'},
                            {"network", required_argument, nullptr, 'w'},
                            {"csv", required_argument, nullptr, 'c'},
                            {"help", no_argument, nullptr, 'h'},
                            {nullptr, 0, nullptr, 0}};
    Options options;
    for (int letter; (letter = getopt_long(argc, argv, "h", names, nullptr)) != -1;) {
        switch (letter) {
            case 's': options.socket = optarg; break;
            case 'w': options.network = optarg; break;
            case 'c': options.csv = optarg; break;
            case 'n': options.seconds = parseNumber("--seconds", optarg, 2, 86400); break;
            case 'd': options.deadlineMs = parseNumber("--deadline", optarg, 10, 60000); break;
            case 'l': options.latenessMs = parseNumber("--lateness", optarg, 0, 1000); break;
            case 'h': std::fputs(usage, stdout); std::exit(EXIT_SUCCESS);
            default: endWithUsage();
        }
    }
    if (optind != argc) {
        std::fprintf(stderr, "video_pipeline: unexpected argument '%s'\n", argv[optind]);
        endWithUsage();
    }
    return options;
}

} // namespace video
