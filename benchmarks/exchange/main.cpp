#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "benchmarks/exchange/Contestants.h"
#include "benchmarks/exchange/Core.h"
#include "benchmarks/exchange/Options.h"
#include "benchmarks/exchange/Rounds.h"
#include "benchmarks/exchange/Table.h"

namespace {

using namespace exchange;

constexpr int exitUsage = 2;

void run(const Options& options) {
    // A server that goes away is reported, not died of.
    std::signal(SIGPIPE, SIG_IGN);
    if (!options.isUnpinned) {
        pinToIdlestCore();
    }
    if (!options.only.empty()) {
        takeTurn(*makeContestant(options.only), 0, options.count);
        return;
    }
    printTable(playRounds(options.rounds, options.exchanges),
               options.isUnpinned ? "unpinned" : "on one core");
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app;
    declareOptions(app, options);
    try {
        app.parse(argc, argv);
        run(options);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? EXIT_SUCCESS : exitUsage;
    } catch (const std::exception& e) {
        std::cerr << "exchange_benchmark: " << e.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
