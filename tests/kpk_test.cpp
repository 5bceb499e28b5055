// King and pawn against king, solved: published sums, textbook endings, and every result against those behind its
// moves.
#include <gtest/gtest.h>

#include "board/attacks.h"
#include "patterns/kpk_solver.h"
#include "positions.h"
#include "process.h"

namespace varn {
namespace {

Placement placement_of(const Game& game) {
    return {static_cast<std::uint8_t>(game.wking_sqr), static_cast<std::uint8_t>(first_one(game.w_pawns)),
            static_cast<std::uint8_t>(game.bking_sqr)};
}

bool is_won(const KpkWins& wins, const Game& game) {
    return (game.turn == 0 ? wins.white_to_move : wins.black_to_move)[kpk_index(placement_of(game))];
}

TEST(Kpk, TheSumsOfTheSolvedPositionsAreThePublishedOnes) {
    const auto wins = solve_kpk();
    EXPECT_EQ(kpk_placements().size(), 2U * 81664);
    EXPECT_EQ(wins->white_to_move.count(), 2U * 62480);
    EXPECT_EQ(wins->black_to_move.count(), 2U * 48802);
}

/// Whether white wins after a legal move, by what is known of the positions behind it.
bool wins_after(const KpkWins& wins, Game game, Move move) {
    play_move(move, &game);
    if (game.turn == 0) return game.w_pawns != 0 && is_won(wins, game);
    if (!is_promotion(move.kind)) return is_won(wins, game);
    const std::vector<Move> replies = legal_moves(game);
    const bool loses_man = std::ranges::find(replies, kind_capture, &Move::kind) != replies.end();
    const bool is_major = move.kind == queen || move.kind == plain_rook;
    return is_major && !loses_man && (!replies.empty() || in_check(&game));
}

TEST(Kpk, EveryResultFollowsFromThoseOfTheMoves) {
    const auto wins = solve_kpk();
    const std::vector<Placement> placements = kpk_placements();
    for (std::size_t i = 0; i < placements.size(); i += 23) {
        auto game = game_from(placement_text(placements[i]));
        const auto wins_by = [&](Move move) { return wins_after(*wins, *game, move); };
        EXPECT_EQ(is_won(*wins, *game), std::ranges::any_of(legal_moves(*game), wins_by)) << position_text(game.get());
        game->turn = 1;
        const std::vector<Move> moves = legal_moves(*game);
        const bool lost = moves.empty() ? black_in_check(game.get()) : std::ranges::all_of(moves, wins_by);
        EXPECT_EQ(is_won(*wins, *game), lost) << position_text(game.get());
    }
}

TEST(Kpk, PrintsAScriptOfThePlacements) {
    const std::string output = run_console("pvp\ne2e4\nkpk\nepd\nback\n").output;
    std::size_t groups = 0;
    const std::string group = "\nepdshow\ngo\n";
    for (std::size_t at = output.find(group); at != std::string::npos; at = output.find(group, at + 1)) ++groups;
    EXPECT_EQ(groups, kpk_placements().size());
    EXPECT_NE(output.find("Varn> setboard 8/8/8/8/8/8/7P/5k1K w - - 0 1\nepdshow\ngo\nsetboard 8/8/8/8/8/8/7P/4k2K w"),
              std::string::npos);
    const std::string last = "K1k5/P7/8/8/8/8/8/8 w - -";
    EXPECT_NE(output.find("setboard " + last + " 0 1" + group + "Varn> "), std::string::npos);
    EXPECT_NE(output.find("Varn> EPD string is: " + last + "\nVarn> \nK#k#.#.#\nP.#.#.#.\n"), std::string::npos);
    EXPECT_TRUE(output.ends_with("\nwhite to play\n\nStalemate.\n"));  // the report of a game that is over
}

}  // namespace
}  // namespace varn
