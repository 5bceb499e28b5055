#include "uci/moves.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "board/legality.h"
#include "board/notation.h"

namespace varn {

bool is_move_shaped(std::string_view text) {
    return (text.size() == 4 || text.size() == 5) && square_from_text(text) >= 0 &&
           square_from_text(text.substr(2)) >= 0;
}

// A piece may only stand behind a promotion: what is read must be what would be written.
std::optional<Move> read_move(const Game& game, std::string_view text) {
    if (!is_move_shaped(text)) return std::nullopt;
    const Move move = parse_move(game, text);
    const bool is_written_so = std::ranges::equal(text, move_text(move), [](char read, char written) {
        return std::tolower(static_cast<unsigned char>(read)) == written;
    });
    return is_written_so && is_valid_move(game, move) ? std::optional(move) : std::nullopt;
}

}  // namespace varn
