// The evaluation term by term, each on positions small enough to add up by hand, and its symmetry on everything.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "base/memory.h"
#include "board/report.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "eval/pawns.h"
#include "eval/tables.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

constexpr Side white = Side::white;
constexpr Side black = Side::black;

/// A game at the position, with no pawns known yet and no search before it.
std::unique_ptr<Game> fresh_game(std::string_view text) {
    root_material = w_trade_flag = b_trade_flag = 0;
    pawn_hash_allocate();
    pawn_hash_clear();
    return game_from(text);
}

/// From the board field alone.
std::string full_text(std::string_view board) { return std::string(board) + " w - -"; }

int evaluation(const Game& game) { return evaluate(game, 0, -mate_score, mate_score); }

/// What `evaluate` adds to the material, the placement and the pawns.
int terms_of_its_own(const Game& game) {
    return evaluation(game) - game->material - piece_placement(game) - pawn_terms(game);
}

TEST(EvalTables, SquaresAndRegionsLieWhereTheyAreSeen) {
    EXPECT_EQ(king_squares_game<white>[c1], 10);
    EXPECT_EQ(king_squares_game<black>[c8], 10);
    EXPECT_EQ(pawn_squares<white>[e1 + 8], -40);
    EXPECT_EQ(pawn_squares<black>[e1 + 8], 20);
    EXPECT_EQ(passed_pawn_bonus<white>[h8 - 8], 120);
    EXPECT_EQ(passed_pawn_bonus<black>[g1 + 8], 126);
    EXPECT_EQ(king_zone[h1], Bitboard{0x070706});
    EXPECT_EQ(w_king_region[e1], Bitboard{0x1C1C14});
    EXPECT_EQ(popcount(w_king_region[e8]), 5);
    EXPECT_EQ(popcount(b_king_region[e8]), 8);
}

/// The pawns' score where the table knows them already.
int known_pawn_terms(const Game& game) {
    pawn_terms(game);
    return pawn_terms(game);
}

/// Of e5, or on the mirrored board, where black is to move, of e4.
int control(const Game& game) { return square_control(game, game->turn == 0 ? e1 + 32 : e1 + 24); }

TEST(Evaluate, TermsAreAsInTheirTable) {
    const std::map<std::string, int (*)(const Game&)> terms = {
        {"placement", piece_placement}, {"own", terms_of_its_own},
        {"pawns", pawn_terms},          {"known_pawns", known_pawn_terms},
        {"shelter", king_shelter},      {"attack", king_attack},
        {"control", control},           {"danger", attack_eval}};
    std::set<std::string> seen;
    for (const auto& row : table_rows("evaluation.txt")) {
        const std::string &term = row.at(0), text = full_text(row.at(1));
        EXPECT_EQ(terms.at(term)(fresh_game(text).get()), std::stoi(row.at(2))) << term << ' ' << text;
        EXPECT_EQ(terms.at(term)(fresh_game(mirrored_text(text)).get()), std::stoi(row.at(3))) << term << ' ' << text;
        seen.insert(term);
    }
    EXPECT_EQ(seen.size(), terms.size());
}

TEST(Evaluate, Mobility) {
    const auto game = fresh_game("RN2k3/P7/8/2N5/3B4/2p1P3/r2b4/1r2K2R w - -");
    EXPECT_EQ(rook_mobility(a8, game.get()), -27);        // nothing free
    EXPECT_EQ(rook_mobility(b1, game.get()), 9);          // a1, c1, d1 and six up the file
    EXPECT_EQ(bishop_mobility(d1 + 24, game.get()), 12);  // e5 to h8; men on all other ways
    EXPECT_EQ(knight_mobility(b8, game.get()), 3);        // a6, c6, d7
    const auto cramped = fresh_game("4k3/2p5/3p4/Pn6/RN5N/2p5/P5NR/4K3 w - -");
    EXPECT_EQ(rook_mobility(a1 + 24, cramped.get()), -13);  // one free square, none along the rank
    EXPECT_EQ(knight_mobility(b1 + 32, cramped.get()), 3);  // a3, a7, d4; own men on c3, c7, d6
    const auto few = fresh_game("4k3/3p4/8/4p3/1p1R1p1p/3p3R/7P/4K3 w - -");
    EXPECT_EQ(rook_mobility(d1 + 24, few.get()), 4);   // c4, e4, d5, d6
    EXPECT_EQ(rook_mobility(h1 + 16, few.get()), -4);  // three along the rank
}

TEST(Evaluate, TradesAreWelcomeToTheSideAhead) {
    const auto game = fresh_game("4k3/8/8/8/8/8/8/QQ2K3 w - -");
    const int plain = evaluation(game.get());
    for (const auto& [material, w_flag, b_flag, gain] :
         {std::tuple{1900, 1, 0, 0}, {1901, 1, 0, 15}, {1901, 0, 1, -15}, {1901, 0, 0, 0}}) {
        root_material = material;
        w_trade_flag = w_flag;
        b_trade_flag = b_flag;
        EXPECT_EQ(evaluation(game.get()) - plain, gain) << material << w_flag << b_flag;
    }
}

TEST(Evaluate, ChangesSignWhenTheBoardIsMirrored) {
    EXPECT_EQ(evaluation(fresh_game(known_positions[0].text).get()), 0);
    const auto expect_mirrored = [](const std::string& text) {
        const int score = evaluation(fresh_game(text).get());
        ASSERT_EQ(evaluation(fresh_game(mirrored_text(text)).get()), -score) << text;
        // Nor does it matter whose turn it is, or what may castle.
        ASSERT_EQ(evaluation(fresh_game(text.substr(0, text.find(' ')) + " b - -").get()), score) << text;
    };
    visit_random_games(3, 60, [&](const Game& game) {
        const std::string text = position_text(&game).substr(0, position_text(&game).rfind(' ')) + " -";
        pawn_hash_clear();
        const int score = evaluation(&game);
        expect_mirrored(text);
        ASSERT_EQ(evaluation(fresh_game(text).get()), score) << text;
    });
    // Any men anywhere: many of them, pawns on the last ranks, a full board, no king; but not two.
    RandomSource random(4);
    for (int round = 0; round < 1000; ++round) {
        std::string board = "11111111/11111111/11111111/11111111/11111111/11111111/11111111/11111111";
        for (std::uint64_t men = random.next() % 100; men > 0; --men) {
            const char man = "KQRBNPkqrbnp"[random.next() % 12];
            const bool second_king = (man == 'K' || man == 'k') && board.find(man) != std::string::npos;
            char& square = board[random.next() % board.size()];
            if (square != '/' && !second_king) square = man;
        }
        expect_mirrored(full_text(board));
        const auto game = fresh_game(full_text(board));
        EXPECT_LE(std::abs(attack_eval(game.get())), 600);
    }
}

// --- Pawns --------------------------------------------------------------------------------------------------------

TEST(PawnTable, KnowsThePawnsWhateverTheRooks) {
    const auto without_rook = fresh_game("4k3/8/4P3/8/8/8/8/4K3 w - -");
    const auto with_rook = game_from("4k3/8/4P3/8/8/8/4R3/4K3 w - -");
    EXPECT_EQ(pawn_hash_probe(with_rook.get()), nullptr);
    EXPECT_EQ(pawn_terms(without_rook.get()), 59);
    EXPECT_NE(pawn_hash_probe(with_rook.get()), nullptr);
    EXPECT_EQ(pawn_terms(with_rook.get()), 89);
    ++with_rook->pawn_lock;
    EXPECT_EQ(pawn_hash_probe(with_rook.get()), nullptr);
}

TEST(PawnTable, NothingOutlivesAClearHoweverManyFollow) {
    const auto game = fresh_game("4k3/8/4P3/8/8/8/8/4K3 w - -");
    pawn_hash_store(game.get(), 1, 0, 0);
    for (int clears = 1; clears <= 70000; ++clears) {
        pawn_hash_clear();
        ASSERT_EQ(pawn_hash_probe(game.get()), nullptr) << clears;
    }
}

TEST(Memory, BlocksAreZeroedAndNeverLargerThanTheMachine) {
    const auto block = zeroed_block<std::uint64_t>(1 << 20);
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(std::all_of(block.get(), block.get() + (1 << 20), [](std::uint64_t word) { return word == 0; }));
    EXPECT_EQ(zeroed_block<std::uint64_t>(std::uint64_t{1} << 60), nullptr);
    EXPECT_EQ(zeroed_block<std::uint64_t>((std::uint64_t{1} << 61) + 1), nullptr);  // 8 bytes, if it wrapped round
}

}  // namespace
}  // namespace varn
