// Positions in Forsyth-Edwards notation, read whole: what isn't a legal position is refused with the reason.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

inline constexpr std::string_view start_fen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

struct FenReading {
    std::unique_ptr<Game> game;  // null where the text is refused
    int move_number = 1;
    std::string fault;  // why it is refused
};

/// Reads the six fields; the two counters may be left out. The en-passant square is kept where a pawn stands ready to
/// capture there, and `fifty` is the half-move clock, up to 255.
FenReading read_fen(std::string_view text);

/// The six fields.
std::string fen_text(const Game& game, int move_number);

}  // namespace varn
