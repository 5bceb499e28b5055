// Shared by all tests: positions, random games, and a board walk that uses none of the engine's tables.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/random.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "board/status.h"
#include "board/zobrist.h"
#include "tables.h"

namespace varn {

/// Hash numbers must be drawn before any game exists.
inline const bool hash_numbers_drawn = (draw_hash_numbers(20010911), true);

struct KnownPosition {
    std::string text;
    int depth;
    std::uint64_t leaves;  // perft count at that depth
};

inline const std::vector<KnownPosition> known_positions = [] {
    std::vector<KnownPosition> positions;
    for (const auto& row : table_rows("positions.txt")) {
        positions.push_back({row.at(0), std::stoi(row.at(1)), std::stoull(row.at(2))});
    }
    return positions;
}();

/// What `act` prints on standard output.
template <typename Act> std::string printed(Act act) {
    testing::internal::CaptureStdout();
    act();
    return testing::internal::GetCapturedStdout();
}

inline std::unique_ptr<Game> game_from(std::string_view text) {
    auto game = new_game();
    set_position(*game, text);
    complete_record(*game);  // keys depend on the position only
    return game;
}

/// The game for a text of a position and its halfmove clock.
inline std::unique_ptr<Game> game_of_row(const std::vector<std::string>& row) {
    auto game = game_from(row.at(0));
    game->fifty = static_cast<std::uint8_t>(std::stoi(row.at(1)));
    return game;
}

/// Equal except for the unused part of the key list.
inline bool same_game(Game a, const Game& b) {
    std::copy(b.draw_hash.begin() + b.draw_hash_count, b.draw_hash.end(), a.draw_hash.begin() + b.draw_hash_count);
    return a == b;
}

/// The position mirrored by rank with colours swapped, without an en-passant square.
inline std::string mirrored_text(std::string_view text) {
    const std::size_t blank = text.find(' ');
    std::string board;
    for (std::size_t start = 0, end; start < blank; start = end + 1) {
        end = std::min(text.find('/', start), blank);
        board.insert(0, start == 0 ? "" : "/").insert(0, text.substr(start, end - start));
    }
    std::string mirrored = board + std::string(text.substr(blank));
    constexpr char other_case = 'a' ^ 'A';
    for (char& letter : mirrored) letter = static_cast<char>(letter < 'A' ? letter : letter ^ other_case);
    mirrored[blank + 1] = text[blank + 1] == 'w' ? 'b' : 'w';
    return mirrored;
}

/// Whether all values except the hashes agree with the mailbox. Hashes are exact only relative to their start.
inline void expect_sound(const Game& game) {
    EXPECT_TRUE(is_consistent(game) && is_playable(game));
    EXPECT_EQ(occupied(game), game.w_pieces | game.b_pieces);
    EXPECT_EQ(game.r90, rotate_90(occupied(game)));
    EXPECT_EQ(game.r45f, rotate_45f(occupied(game)));
    EXPECT_EQ(game.r45b, rotate_45b(occupied(game)));
    int material[2] = {};
    for (const int code : game.cells) {
        if (code != no_piece) material[code / 8] += Table<int, 8>{{0, 950, 310, 300, 500, 500, 500, 100}}[code % 8];
    }
    EXPECT_EQ(game.w_material, material[0]);
    EXPECT_EQ(game.b_material, material[1]);
    EXPECT_EQ(game.material, material[0] - material[1]);
    // The pawn that made the double step must be there.
    const Bitboard pawns = game.ep_side == Side::white ? game.b_pawns << 8 : game.w_pawns >> 8;
    EXPECT_EQ(game.enpassant & (occupied(game) | ~pawns), 0U);
}

inline std::vector<Move> moves_of(const MoveList& list) {
    return {list.moves.begin(), list.moves.begin() + list.count};
}
inline std::vector<Move> pseudo_legal_moves(const Game& game) {
    MoveList list;
    generate_all(game, list);
    return moves_of(list);
}
inline std::vector<Move> pseudo_legal_captures(const Game& game) {
    MoveList list;
    generate_captures(game, list);
    return moves_of(list);
}
inline std::vector<Move> every_legal_move(const Game& game) { return moves_of(legal_moves(game)); }

inline std::unique_ptr<Game> after(const Game& game, Move move) {
    auto child = std::make_unique<Game>(game);
    make_move(*child, move);
    return child;
}

/// A position and moves played from it, in coordinate notation.
inline std::unique_ptr<Game> game_after(std::string_view text, std::initializer_list<const char*> moves) {
    auto game = game_from(text);
    for (const char* move : moves) play_move(*game, parse_move(*game, move));
    return game;
}

/// A random move of a non-empty list. Special moves (en passant, castling, promotions, double steps) get half of the
/// probability, so that random games contain enough of them.
inline Move random_move(RandomSource& random, std::vector<Move> moves) {
    const auto is_common = [](Move move) { return move.kind == kind_quiet || move.kind == kind_capture; };
    if (random.next() % 2 == 0 && !std::ranges::all_of(moves, is_common)) std::erase_if(moves, is_common);
    return moves[random.next() % moves.size()];
}

/// Plays up to `plies` random legal moves from every known position, and calls `visit(game)` in each position met.
template <typename Visit> void visit_random_games(std::uint64_t seed, int plies, Visit visit) {
    RandomSource random(seed);
    for (const KnownPosition& known : known_positions) {
        auto game = game_from(known.text);
        for (int ply = 0; ply <= plies; ++ply) {
            visit(*game);
            const std::vector<Move> moves = every_legal_move(*game);
            if (moves.empty() || !play_move(*game, random_move(random, moves))) break;
        }
    }
}

/// Both kings and up to `pieces` others on random squares, pawns on ranks 2 to 7; no castling. Either king may be in
/// check, also with the other side to move.
inline std::string random_position_text(RandomSource& random, unsigned pieces) {
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
    for (unsigned i = 0; i < pieces; ++i) place("QRBNPPqrbnpp"[random.next() % 12]);
    return squares + (random.next() % 2 == 0 ? " w - -" : " b - -");
}

/// Squares from `square` in the given direction, up to the edge or the first blocker, inclusive.
inline Bitboard walk(int square, int ranks, int files, Bitboard blockers) {
    Bitboard reached = 0;
    int rank = square / 8 + ranks, file = square % 8 + files;
    for (; rank >= 0 && rank < 8 && file >= 0 && file < 8; rank += ranks, file += files) {
        reached |= Bitboard{1} << (8 * rank + file);
        if ((blockers >> (8 * rank + file) & 1) != 0) break;
    }
    return reached;
}

}  // namespace varn
