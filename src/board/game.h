// The record of one whole game: the position, what is kept incrementally beside it, the moves played and the keys of
// every position since the start. There is no hidden board state: whoever holds a `Game` holds the game, and it is
// copied or replaced as a unit.
#pragma once

#include <memory>

#include "board/bits.h"
#include "board/move.h"

namespace varn {

/// Slots of every array that a search indexes by ply: plies 0 to 499.
inline constexpr int ply_slots = 500;
inline constexpr int last_ply = ply_slots - 1;

/// Moves that a game can record. A game whose record is full is over.
inline constexpr int max_game_moves = 1000;
/// Keys of the game's positions and, behind them, of the deepest line a search can stand in.
inline constexpr int draw_hash_slots = max_game_moves + 1 + ply_slots + 2;

// Castling rights of one side, as kept in `w_castle` and `b_castle`.
inline constexpr std::uint32_t kingside_right = 1;
inline constexpr std::uint32_t queenside_right = 2;

/// Both hashes of a position; the first addresses tables, the second confirms.
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

/// Invariants between any two calls of make and unmake: the side boards are the unions of the piece boards, no square
/// is in two boards, each rotated board holds one bit per piece, `cells` and the boards agree square by square, the
/// king squares are the bits of the king boards, and `material` is the difference of the two sums.
///
/// The four hashes are exact relative to their own starting value, not a function of the position alone: a castling
/// right counts from the moment it is lost, and the side to move never changes the pawn hashes.
struct Game {
    // What every search node reads and writes stands in front, in a few lines of the cache. The fields up to `ep_side`
    // are those of an undo record: they are saved and restored as one.
    std::uint64_t zobrist_key, zobrist_lock;
    std::uint64_t pawn_key, pawn_lock;
    Bitboard enpassant;  // the square just passed over by a double step, if an enemy pawn stands ready to capture there
    std::uint32_t w_castle;
    std::uint32_t b_castle;
    // Sums of the values of all pieces but the king, pawns included, in centipawns; `material` is positive when white
    // leads.
    std::int32_t material;
    std::int32_t w_material;
    std::int32_t b_material;
    std::uint8_t fifty;  // plies since the last pawn move or capture; 100 is a draw, and it stays at 255
    Side turn;           // to move
    Side ep_side;        // who may capture en passant; read only while there is a square

    std::int32_t wking_sqr;
    std::int32_t bking_sqr;
    std::uint32_t draw_hash_count;

    Bitboard w_pieces, b_pieces;  // all pieces of a side, king included
    Bitboard w_bishops, b_bishops;
    Bitboard w_knights, b_knights;
    Bitboard w_rooks, b_rooks;  // whatever their kind
    Bitboard w_queens, b_queens;
    Bitboard w_pawns, b_pawns;
    Bitboard w_king, b_king;

    // All pieces, on the plain board and on three rotated ones, each square at the bit that the map of the same name
    // gives, so that one shift takes out a line. They change together, as one wide register.
    Bitboard men, r90, r45f, r45b;

    Table<PieceCode, square_count> cells;  // the mailbox

    Table<Move, max_game_moves> game_moves;
    std::int32_t move_counter;
    Table<PositionKeys, draw_hash_slots> draw_hash;

    friend constexpr bool operator==(const Game&, const Game&) = default;
};

/// A game at the starting position.
std::unique_ptr<Game> new_game();

/// Completes a record whose pieces, mailbox, counts and side to move are set: the rotated boards, the four hashes from
/// scratch, and the present position as the only one in `draw_hash`.
void complete_record(Game& game);

constexpr bool record_is_full(const Game& game) { return game.move_counter >= max_game_moves; }

constexpr Bitboard occupied(const Game& game) { return game.men; }
constexpr PositionKeys keys_of(const Game& game) { return {game.zobrist_key, game.zobrist_lock}; }

}  // namespace varn
