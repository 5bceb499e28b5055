// Unvalidated moves: those that are let through must leave a consistent, playable game.
#include <gtest/gtest.h>

#include "board/soundness.h"
#include "positions.h"

namespace varn {
namespace {

/// A generated move or three arbitrary bytes, mostly with squares on the board, often with an existing or matching
/// kind, and often onto the en-passant square.
Move any_move(RandomSource& random, const Game& game) {
    const auto square = [&] { return static_cast<std::uint8_t>(random.below(random.below(20) == 0 ? 256 : 64)); };
    constexpr Table<std::uint8_t, 6> kinds = {
        {kind_quiet, kind_capture, kind_double_step, kind_en_passant, kind_kingside_castling, kind_queenside_castling}};
    Move move = {square(), square(), kinds[random.below(6)]};
    if (move.kind == kind_double_step && random.below(2) == 0) move.to = move.from ^ 16;  // two ranks away
    if (game.enpassant != 0 && random.below(2) == 0) move.to = static_cast<std::uint8_t>(first_one(game.enpassant));
    const std::vector<Move> usual = pseudo_legal_moves(game);
    switch (random.below(5)) {
        case 0: return parse_move(game, move_text(move));
        case 1: return parse_move(game, move_text(move) + "qrbn"[random.below(4)]);
        case 2: return {move.from, move.to, static_cast<std::uint8_t>(random.below(256))};
        case 3: return usual.empty() ? move : random_move(random, usual);
        default: return move;
    }
}

TEST(UnvalidatedMoves, AcceptedMovesKeepTheGameConsistent) {
    RandomSource random(1972);
    for (const KnownPosition& known : known_positions) {
        for (int round = 0; round < 20; ++round) {
            auto game = game_from(known.text);
            for (int tries = 0; tries < 400 && !::testing::Test::HasFailure(); ++tries) {
                const std::string before = position_text(*game);
                const Move move = any_move(random, *game);
                if (!keeps_record_sound(*game, move)) continue;
                play_move(*game, move);
                expect_sound(*game);
                EXPECT_FALSE(::testing::Test::HasFailure()) << before << ' ' << move_text(move) << ' ' << +move.kind;
            }
        }
    }
}

TEST(UnvalidatedMoves, LegalMovesAreAccepted) {
    visit_random_games(3, 60, [](const Game& game) {
        for (const Move move : every_legal_move(game)) {
            EXPECT_TRUE(keeps_record_sound(game, move)) << position_text(game) << ' ' << move_text(move);
        }
    });
}

}  // namespace
}  // namespace varn
