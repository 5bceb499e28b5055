// Comparison of games after perft: which differences are found and reported.
#include <gtest/gtest.h>
#include <unistd.h>

#include "frontend/compare_games.h"
#include "positions.h"

namespace varn {
namespace {

TEST(CompareGames, ReportsEveryRelevantDifference) {
    constexpr std::pair<const char*, void (*)(Game&)> cases[] = {
        {"Zobrist keys do not match!\n", [](Game& g) { g.zobrist_key ^= 1; }},
        {"Zobrist locks do not match!\n", [](Game& g) { g.zobrist_lock ^= 1; }},
        {"the move counter does not match!\n", [](Game& g) { ++g.move_counter; }},
        {"the white king squares does not match!\n", [](Game& g) { ++g.wking_sqr; }},
        {"the black king squares does not match!\n", [](Game& g) { ++g.bking_sqr; }},
        {"material does not match!\n", [](Game& g) { ++g.material; }},
        {"the turn does not match!\n", [](Game& g) { g.turn = other(g.turn); }},
        {"the white castling rights do not match", [](Game& g) { g.w_castle ^= 1; }},
        {"the black castling rights do not match", [](Game& g) { g.b_castle ^= 1; }},
        {"cell array does not match!\n", [](Game& g) { g.cells[20] = 7; }},
        {"fifty move counter doesn't match!\n", [](Game& g) { ++g.fifty; }},
        {"BitBoard: r45b does not match!\n", [](Game& g) { g.r45b ^= 1; }},
        {"BitBoard: w_queens does not match!\n", [](Game& g) { g.w_queens ^= 1; }},
        {"BitBoard: b_pawns does not match!\n", [](Game& g) { g.b_pawns ^= 1; }},
        {"BitBoard: enpassant does not match!\n", [](Game& g) { g.enpassant ^= 1; }},
    };
    const auto compare = [](const Game& a, const Game& b) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        compare_games(a, b);
    };
    const auto sound = game_from(known_positions[1].text), spoilt = std::make_unique<Game>();
    sound->fifty = 100;  // a finished game must not end the report
    for (const auto& [message, spoil] : cases) {
        *spoilt = *sound;
        spoil(*spoilt);
        const std::string damage = is_consistent(*spoilt) ? "" : "cell array doesnt match bitboards: g\n";
        EXPECT_EXIT(compare(*spoilt, *sound), ::testing::ExitedWithCode(1),
                    '^' + (message + damage) + "GAMES NOT EQUAL!!!\n.*\n--------------------------\n.*\n\n$");
    }
    *spoilt = *sound;
    ++spoilt->w_material, ++spoilt->b_material, spoilt->pawn_key ^= 1, spoilt->pawn_lock ^= 1,
        spoilt->ep_side = other(sound->ep_side);
    EXPECT_EQ(printed([&] { compare_games(*sound, *spoilt); }), "");
}

}  // namespace
}  // namespace varn
