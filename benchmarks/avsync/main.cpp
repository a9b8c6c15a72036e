// Compares rules of correction on recorded networks, as Markdown tables. Usage: avsync_benchmark
// POINTS NETWORK... Writes a line NAME CHANGES SHARE for each point of the picture to POINTS. Fails
// if `Controller` misses a target.

#include <cstdio>
#include <fstream>
#include <random>

#include "benchmarks/Check.h"
#include "benchmarks/avsync/Optimum.h"

namespace {

using namespace benchmarks;

const struct {
    const char* name;
    Rule (*make)();
} rules[] = {{"no help", noHelp},
             {"in the manner of WebRTC", halfTheDifference},
             {"the example's former rule", narrowDeadBand},
             {"Controller", controller}};

Call load(const std::string& file) {
    return azubsim::Network(file).rows();
}

// Ten minutes; after half of them, the skew changes.
Call madeCall(double skewMs, double laterMs, double noiseMs) {
    std::mt19937 random;
    std::normal_distribution<> noise;
    Call call;
    for (int i = 0; i < 6000; ++i) {
        call.push_back({i * 0.1, (i < 3000 ? skewMs : laterMs) + noiseMs * noise(random), 0, 0});
    }
    return call;
}

void printRow(const std::string& name, const Score& score) {
    std::printf("| %s | %.1f %% | %.1f %% | %.1f | %.1f | %.0f |\n", name.c_str(), score[Inside],
                score[Undetected], score[Changes], score[MarginChanges], score[DelayMs]);
}

// Returns the score of `Controller`.
Score compareOnNetworks(const std::vector<std::string>& files, std::ofstream points) {
    std::vector<Call> calls;
    std::transform(files.begin(), files.end(), std::back_inserter(calls), load);
    std::puts("| rule | in IS-191 | in BT.1359 | changes a minute | of the margin | delay, ms |");
    std::puts("|---|---|---|---|---|---|");
    Score score;
    for (const auto& rule : rules) {
        score = mean(calls, [&](const Call& call) { return replay(call, rule.make()); });
        printRow(rule.name, score);
        points << '"' << rule.name << "\" " << score[Changes] << ' ' << score[Inside] << '\n';
    }
    for (std::size_t i = 0; i < calls.size(); ++i) {
        printRow("... on " + files[i], replay(calls[i], controller()));
    }
    std::vector<std::vector<Score>> curves;
    std::transform(calls.begin(), calls.end(), std::back_inserter(curves), optimum);
    for (int changes = 0; changes <= 40; ++changes) {
        const Score best = mean(curves, [&](const auto& curve) { return pointAt(curve, changes); });
        points << "optimum " << changes << ' ' << best[Inside] << '\n';
        if (changes == 10 || changes == 20) {
            printRow("optimum with " + std::to_string(changes) + " changes a minute", best);
        }
    }
    return score;
}

void compareOnMadeCalls() {
    std::puts("\n| rule | noise of 5 ms | noise of 10 ms | sound 80 ms later | 80 ms earlier |");
    std::puts("|---|---|---|---|---|");
    const Call calls[] = {madeCall(-14, -14, 5), madeCall(-14, -14, 10), madeCall(10, 90, 0),
                          madeCall(0, -80, 0)};
    Score scores[4];
    for (const auto& rule : rules) {
        std::transform(std::begin(calls), std::end(calls), scores,
                       [&](const Call& call) { return replay(call, rule.make()); });
        std::printf("| %s | %.1f, %.1f %% | %.1f, %.1f %% | %.1f s | %.1f s |\n", rule.name,
                    scores[0][Changes], scores[0][Inside], scores[1][Changes], scores[1][Inside],
                    600 - 6 * scores[2][Inside], 600 - 6 * scores[3][Inside]);
    }
    check(scores[0][Changes] <= 0.5 && scores[1][Changes] <= 1, "noise changes little");
    check(scores[1][Inside] >= 96, "noise does not lead outside");
    check(std::min(scores[2][Inside], scores[3][Inside]) >= 99.75, "steps are followed in 1.5 s");
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const Score score = compareOnNetworks({argv + 2, argv + argc}, std::ofstream(argv[1]));
    compareOnMadeCalls();
    check(score[Inside] >= 76 && score[Undetected] >= 91, "enough readings are inside");
    check(score[Changes] <= 32 && score[MarginChanges] <= 5, "there are few changes");
}
