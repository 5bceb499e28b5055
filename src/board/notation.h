// Moves and squares as text. Coordinate notation ("e2e4", "e7e8q", "e1g1") is used for input and protocols, algebraic
// notation ("Nf3", "exd5", "e8Q", "O-O") for principal variations and test suites.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

/// "KQRBNP" for white pieces, lower case for black ones; all rook types are "R".
char piece_letter(int code);

/// "a1" to "h8"; "??" if the number isn't in 0..63.
std::string square_text(int square);

/// The square named by the first two characters, in either case; -1 if none.
int square_from_text(std::string_view text);

/// The move named by the text on this board, with the kind that the generator would give it. Reads five characters at
/// most. The move may be illegal and its squares off the board: see `is_valid_move`.
Move parse_move(const Game& game, std::string_view text);

/// Whether the first four characters are two squares, in either case.
bool names_two_squares(std::string_view text);

/// The legal move given by the whole text in coordinate notation, in either case.
std::optional<Move> read_move(const Game& game, std::string_view text);

/// Coordinate notation.
std::string move_text(Move move);

/// Algebraic notation of a legal move, 7 characters at most; `game` is the position before the move.
std::string san_text(const Game& game, Move move);
/// The same, right-aligned in 5 columns.
std::string san_column(const Game& game, Move move);

}  // namespace varn
