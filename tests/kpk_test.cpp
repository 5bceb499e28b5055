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

TEST(Kpk, KnowsTheEndingsOfTheTextbooks) {
    constexpr std::pair<const char*, bool> known[] = {
        {"4k3/8/4K3/4P3/8/8/8/8 w - -", true},  // the king on the sixth rank before his pawn, whoever moves
        {"4k3/8/4K3/4P3/8/8/8/8 b - -", true},
        {"4k3/4P3/4K3/8/8/8/8/8 w - -", true},   // the pawn stands on the seventh rank and gave no check there
        {"4k3/4P3/4K3/8/8/8/8/8 b - -", false},  // stalemate
        {"4k3/4P3/3K4/8/8/8/8/8 w - -", false},  // it gave check
        {"8/8/8/4k3/8/4K3/4P3/8 w - -", false},  // opposition: who moves gives way
        {"8/8/8/4k3/8/4K3/4P3/8 b - -", true},
        {"k7/8/1K6/8/P7/8/8/8 w - -", false},  // a rook's pawn and the right corner
        {"7k/8/6K1/8/7P/8/8/8 b - -", false},
        {"8/8/8/P3k3/8/8/8/7K w - -", true},  // outside the pawn's square and inside it
        {"8/8/8/P3k3/8/8/8/7K b - -", false},
        {"8/8/8/P2k4/8/8/8/7K w - -", false},
        {"8/8/8/8/k7/8/P7/7K w - -", false},
        {"8/8/8/8/6k1/8/P7/7K w - -", true},   // thanks to the double step
        {"8/5P1k/5K2/8/8/8/8/8 w - -", true},  // a queen would stalemate, a rook mates
        {"8/8/8/8/8/1k6/P7/7K w - -", false},  // the pawn falls
    };
    const auto wins = solve_kpk();
    for (const auto& [text, won] : known) EXPECT_EQ(is_won(*wins, *game_from(text)), won) << text;
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
