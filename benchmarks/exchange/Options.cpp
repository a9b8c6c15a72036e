#include "benchmarks/exchange/Options.h"

#include "benchmarks/exchange/Contestants.h"

namespace exchange {

void declareOptions(CLI::App& app, Options& options) {
    app.name("exchange_benchmark");
    app.description(
        "Measures what one getAudioTimestamps costs: the plain bytes (floor), the library with its "
        "log in a file in memory, the library with its log discarded (library-silent), and the "
        "same values over sd-bus. They take turns; every value is checked. Prints a Markdown "
        "table.");
    CLI::Option* const rounds = app.add_option("--rounds", options.rounds, "Turns of each")
                                    ->type_name("N")
                                    ->check(CLI::Range(1, 1000000))
                                    ->capture_default_str();
    CLI::Option* const exchanges =
        app.add_option("--exchanges", options.exchanges, "Exchanges in a turn")
            ->type_name("N")
            ->check(CLI::Range(1, 1000000))
            ->capture_default_str();
    app.add_flag("--unpinned", options.isUnpinned,
                 "Leave it to the system where client and servers run; else they share one core");
    CLI::Option* const only = app.add_option("--only", options.only,
                                             "Run just this one, for profilers, and print nothing")
                                  ->type_name("NAME")
                                  ->check(CLI::IsMember(contestantNames()))
                                  ->excludes(rounds)
                                  ->excludes(exchanges);
    CLI::Option* const count = app.add_option("--count", options.count, "Exchanges of --only")
                                   ->type_name("N")
                                   ->check(CLI::Range(1, 1000000))
                                   ->needs(only);
    only->needs(count);
}

} // namespace exchange
