// The random numbers of the position hashes, and the hashes of a position computed from scratch.
// The numbers are drawn once, before any game exists, and never change after; they differ from run to run.
#pragma once

#include "board/game.h"
#include "board/geometry.h"

namespace varn {

/// By square and piece code, the key's number beside the lock's: the two are needed together. The key and the lock
/// differ in this table only; every number below goes into both.
extern PerSquare<Table<PositionKeys, piece_code_count>> zobrist_numbers;

extern std::uint64_t zobrist_side_number;            // black to move
extern PerSquare<std::uint64_t> zobrist_ep_numbers;  // by en-passant square
extern std::uint64_t w_kingside_number, w_queenside_number, b_kingside_number, b_queenside_number;  // a right is lost
extern std::uint64_t zobrist_null_number;  // a null move, on top of the side number

template <Side S> constexpr std::uint64_t& kingside_number() { return choose<S>(w_kingside_number, b_kingside_number); }
template <Side S> constexpr std::uint64_t& queenside_number() {
    return choose<S>(w_queenside_number, b_queenside_number);
}

/// What a number that goes into both changes.
constexpr PositionKeys in_both(std::uint64_t number) { return {number, number}; }

/// Draws all numbers above; equal seeds give equal numbers. Called once at start-up, before the first game.
void draw_hash_numbers(std::uint64_t seed);

/// The XOR of the numbers of all pieces, of the side to move and of the en-passant square. Castling rights are not in
/// it: their numbers join a game's keys as the rights are lost.
PositionKeys position_keys(const Game& game);

/// The same over the pawns only, with the side to move.
PositionKeys pawn_keys(const Game& game);

/// Sets the four hashes of the game to these from-scratch values.
void rehash(Game& game);

}  // namespace varn
