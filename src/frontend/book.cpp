#include "frontend/book.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "base/file.h"
#include "board/legality.h"
#include "board/notation.h"

namespace varn {

namespace {

// Kept: docs/compatibility.md#book-rows
constexpr int last_book_ply = 20;       // no book moves after this ply
constexpr std::size_t move_length = 4;  // characters per move

/// The next row of the file without its line end; none at the end of the file.
std::optional<std::string> read_row(std::FILE* file) {
    char buffer[book_row_length + 1];
    if (std::fgets(buffer, sizeof buffer, file) == nullptr) return std::nullopt;
    std::string row = buffer;
    row.resize(row.find_last_not_of("\r\n") + 1);
    return row;
}

/// The game's moves in the form of a row; none if the game is too long for the book.
std::optional<std::string> text_of_game(const Game& game) {
    if (game.move_counter > last_book_ply + 1) return std::nullopt;
    std::string text;
    for (int i = 0; i < game.move_counter; ++i) text += move_text(game.game_moves[i]).substr(0, move_length);
    return text;
}

bool is_candidate(std::string_view row, std::string_view text) {
    const bool ends_by_comma = row.size() > text.size() && row[text.size()] == ',';
    return row.starts_with(text) && !ends_by_comma;
}

/// A random row among as many rows as continue the text, counted from the first such row: in a sorted book these are
/// the rows that continue it. Empty if there is none.
std::string_view draw_row(Book& book, std::string_view text) {
    const auto fits = [text](std::string_view row) { return is_candidate(row, text); };
    const auto candidates = std::ranges::count_if(book.rows, fits);
    if (candidates == 0) return {};
    const auto first = std::ranges::find_if(book.rows, fits);
    return first[static_cast<std::ptrdiff_t>(book.random.below(static_cast<std::uint64_t>(candidates)))];
}

}  // namespace

BookFault load_book(Book& book, const std::string& file_name, std::uint64_t seed) {
    book = {{}, RandomSource(seed)};
    const File file = open_for_reading(file_name.c_str());
    if (file == nullptr) return BookFault::no_file;
    while (auto row = read_row(file.get())) {
        if (book.rows.size() == book_capacity) return BookFault::too_long;
        book.rows.push_back(std::move(*row));
    }
    return BookFault::none;
}

std::optional<Move> book_move(Book& book, const Game& game) {
    const auto text = text_of_game(game);
    if (!text) return std::nullopt;
    std::string_view row = draw_row(book, *text);
    row.remove_prefix(std::min(text->size(), row.size()));
    const Move move = parse_move(game, row.substr(0, move_length));
    return is_valid_move(game, move) ? std::optional(move) : std::nullopt;
}

}  // namespace varn
