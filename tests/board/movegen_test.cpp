// Move generation: published perft counts, and the order of the stages.
#include <gtest/gtest.h>

#include "board/movegen.h"
#include "board/notation.h"
#include "positions.h"

namespace varn {
namespace {

/// Counts leaves, and compares `has_legal_move` in every position of the tree.
std::uint64_t count_leaves(Game& game, int depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    const Pins pins = pins_of(game);
    UndoRecord undo;
    save_undo(game, undo);
    bool any = false;
    for (const Move move : pseudo_legal_moves(game)) {
        if (!make_if_legal(game, move, pins, undo)) continue;
        any = true;
        leaves += count_leaves(game, depth - 1);
        unmake_move(game, move, undo);
    }
    if (has_legal_move(game) != any) ADD_FAILURE() << position_text(game);
    return leaves;
}

TEST(MoveCounts, MatchPublishedValuesAlsoMirrored) {
    for (const auto& [text, depth, leaves] : known_positions) {
        const auto game = game_from(text), mirrored = game_from(mirrored_text(text));
        EXPECT_EQ(count_leaves(*game, depth), leaves) << text;
        EXPECT_EQ(count_leaves(*mirrored, depth - 1), count_leaves(*game, depth - 1)) << text;
    }
    EXPECT_EQ(count_leaves(*game_from("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -"), 4), 314346U) << "castling of all kinds";
}

TEST(Generation, AllMovesEqualTheStagesInOrder) {
    visit_random_games(4, 60, [](const Game& game) {
        MoveList stages, noisy;
        stages.count = 0;
        add_captures(game, stages);
        EXPECT_EQ(pseudo_legal_captures(game), moves_of(stages));
        add_promotions(game, stages);
        generate_noisy(game, noisy);
        EXPECT_EQ(moves_of(noisy), moves_of(stages));
        add_quiets(game, stages);
        ASSERT_EQ(pseudo_legal_moves(game), moves_of(stages)) << position_text(game);
    });
}

}  // namespace
}  // namespace varn
