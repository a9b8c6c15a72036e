#include <unistd.h>

#include <cstring>
#include <utility>

#include "benchmarks/PlainSocket.h"
#include "benchmarks/exchange/Contestants.h"
#include "benchmarks/exchange/Values.h"
#include "lipsyncapi/Service.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Silence.h"

namespace exchange {

namespace {

// The size of the library's reads.
constexpr std::size_t chunkSize = 511;

std::string requestOfLibrary() {
    const tests::Silence silence;
    tests::EngineDouble engine(textAnswers());
    {
        velta::zub::lipsyncapi::Service service;
        velta::zub::common::LipSyncNtpTimestamps audio;
        benchmarks::check(service.connect(engine.path()).isSuccess() &&
                              service.getAudioTimestamps(audio).isSuccess(),
                          "the library gets an answer");
    }
    return engine.received();
}

class Floor {
public:
    Floor(const std::string& path, std::string request)
        : _fd(benchmarks::connectPlainly(path.c_str())), _request(std::move(request)) {}

    ~Floor() { close(_fd); }

    Floor(const Floor&) = delete;
    Floor& operator=(const Floor&) = delete;

    // The engine sends an answer with one write, so one read gets all of it.
    [[gnu::noinline]] bool exchange(std::size_t number) {
        const std::string& expected = _answers[number % answerCount];
        char received[chunkSize];
        return write(_fd, _request.data(), _request.size()) ==
                   static_cast<ssize_t>(_request.size()) &&
               read(_fd, received, chunkSize) == static_cast<ssize_t>(expected.size()) &&
               std::memcmp(received, expected.data(), expected.size()) == 0;
    }

private:
    const int _fd;
    const std::string _request;
    const std::vector<std::string> _answers = textAnswers();
};

} // namespace

void floor(benchmark::State& state) {
    static const std::string request = requestOfLibrary();
    const tests::EngineDouble engine(textAnswers(), tests::EngineDouble::ForEver);
    Floor client(engine.path(), request);
    run(state, client);
}

} // namespace exchange
