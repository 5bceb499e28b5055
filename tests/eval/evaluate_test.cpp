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

TEST(Evaluate, TermsMatchTheirTable) {
    const std::map<std::string, int (*)(const Game&)> terms = {
        {"placement", piece_placement}, {"own", terms_of_its_own},
        {"pawns", fresh_pawn_terms},    {"known_pawns", known_pawn_terms},
        {"shelter", king_shelter},      {"attack", king_attack},
        {"danger", attack_eval}};
    const std::map<std::string, int (*)(const Game&, int)> square_terms = {
        {"control", square_control}, {"rook", rook_mobility}, {"bishop", bishop_mobility}, {"knight", knight_mobility}};
    std::set<std::string> seen;
    for (const auto& row : table_rows("evaluation.txt")) {
        const std::string &term = row.at(0), text = full_text(row.at(1));
        const std::vector<std::string> parts = split(term, " ");
        const auto value = [&](const std::string& position, int flip) {
            const auto game = game_from(position);
            return parts.size() == 1 ? terms.at(term)(*game)
                                     : square_terms.at(parts[0])(*game, square_from_text(parts[1]) ^ flip);
        };
        EXPECT_EQ(value(text, 0), std::stoi(row.at(2))) << term << ' ' << text;
        EXPECT_EQ(value(mirrored_text(text), 56), std::stoi(row.at(3))) << term << ' ' << text;
        seen.insert(parts[0]);
    }
    EXPECT_EQ(seen.size(), terms.size() + square_terms.size());
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
