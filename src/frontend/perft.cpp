#include "frontend/perft.h"

#include <chrono>

#include "board/make.h"
#include "board/movegen.h"
#include "board/output.h"
#include "frontend/compare_games.h"
#include "frontend/numbers.h"

namespace varn {

namespace {

/// Legal lines of so many plies, side S to move. The depth left serves as ply, so that each level has slots of its own.
template <Side S> std::uint64_t perft_count(Game& game, int depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    const MoveList* list = generate_all(&game, depth);
    const Restraints restraints = restraints_of<S>(game);
    UndoRecord* undo = save_undo(&game, {}, depth);
    for (int i = 0; i < list->count; ++i) {
        const Move move = list->moves[i];
        if (!make_if_legal<S>(game, move, depth, restraints, *undo)) continue;
        leaves += perft_count<other(S)>(game, depth - 1);
        unmake_for<S>(game, move, *undo);
    }
    return leaves;
}

}  // namespace

void perft(Game* game, int depth) {
    const Game copy = *game;
    const auto started = std::chrono::steady_clock::now();
    say("running perft=%d\n", depth);
    const std::uint64_t leaves =
        game->turn == 0 ? perft_count<Side::white>(*game, depth) : perft_count<Side::black>(*game, depth);
    const auto taken = std::chrono::steady_clock::now() - started;
    say("Counted: %llu nodes in %d seconds.\n", static_cast<unsigned long long>(leaves),
        static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(taken).count()));
    compare_games(&copy, game);
}

void count_moves(Console& console, const CommandLine& line) {
    std::string_view rest = line.rest;
    const auto depth = take_number(rest);
    if (!depth || *depth < 0 || *depth > last_ply) {
        ignore_line(line);
    } else if (!refuse_unplayable(console.game.get())) {
        perft(console.game.get(), *depth);
    }
}

}  // namespace varn
