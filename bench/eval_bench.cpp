// Cost of a static evaluation, with a warm and with a cleared pawn hash table. Each iteration evaluates a dozen
// positions from all game phases; the rate is in positions per second.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "board/position.h"
#include "board/zobrist.h"
#include "eval/evaluate.h"

namespace varn {
namespace {

constexpr const char* positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r1bqkbnr/pppp1ppp/2n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R b KQkq -",
    "rnbq1rk1/ppp1bppp/4pn2/3p4/2PP4/2N2N2/PP2PPPP/R1BQKB1R w KQ -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -",
    "2r2rk1/pb1qbppp/1pn1pn2/3p4/3P1B2/2NBPN2/PPQ2PPP/2R2RK1 b - -",
    "2kr3r/ppp2ppp/2n1bn2/2b1p3/4P1q1/2NP1N2/PPPBBPPP/R2Q1RK1 w - -",
    "3r1rk1/p4ppp/1p2p3/2p5/2P1n3/1P2PN2/PB3PPP/3R1RK1 b - -",
    "6k1/1R3ppp/4p3/3pP3/r2P4/5P2/6PP/6K1 w - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "8/5k2/2b2p2/p1p2Pp1/PpP1K1P1/1P2B3/8/8 w - -",
    "8/8/1p1k4/p1p2p2/P1P2P2/1P1K4/8/8 b - -",
};

std::vector<std::unique_ptr<Game>> all_games() {
    draw_hash_numbers(20010911);
    std::vector<std::unique_ptr<Game>> games;
    for (const char* text : positions) {
        games.push_back(new_game());
        set_position(*games.back(), text);
    }
    return games;
}

template <bool clear_first> void evaluation(benchmark::State& state) {
    const auto games = all_games();
    EvalContext context;
    if (!pawn_hash_allocate(context.pawns, 1 << 20)) return state.SkipWithError("no memory");
    for (auto _ : state) {
        if (clear_first) pawn_hash_clear(context.pawns);
        for (const auto& game : games) benchmark::DoNotOptimize(evaluate(*game, context));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(games.size()));
}
BENCHMARK(evaluation<false>)->Name("evaluate/pawns known");
BENCHMARK(evaluation<true>)->Name("evaluate/pawns new");

}  // namespace
}  // namespace varn
