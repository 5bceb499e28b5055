// Evaluation terms on small positions that can be checked by hand, and symmetry of the evaluation.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "eval/context.h"
#include "eval/evaluate.h"
#include "eval/king_safety.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

/// From the board field only.
std::string full_text(std::string_view board) { return std::string(board) + " w - -"; }

/// The score with an empty pawn hash table and a fresh context.
int evaluation(const Game& game) {
    FreshContext context;
    return evaluate(game, context);
}
int evaluation(std::string_view text) { return evaluation(*game_from(text)); }

int fresh_pawn_terms(const Game& game) {
    FreshContext context;
    return pawn_terms(context.pawns, game);
}

/// The pawn score on a table hit.
int known_pawn_terms(const Game& game) {
    FreshContext context;
    pawn_terms(context.pawns, game);
    return pawn_terms(context.pawns, game);
}

/// The score without material, placement and pawns.
int terms_of_its_own(const Game& game) {
    return evaluation(game) - game.material - piece_placement(game) - known_pawn_terms(game);
}

/// Of e5, or of e4 on the mirrored board with black to move.
int control(const Game& game) { return square_control(game, game.turn == Side::white ? e1 + 32 : e1 + 24); }

TEST(Evaluate, TermsMatchTheirTable) {
    const std::map<std::string, int (*)(const Game&)> terms = {
        {"placement", piece_placement}, {"own", terms_of_its_own},
        {"pawns", fresh_pawn_terms},    {"known_pawns", known_pawn_terms},
        {"shelter", king_shelter},      {"attack", king_attack},
        {"control", control},           {"danger", attack_eval}};
    std::set<std::string> seen;
    for (const auto& row : table_rows("evaluation.txt")) {
        const std::string &term = row.at(0), text = full_text(row.at(1));
        EXPECT_EQ(terms.at(term)(*game_from(text)), std::stoi(row.at(2))) << term << ' ' << text;
        EXPECT_EQ(terms.at(term)(*game_from(mirrored_text(text))), std::stoi(row.at(3))) << term << ' ' << text;
        seen.insert(term);
    }
    EXPECT_EQ(seen.size(), terms.size());
}

TEST(Evaluate, Mobility) {
    const auto game = game_from("RN2k3/P7/8/2N5/3B4/2p1P3/r2b4/1r2K2R w - -");
    EXPECT_EQ(rook_mobility(*game, a8), -27);        // no free square
    EXPECT_EQ(rook_mobility(*game, b1), 9);          // a1, c1, d1 and six up the file
    EXPECT_EQ(bishop_mobility(*game, d1 + 24), 12);  // e5 to h8; all other diagonals are blocked
    EXPECT_EQ(knight_mobility(*game, b8), 3);        // a6, c6, d7
    const auto cramped = game_from("4k3/2p5/3p4/Pn6/RN5N/2p5/P5NR/4K3 w - -");
    EXPECT_EQ(rook_mobility(*cramped, a1 + 24), -13);  // one free square, none along the rank
    EXPECT_EQ(knight_mobility(*cramped, b1 + 32), 3);  // a3, a7, d4; own pieces on c3, c7, d6
    const auto few = game_from("4k3/3p4/8/4p3/1p1R1p1p/3p3R/7P/4K3 w - -");
    EXPECT_EQ(rook_mobility(*few, d1 + 24), 4);   // c4, e4, d5, d6
    EXPECT_EQ(rook_mobility(*few, h1 + 16), -4);  // three along the rank
}

TEST(Evaluate, TradesFavourTheSideAhead) {
    const auto game = game_from("4k3/8/8/8/8/8/8/QQ2K3 w - -");
    FreshContext context;
    const int plain = evaluate(*game, context);
    for (const auto& [material, w_flag, b_flag, gain] : {std::tuple{1900, true, false, 0},
                                                         {1901, true, false, 15},
                                                         {1901, false, true, -15},
                                                         {1901, false, false, 0}}) {
        context.root_material = material;
        context.w_trade_flag = w_flag;
        context.b_trade_flag = b_flag;
        EXPECT_EQ(evaluate(*game, context) - plain, gain) << material << w_flag << b_flag;
    }
}

TEST(Evaluate, IsTheSumOfTheDisplayedTerms) {
    std::set<std::string_view> seen;
    RandomSource random(8);
    visit_random_games(7, 60, [&](const Game& game) {
        FreshContext context;
        context.root_material = static_cast<int>(random.next() % 8000);
        context.w_trade_flag = random.next() % 2 == 0;
        context.b_trade_flag = random.next() % 2 == 0;
        const std::vector<EvalTerm> terms = evaluation_terms(game, context);
        FreshContext turned;
        turned.root_material = context.root_material;
        turned.w_trade_flag = context.b_trade_flag;
        turned.b_trade_flag = context.w_trade_flag;
        const std::string text = position_text(game);
        const auto mirrored = game_from(mirrored_text(text.substr(0, text.rfind(' ')) + " -"));
        const std::vector<EvalTerm> of_mirrored = evaluation_terms(*mirrored, turned);
        ASSERT_EQ(terms.size(), of_mirrored.size()) << text;
        int sum = 0;
        for (std::size_t i = 0; i < terms.size(); ++i) {
            const auto& [name, white, black] = terms[i];
            ASSERT_EQ(of_mirrored[i].name, name) << text;
            ASSERT_EQ(of_mirrored[i].white, black) << name << ' ' << text;
            ASSERT_EQ(of_mirrored[i].black, white) << name << ' ' << text;
            sum += white - black;
            if (white != 0 || black != 0) seen.insert(name);
        }
        ASSERT_EQ(sum, evaluate(game, context)) << text;
    });
    EXPECT_GT(seen.size(), 5U);
}

TEST(Evaluate, ChangesSignWhenTheBoardIsMirrored) {
    EXPECT_EQ(evaluation(known_positions[0].text), 0);
    const auto expect_mirrored = [](const std::string& text) {
        const int score = evaluation(text);
        ASSERT_EQ(evaluation(mirrored_text(text)), -score) << text;
        // Side to move and castling rights don't matter.
        ASSERT_EQ(evaluation(text.substr(0, text.find(' ')) + " b - -"), score) << text;
    };
    visit_random_games(3, 60, [&](const Game& game) {
        const std::string text = position_text(game).substr(0, position_text(game).rfind(' ')) + " -";
        expect_mirrored(text);
        ASSERT_EQ(evaluation(text), evaluation(game)) << text;
    });
    // Arbitrary boards: many pieces, pawns on the last ranks, a full board, no king; but never two.
    RandomSource random(4);
    for (int round = 0; round < 1000; ++round) {
        std::string board = "11111111/11111111/11111111/11111111/11111111/11111111/11111111/11111111";
        for (std::uint64_t pieces = random.next() % 100; pieces > 0; --pieces) {
            const char piece = "KQRBNPkqrbnp"[random.next() % 12];
            const bool second_king = (piece == 'K' || piece == 'k') && board.find(piece) != std::string::npos;
            char& square = board[random.next() % board.size()];
            if (square != '/' && !second_king) square = piece;
        }
        expect_mirrored(full_text(board));
        EXPECT_LE(std::abs(attack_eval(*game_from(full_text(board)))), 600);
    }
}

}  // namespace
}  // namespace varn
