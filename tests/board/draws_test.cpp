// Draws by rule, and the test whether a move leads to one.
#include <gtest/gtest.h>

#include "board/draws.h"
#include "positions.h"

namespace varn {
namespace {

const std::string& start_text = known_positions[0].text;

TEST(Draws, RepetitionsCountSinceTheLastIrreversibleMove) {
    const auto game = game_from(start_text);
    const char* const round[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int played = 1; played <= 12; ++played) {
        play_move(*game, parse_move(*game, round[(played - 1) % 4]));
        EXPECT_EQ(is_repetition(*game), played >= 4) << played;
        EXPECT_EQ(is_third_repetition(*game), played >= 8) << played;
    }
    for (const auto& [fifty, times] : {std::pair{0, 0}, {3, 0}, {4, 1}, {7, 1}, {8, 2}, {255, 2}}) {
        game->fifty = static_cast<std::uint8_t>(fifty);
        EXPECT_EQ(is_repetition(*game) + is_third_repetition(*game), times) << fifty;
    }
    game->fifty = 12;
    game->draw_hash[8].lock ^= 1;
    game->draw_hash[4].key ^= 1;
    EXPECT_EQ(is_repetition(*game) + is_third_repetition(*game), 1);
}

struct Counts {
    int by_material = 0, by_fifty = 0, by_repetition = 0, promotions = 0;
};

/// Predicts for every legal move whether it draws, then makes it.
void expect_draws_foreseen(const Game& game, Counts& counts) {
    for (const Move move : every_legal_move(game)) {
        const auto next = std::make_unique<Game>(game);
        make_and_push(*next, move);
        ASSERT_EQ(draw_after_move(game, move), draw_by_rule(*next))
            << position_text(game) << ' ' << move_text(move) << " at " << +game.fifty;
        counts.by_fifty += is_fifty_move_draw(*next);
        counts.by_repetition += is_repetition(*next);
        counts.by_material += insufficient_material(*next);
        counts.promotions += is_promotion(move.kind) && insufficient_material(*next);
    }
}

TEST(Draws, PredictionMatchesTheMoveMade) {
    Counts counts;
    // To get repetitions, half of the moves go back to where the piece came from.
    RandomSource random(11);
    for (const KnownPosition& known : known_positions) {
        for (const int fifty : {0, 90}) {
            const auto game = game_from(known.text);
            game->fifty = static_cast<std::uint8_t>(fifty);
            for (int ply = 0; ply < 100; ++ply) {
                expect_draws_foreseen(*game, counts);
                std::vector<Move> moves = every_legal_move(*game);
                if (moves.empty()) break;
                const Move last = ply < 2 ? Move{} : game->game_moves[game->move_counter - 2];
                const Move back = {last.to, last.from, kind_quiet};
                const bool goes_back = random.below(2) == 0 && std::ranges::find(moves, back) != moves.end();
                play_move(*game, goes_back ? back : random_move(random, moves));
            }
        }
    }
    // Endgames in which captures and promotions leave insufficient material.
    for (unsigned round = 0; round < 4000; ++round) {
        std::string text(square_count, '1');
        std::size_t squares[5];
        for (std::size_t& square : squares) square = random.below(square_count);
        text[squares[0]] = 'K';
        if (text[squares[1]] != '1') continue;
        text[squares[1]] = 'k';
        for (const std::size_t square : {squares[2], squares[3], squares[4]}) {
            const bool last_ranks = square < 8 || square >= square_count - 8;
            if (text[square] == '1')
                text[square] = (last_ranks ? "11BNbn" : "11PPpp1BNRbnr")[random.below(last_ranks ? 6 : 13)];
        }
        const auto game = game_from(text + (random.below(2) == 0 ? " w - -" : " b - -"));
        game->fifty = static_cast<std::uint8_t>(round % 4 == 0 ? 98 + random.below(4) : random.below(256));
        expect_draws_foreseen(*game, counts);
        for (const Move move : every_legal_move(*game)) {
            if (move.kind == kind_double_step) expect_draws_foreseen(*after(*game, move), counts);
        }
    }
    EXPECT_GT(counts.by_material, 1000);
    EXPECT_GT(counts.by_fifty, 1000);
    EXPECT_GT(counts.by_repetition, 100);
    EXPECT_GT(counts.promotions, 20);
}

}  // namespace
}  // namespace varn
