// Generation, attacks and legality: published counts of the move tree, the order of the moves, and every answer of the
// attack and legality tests against a plainer way to the same answer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <set>
#include <tuple>

#include "board/attacks.h"
#include "board/notation.h"
#include "positions.h"

namespace varn {
namespace {

/// Leaves of the tree of legal moves. Every position inside the tree must know whether it has a legal move.
std::uint64_t count_leaves(Game* game, int depth) {
    if (depth == 0) return 1;
    std::uint64_t leaves = 0;
    bool any = false;
    for (const Move move : moves_of(*generate_all(game, depth))) {
        const UndoRecord* undo = save_undo(game, move, depth);
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

TEST(Generation, OrderIsFixed) {
    EXPECT_EQ(joined(pseudo_legal_moves(*new_game(false))),
              "g1h3 g1f3 b1c3 b1a3 h2h4 g2g4 f2f4 e2e4 d2d4 c2c4 b2b4 a2a4 h2h3 g2g3 f2f3 e2e3 d2d3 c2c3 b2b3 a2a3");

    auto white = game_from("1n2k3/P2p3p/8/4P3/3Q1n2/2N5/1B4P1/R3K2R b KQ -");
    play_move(parse_move("d7d5", white.get()), white.get());
    EXPECT_EQ(joined(pseudo_legal_moves(*white)),
              "a7b8q a7b8r a7b8b a7b8n e5d6 c3d5 h1h7 d4f4 d4d5 a7a8q a7a8r a7a8b a7a8n e1g1 e1c1 "
              "c3d1 c3b1 c3e2 c3a2 c3e4 c3a4 c3b5 b2c1 b2a3 h1g1 h1f1 a1d1 a1c1 a1b1 h1h2 h1h3 h1h4 h1h5 h1h6 "
              "a1a2 a1a3 a1a4 a1a5 a1a6 d4e4 d4c4 d4b4 d4a4 d4d1 d4d2 d4d3 d4g1 d4f2 d4e3 d4c5 d4b6 "
              "e1f1 e1d1 e1f2 e1e2 e1d2 g2g4 g2g3 e5e6");

    auto black = game_from("r3k2r/3N2p1/5n2/2b5/1q1p4/8/4P1p1/1RK4R w kq -");
    play_move(parse_move("e2e4", black.get()), black.get());
    EXPECT_EQ(joined(pseudo_legal_moves(*black)),
              "g2h1q g2h1r g2h1b g2h1n d4e3 f6e4 f6d7 h8h1 b4b1 e8d7 g2g1q g2g1r g2g1b g2g1n e8c8 "
              "f6g4 f6h5 f6d5 f6h7 f6g8 c5b6 c5a7 c5d6 c5e7 c5f8 h8g8 h8f8 a8d8 a8c8 a8b8 "
              "h8h2 h8h3 h8h4 h8h5 h8h6 h8h7 a8a1 a8a2 a8a3 a8a4 a8a5 a8a6 a8a7 b4c4 b4a4 "
              "b4b2 b4b3 b4b5 b4b6 b4b7 b4b8 b4e1 b4d2 b4c3 b4a5 b4a3 e8f7 e8e7 e8f8 e8d8 g7g5 d4d3 g7g6");
}

TEST(Generation, CastlingRules) {
    constexpr std::tuple<const char*, const char*, const char*, std::string_view> cases[] = {
        // ranks 4, 2 and 1, what is generated of both castlings
        {"8", "8", "R3K2R", "e1g1 e1c1"},  {"4r3", "8", "R3K2R", ""},           // in check
        {"5r2", "8", "R3K2R", "e1c1"},     {"6r1", "8", "R3K2R", "e1c1"},       // f1 or g1 attacked
        {"3r4", "8", "R3K2R", "e1g1"},     {"2r5", "8", "R3K2R", "e1g1"},       // d1 or c1
        {"7r", "8", "R3K2R", "e1g1 e1c1"}, {"1r6", "8", "R3K2R", "e1g1 e1c1"},  // h1 and b1 may be
        {"8", "7p", "R3K2R", "e1c1"},      {"8", "1n6", "R3K2R", "e1g1"},       // by a pawn, by a knight
        {"8", "8", "R3KB1R", "e1c1"},      {"8", "8", "R3K1nR", "e1c1"},        // men in the way
        {"8", "8", "RN2K2R", "e1g1"},      {"8", "8", "R1b1K2R", "e1g1"},      {"8", "8", "R2QK2R", "e1g1"},
    };
    for (const auto& [rank_4, rank_2, rank_1, expected] : cases) {
        const std::string text = std::string("4k3/8/8/8/") + rank_4 + "/8/" + rank_2 + '/' + rank_1 + " w KQ -";
        std::string on_the_eighth(expected);
        std::ranges::replace(on_the_eighth, '1', '8');
        for (const bool mirrored : {false, true}) {
            auto moves = pseudo_legal_moves(*game_from(mirrored ? mirrored_text(text) : text));
            std::erase_if(moves, [](Move move) { return !is_castling(move.kind); });
            EXPECT_EQ(joined(moves), mirrored ? on_the_eighth : expected) << text;
        }
    }
    auto game = game_from("4k3/8/8/8/5r2/8/8/R3K2R w KQ -");
    EXPECT_TRUE(is_legal(game.get(), {e1, g1, kind_kingside_castling}));
    EXPECT_FALSE(is_valid_move(game.get(), {e1, g1, kind_kingside_castling}));
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
            EXPECT_EQ(is_legal_under(restraints_of(&game), &game, move), is_safe) << move_text(move);
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
        EXPECT_EQ(moves_of(*generate_captures(&game, 0)), moves_of(*stages));
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

TEST(Legality, EitherSideHasALegalMoveIffTheGeneratorHasOneWereItToMove) {
    RandomSource random(5);
    int mates = 0, stalemates = 0;
    for (unsigned round = 0; round < 30000; ++round) {
        auto game = game_from(random_position_text(random, round % 10 + 2));
        for (int sides = 0; sides < 2; ++sides, game->turn ^= 1) {
            const bool expected = !legal_moves(*game).empty(), white = game->turn == 0;
            if (!expected) ++(in_check(game.get()) ? mates : stalemates);
            game->turn ^= round & 1;
            const bool found = white ? white_has_legal_move(game.get()) : black_has_legal_move(game.get());
            game->turn ^= round & 1;
            ASSERT_EQ(found, expected) << position_text(game.get());
        }
    }
    EXPECT_GT(mates, 10);
    EXPECT_GT(stalemates, 10);
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

TEST(Attacks, XrayAddsTheFirstManBehindIfItSlidesThatWay) {
    RandomSource random(7);
    for (int round = 0; round < 200 * square_count; ++round) {
        const auto game = game_from(random_position_text(random, 20));
        const int square = round % square_count, target = static_cast<int>(random.next() % square_count);
        const int ranks = square / 8 - target / 8, files = square % 8 - target % 8;
        const int length = std::max(std::abs(ranks), std::abs(files));
        Bitboard added = 0;
        if (length > 0 && (ranks == 0 || files == 0 || std::abs(ranks) == std::abs(files))) {
            const Bitboard behind = walk(square, ranks / length, files / length, occupied(*game)) & occupied(*game);
            const int man = behind == 0 ? pawn : game->cells[first_one(behind)] & 7;
            const bool slides = man != king && man != pawn;
            if (slides && (attacked_from(*game, first_one(behind)) & bit_mask(square)) != 0) added = behind;
        }
        const Bitboard set = random.next();
        ASSERT_EQ(add_xray(game.get(), square, target, set), set | added)
            << position_text(game.get()) << square << target;
    }
}

}  // namespace
}  // namespace varn
