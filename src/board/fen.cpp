#include "board/fen.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "board/attacks.h"
#include "board/make.h"
#include "board/notation.h"
#include "board/position.h"
#include "board/status.h"

namespace varn {

namespace {

constexpr std::string_view piece_letters = "KQRBNPkqrbnp";

bool contains(std::string_view letters, char c) { return letters.find(c) != std::string_view::npos; }

/// Removes the next field and the blanks before it from the text; empty at the end.
std::string_view take_field(std::string_view& text) {
    constexpr std::string_view blanks = " \t\r\n\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::string_view field = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(field.size());
    return field;
}

/// An integer from 0 to `highest`; nothing else may follow.
std::optional<int> counter(std::string_view field, int highest) {
    int number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    const bool is_whole = error == std::errc() && end == field.data() + field.size();
    return is_whole && number >= 0 && number <= highest ? std::optional(number) : std::nullopt;
}

// Each check returns a fault, or an empty text.

std::string row_fault(std::string_view row) {
    int squares = 0;
    for (const char c : row) {
        const bool is_digit = c >= '1' && c <= '8';
        if (!is_digit && !contains(piece_letters, c)) return "the board holds a foreign character";
        squares += is_digit ? c - '0' : 1;
    }
    return squares == 8 ? "" : "a rank of the board hasn't eight squares";
}

std::string board_fault(std::string_view board) {
    int rows = 1;
    for (std::size_t slash = board.find('/'); slash != std::string_view::npos; slash = board.find('/'), ++rows) {
        if (std::string fault = row_fault(board.substr(0, slash)); !fault.empty()) return fault;
        board.remove_prefix(slash + 1);
    }
    if (std::string fault = row_fault(board); !fault.empty()) return fault;
    return rows == 8 ? "" : "the board hasn't eight ranks";
}

std::string castling_fault(std::string_view field) {
    if (field == "-") return "";
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (!contains("KQkq", field[i])) return "a castling right is none of KQkq";
        if (contains(field.substr(0, i), field[i])) return "a castling right comes twice";
    }
    return "";
}

/// Checks a position whose fields are well formed.
std::string position_fault(const Game& game, std::string_view castling) {
    if (popcount(game.w_king) != 1 || popcount(game.b_king) != 1) return "there must be one king a side";
    if (!is_playable(game)) return "a pawn stands on the first or last rank";
    const bool is_open = game.turn == Side::white ? black_in_check(game) : white_in_check(game);
    if (is_open) return "the side that isn't to move is in check";
    const int rights = popcount(game.w_castle) + popcount(game.b_castle);
    if (castling != "-" && rights != static_cast<int>(castling.size()))
        return "a castling right has no king and rook at home";
    return "";
}

/// The last move must have been a double step over the square. As in make, the square is kept only if a pawn can
/// capture there.
template <Side S> std::string set_enpassant(Game& g, int square) {
    constexpr Side them = other(S);
    const Bitboard passed = bit_mask(square);
    const Bitboard way = passed | ahead<S>(passed);
    const bool was_passed =
        rank_of(square) == own_rank<S>(6) && (occupied(g) & way) == 0 && (pawns_of<them>(g) & behind<S>(passed)) != 0;
    if (!was_passed) return "no pawn has passed over the en-passant square";
    if ((pawn_attacks<them>[square] & pawns_of<S>(g)) != 0) {
        g.enpassant = passed;
        g.ep_side = S;
    }
    return "";
}

std::string read_enpassant(Game& game, std::string_view field) {
    if (field == "-") return "";
    const int square = field.size() == 2 ? square_from_text(field) : -1;
    if (square < 0) return "the en-passant field is no square";
    return game.turn == Side::white ? set_enpassant<Side::white>(game, square)
                                    : set_enpassant<Side::black>(game, square);
}

FenReading refuse(std::string fault) { return {nullptr, 1, std::move(fault)}; }

}  // namespace

FenReading read_fen(std::string_view text) {
    const std::string_view board = take_field(text);
    const std::string_view side = take_field(text);
    const std::string_view castling = take_field(text);
    const std::string_view enpassant = take_field(text);
    const std::string_view half_moves = take_field(text);
    const std::string_view moves = take_field(text);
    if (enpassant.empty()) return refuse("board, side, castling rights and en-passant square are needed");
    if (!take_field(text).empty()) return refuse("there is more than six fields");
    if (std::string fault = board_fault(board); !fault.empty()) return refuse(fault);
    if (side != "w" && side != "b") return refuse("the side to move is neither w nor b");
    if (std::string fault = castling_fault(castling); !fault.empty()) return refuse(fault);
    const auto fifty = half_moves.empty() ? 0 : counter(half_moves, 255);
    if (!fifty) return refuse("the half-move clock is no number from 0 to 255");
    const auto move_number = moves.empty() ? 1 : counter(moves, 1'000'000);
    if (!move_number) return refuse("the move number is none");

    FenReading reading = {new_game(), std::max(1, *move_number), {}};
    Game& game = *reading.game;
    set_position(game, std::string(board) + ' ' + std::string(side) + ' ' + std::string(castling) + " -");
    if (std::string fault = position_fault(game, castling); !fault.empty()) return refuse(fault);
    if (std::string fault = read_enpassant(game, enpassant); !fault.empty()) return refuse(fault);
    game.fifty = static_cast<std::uint8_t>(*fifty);
    complete_record(game);
    return reading;
}

std::string fen_text(const Game& game, int move_number) {
    return position_text(game) + ' ' + std::to_string(game.fifty) + ' ' + std::to_string(move_number);
}

}  // namespace varn
