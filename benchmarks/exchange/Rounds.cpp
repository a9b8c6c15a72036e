#include "benchmarks/exchange/Rounds.h"

#include <cstddef>
#include <memory>

#include "benchmarks/exchange/Contestants.h"

namespace exchange {

namespace {

using Contestants = std::vector<std::unique_ptr<Contestant>>;

// Other contestants have used the caches since this one's last turn.
int warmUpFor(int exchanges) {
    return exchanges / 5 + 1;
}

void playRound(Contestants& contestants, std::size_t round, int exchanges,
               std::vector<Series>& series) {
    const std::size_t count = contestants.size();
    const bool isReversed = round / count % 2 == 1;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t turn = (round + (isReversed ? count - i : i)) % count;
        series[turn].costs.push_back(takeTurn(*contestants[turn], warmUpFor(exchanges), exchanges));
    }
}

} // namespace

std::vector<Series> playRounds(int rounds, int exchanges) {
    Contestants contestants;
    std::vector<Series> series;
    for (const std::string& name : contestantNames()) {
        contestants.push_back(makeContestant(name));
        series.push_back({name, {}});
    }
    // One round to warm up.
    std::vector<Series> unused = series;
    playRound(contestants, 0, exchanges, unused);
    for (int round = 0; round < rounds; ++round) {
        playRound(contestants, static_cast<std::size_t>(round), exchanges, series);
    }
    return series;
}

} // namespace exchange
