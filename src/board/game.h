// The state of a game: the position, incrementally updated values, the moves played, and the keys of all positions
// since the start. There is no other board state; a `Game` is copied or replaced as a whole.
#pragma once

#include <memory>

#include "board/bits.h"
#include "board/move.h"

namespace varn {

/// Size of all arrays indexed by ply: plies 0 to 499.
inline constexpr int ply_slots = 500;
inline constexpr int last_ply = ply_slots - 1;

/// Maximum number of recorded moves. A game with a full record is over.
inline constexpr int max_game_moves = 1000;
/// Keys of the game's positions, followed by those of the current search line.
inline constexpr int draw_hash_slots = max_game_moves + 1 + ply_slots + 2;

// Castling rights of one side, in `w_castle` and `b_castle`.
inline constexpr std::uint32_t kingside_right = 1;
inline constexpr std::uint32_t queenside_right = 2;

/// Both hashes of a position: `key` selects a slot, `lock` verifies it.
struct PositionKeys {
    std::uint64_t key;
    std::uint64_t lock;

    constexpr PositionKeys& operator^=(PositionKeys other) {
        key ^= other.key;
        lock ^= other.lock;
        return *this;
    }
    friend constexpr PositionKeys operator^(PositionKeys a, PositionKeys b) { return a ^= b; }
    friend constexpr bool operator==(const PositionKeys&, const PositionKeys&) = default;
};

/// Invariants outside make and unmake: the side boards are the unions of the piece boards, no square is on two piece
/// boards, every rotated board has one bit per piece, `cells` and the boards agree, the king squares match the king
/// boards, and `material` is the difference of the two sums.
///
/// The hashes are incremental relative to the starting position, not functions of the position alone: castling rights
/// enter when they are lost, and the side to move never changes the pawn hashes.
struct Game {
    // The hot fields come first, in a few cache lines. Up to `ep_side` they match an undo record and are saved and
    // restored as one block.
    std::uint64_t zobrist_key, zobrist_lock;
    std::uint64_t pawn_key, pawn_lock;
    Bitboard enpassant;  // square passed over by a double step, if an enemy pawn attacks it
    std::uint32_t w_castle;
    std::uint32_t b_castle;
    // Piece values without kings, in centipawns; `material` is white's minus black's.
    std::int32_t material;
    std::int32_t w_material;
    std::int32_t b_material;
    std::uint8_t fifty;  // plies since the last pawn move or capture; a draw at 100, saturates at 255
    Side turn;           // to move
    Side ep_side;        // the side that may capture en passant; valid if `enpassant` is set

    std::int32_t wking_sqr;
    std::int32_t bking_sqr;
    std::uint32_t draw_hash_count;

    Bitboard w_pieces, b_pieces;  // including the king
    Bitboard w_bishops, b_bishops;
    Bitboard w_knights, b_knights;
    Bitboard w_rooks, b_rooks;  // of all three types
    Bitboard w_queens, b_queens;
    Bitboard w_pawns, b_pawns;
    Bitboard w_king, b_king;

    // Occupancy, on the plain board and three rotated ones, so that one shift extracts a line. They are updated
    // together, as one vector register.
    Bitboard pieces, r90, r45f, r45b;

    Table<PieceCode, square_count> cells;  // the mailbox

    Table<Move, max_game_moves> game_moves;
    std::int32_t move_counter;
    Table<PositionKeys, draw_hash_slots> draw_hash;

    friend constexpr bool operator==(const Game&, const Game&) = default;
};

/// A game in the starting position.
std::unique_ptr<Game> new_game();

/// Completes a game whose pieces, mailbox, counts and side to move are set: computes the rotated boards and the hashes,
/// and makes the position the only one in `draw_hash`.
void complete_record(Game& game);

constexpr bool record_is_full(const Game& game) { return game.move_counter >= max_game_moves; }

constexpr Bitboard occupied(const Game& game) { return game.pieces; }
constexpr PositionKeys keys_of(const Game& game) { return {game.zobrist_key, game.zobrist_lock}; }

}  // namespace varn
