// Static exchange evaluation, compared with playing out the captures.
#include <gtest/gtest.h>

#include "board/attacks.h"
#include "positions.h"
#include "search/exchange.h"

namespace varn {
namespace {

/// The gain of optional captures on the square for the side to move, by playing them out.
int reply_gain(const Game& game, int target) {
    std::vector<Move> captures = pseudo_legal_captures(game);
    std::erase_if(captures, [&](Move move) { return move.to != target || move.kind == kind_en_passant; });
    if (captures.empty()) return 0;
    const auto cost = [&](Move move) {
        return std::pair((piece_values[game.cells[move.from]] + 9999) % 10000, move.from);
    };
    Move move = std::ranges::min(captures, {}, cost);  // the king captures last
    const int won = piece_values[game.cells[target]];
    if (type_of(game.cells[move.from]) == king) {
        return game.turn == Side::white ? (attacked_by_black(game, target) ? 0 : won)
                                        : (attacked_by_white(game, target) ? 0 : won);
    }
    move.kind = kind_capture;
    return std::max(0, won - reply_gain(*after(game, move), target));
}

TEST(Exchange, MatchesCapturesPlayedOnTheBoard) {
    int captures = 0;
    visit_random_games(41, 40, [&](const Game& game) {
        for (Move move : pseudo_legal_captures(game)) {
            if (!is_legal(game, move)) continue;
            if (move.kind == kind_en_passant) {
                ASSERT_EQ(exchange_value(game, move), 0);
                continue;
            }
            const Move as_capture = {move.from, move.to, kind_capture};
            const int gain = piece_values[game.cells[move.to]] - reply_gain(*after(game, as_capture), move.to);
            ASSERT_EQ(exchange_value(game, move), game.turn == Side::white ? gain : -gain)
                << position_text(game) << move_text(move);
            ++captures;
        }
    });
    EXPECT_GT(captures, 1500);
}

}  // namespace
}  // namespace varn
