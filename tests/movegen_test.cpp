// Generation, attacks and legality: published counts of the move tree, and every answer of the attack and legality
// tests against a plainer way to the same answer.
#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <tuple>

#include "board/attacks.h"
#include "board/notation.h"
#include "positions.h"

namespace varn {
namespace {

/// Leaves of the tree of legal moves. Every position inside the tree must know whether it has a legal move.
std::uint64_t count_leaves(Game& game, int depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    bool any = false;
    for (const Move move : moves_of(*generate_all(game, depth))) {
        const UndoRecord& undo = save_undo(game, move, depth);
        if (!make_if_legal(game, move, depth, undo)) continue;
        any = true;
        leaves += count_leaves(game, depth - 1);
        unmake_move(game, move, undo);
    }
    if (has_legal_move(game) != any) ADD_FAILURE() << position_text(game);
    return leaves;
}

TEST(MoveCounts, AsPublishedAndTheSameOnTheMirroredBoard) {
    for (const auto& [text, depth, leaves] : known_positions) {
        const auto game = game_from(text), mirrored = game_from(mirrored_text(text));
        EXPECT_EQ(count_leaves(game.get(), depth), leaves) << text;
        EXPECT_EQ(count_leaves(mirrored.get(), depth - 1), count_leaves(game.get(), depth - 1)) << text;
    }
}

std::string joined(const std::vector<Move>& moves) {
    std::string text;
    for (const Move move : moves) text += (text.empty() ? "" : " ") + move_text(move);
    return text;
}

TEST(Generation, CastlingRules) {
    constexpr std::pair<const char*, std::string_view> cases[] = {
        // ranks 4 to 1, what is generated of both castlings
        {"8/8/8/R3K2R", "e1g1 e1c1"},  {"4r3/8/8/R3K2R", ""},           // in check
        {"5r2/8/8/R3K2R", "e1c1"},     {"6r1/8/8/R3K2R", "e1c1"},       // f1 or g1 attacked
        {"3r4/8/8/R3K2R", "e1g1"},     {"2r5/8/8/R3K2R", "e1g1"},       // d1 or c1
        {"7r/8/8/R3K2R", "e1g1 e1c1"}, {"1r6/8/8/R3K2R", "e1g1 e1c1"},  // h1 and b1 may be
        {"8/8/7p/R3K2R", "e1c1"},      {"8/8/8/R3KB1R", "e1c1"},        // men in the way
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

TEST(Legality, ValidMovesAreExactlyTheGeneratedSafeOnes) {
    RandomSource random(4);
    visit_random_games(4, 60, [&](Game& game) {
        const auto number_of = [](Move move) { return move.from << 16 | move.to << 8 | move.kind; };
        std::set<int> generated, valid;
        std::vector<Move> candidates;
        constexpr std::uint8_t kinds[] = {0, 1, 2, 3, 4, 6, 7, 9, 10, 11, 14, 15, 0x11, 0x12, 0x20, 0x41, 0x42, 0xFF};
        const std::vector<Move> all = pseudo_legal_moves(game);
        for (const Move move : all) {
            EXPECT_TRUE(generated.insert(number_of(move)).second) << "twice: " << move_text(move);
            EXPECT_NE(game.cells[move.to] & 7, king) << move_text(move);
            const auto next = std::make_unique<Game>(game);
            make_move(next.get(), move);
            const bool white_checked = white_in_check(next.get()), black_checked = black_in_check(next.get());
            EXPECT_EQ(leaves_white_in_check(&game, move), white_checked);
            EXPECT_EQ(leaves_black_in_check(&game, move), black_checked);
            const bool is_safe = game.turn == 0 ? !white_checked : !black_checked;
            EXPECT_EQ(is_legal_under(pins_of(&game), &game, move), is_safe) << move_text(move);
            if (is_safe) valid.insert(number_of(move));
            for (const std::uint8_t kind : kinds) candidates.push_back({move.from, move.to, kind});
        }
        const auto byte = [&random] { return static_cast<std::uint8_t>(random.next()); };
        for (int i = 0; i < 50; ++i) candidates.push_back({byte(), byte(), kinds[byte() % std::size(kinds)]});
        for (const Move move : candidates) {
            EXPECT_EQ(is_valid_move(&game, move), valid.contains(number_of(move))) << move_text(move) << +move.kind;
        }
        const auto stages = std::make_unique<MoveList>();
        add_captures(&game, stages.get());
        add_promotions(&game, stages.get());
        EXPECT_EQ(moves_of(*generate_noisy(&game, 0)), moves_of(*stages));
        add_quiets(&game, stages.get());
        EXPECT_EQ(all, moves_of(*stages));
        ASSERT_FALSE(::testing::Test::HasFailure()) << position_text(&game);
    });
}

/// A king a side and up to `men` others anywhere, the pawns where pawns can stand; no castling. Either king may be in
/// check, also that of the side that has just moved.
std::string random_position_text(RandomSource& random, unsigned men) {
    std::string squares(square_count, '1');
    const auto place = [&](char letter) {
        const std::size_t square = random.next() % square_count;
        const bool taken = squares[square] == 'K' || squares[square] == 'k';
        const bool is_pawn = letter == 'P' || letter == 'p';
        if (!taken && (!is_pawn || (square >= 8 && square < 56))) squares[square] = letter;
        return !taken;
    };
    place('K');
    while (!place('k')) continue;
    for (unsigned i = 0; i < men; ++i) place("QRBNPPqrbnpp"[random.next() % 12]);
    return squares + (random.next() % 2 == 0 ? " w - -" : " b - -");
}

/// The squares that the man on `from` attacks, found without any table.
Bitboard attacked_from(const Game& game, int from) {
    const int man = game.cells[from] & 7, forwards = game.cells[from] < 8 ? 1 : -1;
    Bitboard attacked = 0;
    for (int ranks = -2; ranks <= 2; ++ranks) {
        for (int files = -2; files <= 2; ++files) {
            const int distance = ranks * ranks + files * files;  // 1 along a line, 2 on a diagonal, 5 a knight's
            const bool slides = (man == queen && (distance == 1 || distance == 2)) ||
                                (man == bishop && distance == 2) || (man >= 4 && man <= 6 && distance == 1);
            const bool steps = (man == king && (distance == 1 || distance == 2)) || (man == knight && distance == 5) ||
                               (man == pawn && distance == 2 && ranks == forwards);
            if (slides) attacked |= walk(from, ranks, files, occupied(game));
            if (steps) attacked |= walk(from, ranks, files, ~Bitboard{0});
        }
    }
    return attacked;
}

TEST(Attacks, AgreeWithAWalkFromEveryMan) {
    RandomSource random(6);
    for (unsigned round = 0; round < 2000; ++round) {
        const auto game = game_from(random_position_text(random, round % 25));
        Table<Bitboard, square_count> attackers{};
        for (int from = 0; from < square_count; ++from) {
            Bitboard attacked = game->cells[from] == no_piece ? 0 : attacked_from(*game, from);
            while (attacked != 0) attackers[pop_first(attacked)] |= bit_mask(from);
        }
        for (int square = 0; square < square_count; ++square) {
            ASSERT_EQ(attackers_of(game.get(), square), attackers[square]) << position_text(game.get()) << square;
            ASSERT_EQ(attacked_by_white(game.get(), square), (attackers[square] & game->w_pieces) != 0) << square;
            ASSERT_EQ(attacked_by_black(game.get(), square), (attackers[square] & game->b_pieces) != 0) << square;
        }
        const bool white = game->turn == 0;
        const Bitboard checkers =
            white ? attackers[game->wking_sqr] & game->b_pieces : attackers[game->bking_sqr] & game->w_pieces;
        EXPECT_EQ(in_check(game.get()), checkers != 0);
    }
}

}  // namespace
}  // namespace varn
