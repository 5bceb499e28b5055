// Moves and squares as text. Coordinate form ("e2e4", "e7e8q", "e1g1") is the form of all input and of the protocol;
// short algebraic form ("Nf3", "exd5", "e8Q", "O-O") is the form of the principal variation and of test suites.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

/// "K", "Q", "R", "B", "N", "P" for white pieces, the same in lower case for black ones; all rooks look alike.
char piece_letter(int code);

/// "a1" to "h8"; "??" for any number outside 0..63.
std::string square_text(int square);

/// The square that the first two characters name, the letter in either case; -1 where they name none.
int square_from_text(std::string_view text);

/// The move that the text names on this board, with the kind that the generator would give it. Reads no more than five
/// characters and never past the text. The squares of the result may lie outside the board, and the move need not be
/// possible: `is_valid_move` tells.
Move parse_move(const Game& game, std::string_view text);

/// Whether the first four characters name two squares of the board, the letters in either case.
bool names_two_squares(std::string_view text);

/// The legal move that the whole text is, in coordinate form of either case; none for any other text.
std::optional<Move> read_move(const Game& game, std::string_view text);

/// Coordinate form.
std::string move_text(Move move);

/// Short algebraic form of a legal move, 7 characters at most; `game` stands before the move.
std::string san_text(const Game& game, Move move);
/// The same right-aligned in 5 columns, as lines of moves are printed.
std::string san_column(const Game& game, Move move);

}  // namespace varn
