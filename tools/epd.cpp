#include "epd.h"

#include <algorithm>
#include <cctype>
#include <istream>
#include <optional>
#include <ostream>
#include <vector>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "board/san_reader.h"
#include "board/status.h"
#include "progress.h"

namespace varn {

namespace {

/// Why a line is refused; empty if it isn't.
using Fault = std::string;

bool is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool is_one_of(std::string_view letters, char c) { return letters.find(c) != std::string_view::npos; }

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

// --- Tokens ---------------------------------------------------------------------------------------------------------

void skip_blanks(std::string_view& text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
}

/// The next token: a quoted text, a ";", or text up to one of these or a blank; empty at the end.
std::string_view take_word(std::string_view& text) {
    skip_blanks(text);
    std::size_t length = 0;
    if (text.starts_with('"')) {
        length = std::min(text.find('"', 1), text.size() - 1) + 1;
    } else if (text.starts_with(';')) {
        length = 1;
    } else {
        while (length < text.size() && !is_blank(text[length]) && !is_one_of("\";", text[length])) ++length;
    }
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

struct Operation {
    std::string_view opcode;
    std::vector<std::string_view> operands;
};

/// Move counters, as in FEN, may precede the first operation.
std::vector<Operation> operations_of(std::string_view text) {
    std::vector<Operation> operations;
    bool opened = false;
    for (std::string_view word = take_word(text); !word.empty(); word = take_word(text)) {
        if (word == ";") {
            opened = false;
        } else if (opened) {
            operations.back().operands.push_back(word);
        } else if (!operations.empty() ||
                   !std::ranges::all_of(word, [](char c) { return is_one_of("0123456789-", c); })) {
            operations.push_back({word, {}});
            opened = true;
        }
    }
    return operations;
}

const Operation* find_operation(const std::vector<Operation>& operations, std::string_view opcode) {
    const auto found = std::ranges::find(operations, opcode, &Operation::opcode);
    return found != operations.end() ? &*found : nullptr;
}

// --- The position ---------------------------------------------------------------------------------------------------

/// Needed because `set_position` accepts any board whose squares add up, and ends the process on an invalid letter.
Fault board_fault(std::string_view board) {
    constexpr int size = 8;
    int rows = 1;
    int squares = 0;
    for (const char c : board) {
        if (c == '/' && squares == size) {
            squares = 0;
            ++rows;
        } else if (c >= '1' && c <= '8') {
            squares += c - '0';
        } else if (is_one_of("KQRBNPkqrbnp", c)) {
            ++squares;
        } else {
            return "the board can't go on with " + quoted({&c, 1});
        }
    }
    return rows == size && squares == size ? "" : "the board doesn't have eight rows of eight squares";
}

/// Suites can't express an en-passant square. It is dropped if no pawn can capture there.
Fault enpassant_fault(std::string_view field, const Game& game) {
    if (field == "-") return "";
    const int square = field.size() == 2 ? square_from_text(field) : -1;
    if (square < 0) return quoted(field) + " is no en-passant square";
    const Bitboard pawns = game.turn == Side::white ? game.w_pawns : game.b_pawns;
    return (attackers_of(game, square) & pawns) == 0 ? "" : "a suite can't hold the capture en passant";
}

Fault fields_fault(std::string_view board, std::string_view side, std::string_view castling) {
    if (Fault fault = board_fault(board); !fault.empty()) return fault;
    if (side != "w" && side != "b") return quoted(side) + " is no side to move";
    const bool are_rights = !castling.empty() && castling.find_first_not_of("KQkq-") == std::string_view::npos;
    return are_rights ? "" : quoted(castling) + " are no castling rights";
}

/// Reads the four fields and sets up the position if they are valid; notes dropped castling rights.
Fault take_position(std::string_view& text, Game& game, std::string& note) {
    const std::string_view board = take_word(text);
    const std::string_view side = take_word(text);
    const std::string_view castling = take_word(text);
    const std::string_view enpassant = take_word(text);
    if (Fault fault = fields_fault(board, side, castling); !fault.empty()) return fault;

    const std::string fields = std::string(board) + ' ' + std::string(side) + ' ' + std::string(castling) + " -";
    set_position(game, fields);
    if (!is_playable(game)) return "the position needs one king a side and no pawn on the first or last rank";
    if (game.turn == Side::white ? black_in_check(game) : white_in_check(game))
        return "the side that isn't to move is in check";

    const auto rights = popcount(game.w_castle) + popcount(game.b_castle);
    if (rights != std::ranges::count_if(castling, [](char c) { return c != '-'; })) {
        note = "castling rights without king and rook at home are left out";
    }
    return enpassant_fault(enpassant, game);
}

// --- Moves ----------------------------------------------------------------------------------------------------------

/// Reads the best moves and writes them in the engine's notation.
Fault take_best_moves(const std::vector<Operation>& operations, Game& game, std::vector<std::string>& best) {
    const Operation* operation = find_operation(operations, "bm");
    if (operation == nullptr) {
        return find_operation(operations, "am") == nullptr ? "no best move" : "moves to avoid, but no best move";
    }
    for (std::string_view word : operation->operands) {
        while (word.ends_with(',')) word.remove_suffix(1);
        // Annotations separated from their move.
        if (word == "e.p." || word.find_first_not_of("!?+#") == std::string_view::npos) continue;
        const auto move = read_san(game, word);
        if (!move) return quoted(word) + " names no single legal move";
        const std::string text = san_text(game, *move);
        if (std::ranges::find(best, text) == best.end()) best.push_back(text);
    }
    return best.empty() ? "no best move" : "";
}

/// Other moves whose text occurs in the line.
std::string false_friends(const std::string& line, const std::vector<std::string>& best, Game& game) {
    std::string friends;
    for (const Move move : legal_moves(game)) {
        const std::string text = san_text(game, move);
        if (line.find(text) == std::string::npos || std::ranges::find(best, text) != best.end()) continue;
        friends += (friends.empty() ? "" : ", ") + text;
    }
    return friends;
}

std::string suite_line(const Game& game, const std::vector<std::string>& best,
                       const std::vector<Operation>& operations) {
    std::string line = position_text(game) + " bm";
    for (const std::string& text : best) line += ' ' + text;
    line += ';';
    for (const std::string_view opcode : {"dm", "id"}) {
        const Operation* operation = find_operation(operations, opcode);
        if (operation == nullptr || operation->operands.empty()) continue;
        line += ' ' + std::string(opcode) + ' ' + std::string(operation->operands.front()) + ';';
    }
    return line;
}

}  // namespace

Conversion convert_epd_line(std::string_view epd) {
    const auto game = new_game();
    std::string note;
    std::vector<std::string> best;
    if (Fault fault = take_position(epd, *game, note); !fault.empty()) return {{}, fault, {}};
    const std::vector<Operation> operations = operations_of(epd);
    if (Fault fault = take_best_moves(operations, *game, best); !fault.empty()) return {{}, fault, {}};

    const std::string line = suite_line(*game, best, operations);
    if (const std::string others = false_friends(line, best, *game); !others.empty()) {
        note += (note.empty() ? "" : "; ") + ("will count as solved, too: " + others);
    }
    return {line, {}, note};
}

int convert_epd(std::istream& epd, std::ostream& suite, std::ostream& messages) {
    Progress progress("lines", Result::to_standard_output);
    int refused = 0;
    std::string line;
    for (int number = 1; std::getline(epd, line); ++number) {
        progress.show(number);
        std::string_view rest = line;
        skip_blanks(rest);
        if (rest.empty() || rest.starts_with('#')) continue;
        const Conversion conversion = convert_epd_line(line);
        const bool converted = conversion.refusal.empty();
        if (converted) suite << conversion.line << '\n';
        if (!converted) ++refused;
        const std::string message = converted ? conversion.note : "refused: " + conversion.refusal;
        if (message.empty()) continue;
        progress.erase();
        messages << "line " << number << ": " << message << '\n';
    }
    return refused;
}

}  // namespace varn
