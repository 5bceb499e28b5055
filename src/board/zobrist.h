// Zobrist numbers and hashes computed from scratch. The numbers are drawn once at start-up, before the first game, and
// differ from run to run.
#pragma once

#include "board/game.h"
#include "board/geometry.h"

namespace varn {

/// By square and piece code. Key and lock use different numbers here; all numbers below are shared by both.
extern PerSquare<Table<PositionKeys, piece_code_count>> zobrist_numbers;

extern std::uint64_t zobrist_side_number;            // black to move
extern PerSquare<std::uint64_t> zobrist_ep_numbers;  // by en-passant square
extern std::uint64_t w_kingside_number, w_queenside_number, b_kingside_number, b_queenside_number;  // the right is lost
extern std::uint64_t zobrist_null_number;  // a null move, on top of the side number

template <Side S> constexpr std::uint64_t& kingside_number() { return choose<S>(w_kingside_number, b_kingside_number); }
template <Side S> constexpr std::uint64_t& queenside_number() {
    return choose<S>(w_queenside_number, b_queenside_number);
}

/// A shared number as a pair.
constexpr PositionKeys in_both(std::uint64_t number) { return {number, number}; }

/// Draws all numbers above; equal seeds give equal numbers. Called once at start-up.
void draw_hash_numbers(std::uint64_t seed);

/// XOR of the numbers of all pieces, the side to move and the en-passant square. Castling rights are not included: they
/// enter a game's keys when they are lost.
PositionKeys position_keys(const Game& game);

/// The same for pawns and the side to move only.
PositionKeys pawn_keys(const Game& game);

/// Sets the game's four hashes to these values.
void rehash(Game& game);

}  // namespace varn
