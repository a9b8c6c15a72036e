#include <android/log.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "benchmarks/exchange/Contestants.h"
#include "benchmarks/exchange/Values.h"
#include "lipsyncapi/Service.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Silence.h"

namespace exchange {

namespace {

void discard(const __android_logger_data*, const char*) {}

auto linesOf(int fd) {
    std::ifstream file("/proc/self/fd/" + std::to_string(fd));
    return std::count(std::istreambuf_iterator<char>(file), {}, '\n');
}

class Library {
public:
    explicit Library(const std::string& path) {
        benchmarks::check(_service.connect(path).isSuccess(), "the library connects");
    }

    [[gnu::noinline]] bool exchange(std::size_t number) {
        velta::zub::common::LipSyncNtpTimestamps audio;
        const bool isSuccess = _service.getAudioTimestamps(audio).isSuccess();
        const Values values{audio.audioCaptureTimestamp, audio.audioRenderingTimestamp,
                            audio.audioReceivingTimestamp, audio.jbmCurrentDepth};
        return isSuccess && values == valuesOf(number);
    }

private:
    velta::zub::lipsyncapi::Service _service;
};

} // namespace

void library(benchmark::State& state) {
    const tests::Silence restoresStandardError;
    const int log = open("/dev/shm", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    benchmarks::check(dup2(log, STDERR_FILENO) >= 0, "the log goes to a file in memory");
    const tests::EngineDouble engine(textAnswers(), tests::EngineDouble::ForEver);
    Library client(engine.path());
    run(state, client);
    // The library logs every call, so the measured calls must have logged.
    benchmarks::check(linesOf(log) == 2 * (1 + state.iterations()),
                      "both logs have one line for each call");
    close(log);
}

void librarySilent(benchmark::State& state) {
    const tests::Silence silence;
    __android_log_set_logger(&discard);
    const tests::EngineDouble engine(textAnswers(), tests::EngineDouble::ForEver);
    Library client(engine.path());
    run(state, client);
    __android_log_set_logger(&__android_log_stderr_logger);
}

} // namespace exchange
