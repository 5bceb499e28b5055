// Move generation: published perft counts, castling rules, and the order of the stages.
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
}

std::string joined(const std::vector<Move>& moves) {
    std::string text;
    for (const Move move : moves) text += (text.empty() ? "" : " ") + move_text(move);
    return text;
}

TEST(Generation, CastlingRules) {
    constexpr std::pair<const char*, std::string_view> cases[] = {
        // ranks 4 to 1, castling moves generated
        {"8/8/8/R3K2R", "e1g1 e1c1"},  {"4r3/8/8/R3K2R", ""},           // in check
        {"5r2/8/8/R3K2R", "e1c1"},     {"6r1/8/8/R3K2R", "e1c1"},       // f1 or g1 attacked
        {"3r4/8/8/R3K2R", "e1g1"},     {"2r5/8/8/R3K2R", "e1g1"},       // d1 or c1
        {"7r/8/8/R3K2R", "e1g1 e1c1"}, {"1r6/8/8/R3K2R", "e1g1 e1c1"},  // h1 and b1 don't matter
        {"8/8/7p/R3K2R", "e1c1"},      {"8/8/8/R3KB1R", "e1c1"},        // pieces in the way
        {"8/8/8/R3K1nR", "e1c1"},      {"8/8/8/RN2K2R", "e1g1"},
        {"8/8/8/R1b1K2R", "e1g1"},     {"8/8/8/R2QK2R", "e1g1"},
    };
    for (const auto& [ranks, expected] : cases) {
        const std::string text = std::string("4k3/8/8/8/") + ranks + " w KQ -";
        std::string on_the_eighth(expected);
        std::ranges::replace(on_the_eighth, '1', '8');
        for (const bool mirrored : {false, true}) {
            auto moves = pseudo_legal_moves(*game_from(mirrored ? mirrored_text(text) : text));
            std::erase_if(moves, [](Move move) { return !is_castling(move.kind); });
            EXPECT_EQ(joined(moves), mirrored ? on_the_eighth : expected) << text;
        }
    }
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
