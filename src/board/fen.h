// Strict FEN reader and writer: positions that cannot be legal are refused with a reason.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "board/game.h"

namespace varn {

inline constexpr std::string_view start_fen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

struct FenReading {
    std::unique_ptr<Game> game;  // null if the text is refused
    int move_number = 1;
    std::string fault;  // the reason
};

/// Reads six fields; the two counters may be omitted. The en-passant square is kept only if a pawn can capture there,
/// and `fifty` is the halfmove clock, up to 255.
FenReading read_fen(std::string_view text);

/// All six fields.
std::string fen_text(const Game& game, int move_number);

}  // namespace varn
