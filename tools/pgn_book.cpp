// Builds an opening book out of games in PGN.
//
// Usage: pgn_book [--plies N] [--games N] file.pgn ... >book.dat
//
// A line of the book has up to N plies (20), and at least N games (3) began with it. Games that start from a set-up
// position are left out. Games that can't be read are named on the error stream, and the exit status is then 1; it is 2
// where a file itself fails.
#include <charconv>
#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>

#include "board/zobrist.h"
#include "book_builder.h"

namespace {

constexpr int some_unreadable = 1;
constexpr int unusable = 2;

// Of the engine's book: it is asked for the first 22 moves, and holds 10000 rows.
constexpr int most_plies = 22;
constexpr std::size_t most_rows = 10000;

struct Options {
    int plies = 20;
    int games = 3;
    std::vector<std::string> files;
};

std::optional<int> number(std::string_view text, int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && value >= 1 && value <= most ? std::optional(value) : std::nullopt;
}

std::optional<Options> read_options(const std::vector<std::string>& arguments) {
    constexpr int most_games = 1000000000;
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool plies = arguments[i] == "--plies";
        if (!plies && arguments[i] != "--games") {
            options.files.push_back(arguments[i]);
            continue;
        }
        const auto value =
            ++i < arguments.size() ? number(arguments[i], plies ? most_plies : most_games) : std::nullopt;
        if (!value) return std::nullopt;
        (plies ? options.plies : options.games) = *value;
    }
    return options.files.empty() ? std::nullopt : std::optional(options);
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = read_options({argv + 1, argv + argc});
    if (!options) {
        std::cerr << "usage: pgn_book [--plies 1.." << most_plies << "] [--games N] file.pgn ... >book.dat\n";
        return unusable;
    }
    varn::draw_hash_numbers(0);
    varn::BookNode root;
    varn::BookCounts all;
    for (const std::string& name : options->files) {
        std::ifstream file(name, std::ios::binary);
        const varn::BookCounts counts = varn::add_games(file, name, options->plies, root, std::cerr);
        if (!file.is_open() || file.bad()) {
            std::cerr << name << " can't be read\n";
            return unusable;
        }
        all.used += counts.used;
        all.set_up += counts.set_up;
        all.unreadable += counts.unreadable;
    }
    long games_per_row = 1;
    const auto rows = varn::book_rows(root, options->games, most_rows, games_per_row);
    for (const std::string& row : rows) std::cout << row << '\n';
    if (!std::cout.flush()) {
        std::cerr << "the book is incomplete: writing failed\n";
        return unusable;
    }
    std::cerr << all.used << " games used, " << all.set_up << " from a set-up position left out, " << all.unreadable
              << " not readable; " << rows.size() << " rows, " << games_per_row << " games a row\n";
    return all.unreadable == 0 ? 0 : some_unreadable;
}
