// Cost of board operations on a dozen positions from all game phases: make and unmake, check test, generation, and the
// test for any legal move. Rates are in calls per second, for make in moves made and unmade.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/position.h"
#include "board/zobrist.h"

namespace varn {
namespace {

constexpr const char* positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r1bqkbnr/pppp1ppp/2n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R b KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -",
    "2r2rk1/pb1qbppp/1pn1pn2/3p4/3P1B2/2NBPN2/PPQ2PPP/2R2RK1 b - -",
    "3r1rk1/p4ppp/1p2p3/2p5/2P1n3/1P2PN2/PB3PPP/3R1RK1 b - -",
    "6k1/1R3ppp/4p3/3pP3/r2P4/5P2/6PP/6K1 w - -",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
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

void make_and_unmake(benchmark::State& state) {
    struct Position {
        std::unique_ptr<Game> game;
        MoveList legal;
    };
    std::vector<Position> list;
    std::int64_t moves = 0;
    for (auto& game : all_games()) {
        const MoveList legal = legal_moves(*game);
        moves += legal.count;
        list.push_back({std::move(game), legal});
    }
    for (auto _ : state) {
        for (const auto& [game, legal] : list) {
            for (const Move move : legal) {
                UndoRecord undo;
                fill_undo(*game, move, undo);
                make_move(*game, move);
                unmake_move(*game, move, undo);
            }
            benchmark::DoNotOptimize(game->zobrist_key);
        }
    }
    state.SetItemsProcessed(state.iterations() * moves);
}
BENCHMARK(make_and_unmake)->Name("make and unmake/legal moves");

/// Calls `operation` once per game and iteration.
template <auto operation> void on_every_game(benchmark::State& state) {
    const auto games = all_games();
    for (auto _ : state) {
        for (const auto& game : games) benchmark::DoNotOptimize(operation(*game));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(games.size()));
}

constexpr auto any_check = [](const Game& game) { return white_in_check(game) || black_in_check(game); };
template <auto generate> int generated(const Game& game) {
    static MoveList list;
    generate(game, list);
    return list.count;
}
constexpr auto any_move = [](const Game& game) { return has_legal_move(game); };

BENCHMARK(on_every_game<any_check>)->Name("check test/both sides");
BENCHMARK(on_every_game<generated<generate_captures>>)->Name("generate/captures");
BENCHMARK(on_every_game<generated<generate_all>>)->Name("generate/all");
BENCHMARK(on_every_game<any_move>)->Name("has_legal_move");

}  // namespace
}  // namespace varn
