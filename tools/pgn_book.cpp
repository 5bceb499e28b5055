// Builds an opening book from PGN games.
//
// The book is written after all games have been read, and replaces an old one atomically.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>

#include "base/file.h"
#include "base/number.h"
#include "board/zobrist.h"
#include "book_builder.h"

namespace {

constexpr int some_unreadable = 1;
constexpr int unusable = 2;

// Limits of the engine's book: moves per game and rows.
constexpr int most_plies = 22;
constexpr std::size_t most_rows = 10000;
constexpr int most_games = 1000000000;

void print_usage() {
    std::cout
        << "usage: pgn_book [--plies N] [--games N] --output book.dat file.pgn ...\n"
        << "Book lines have up to --plies plies (20; 1 to " << most_plies
        << ") and occur in at least --games games (3).\n"
        << "Games from set-up positions are skipped. Unreadable games are reported on standard error, and the exit\n"
        << "status is then 1; it is 2 if no book is written.\n";
}

struct Options {
    int plies = 20;
    int games = 3;
    std::string output;
    std::vector<std::string> files;
    std::string fault;  // empty if the options are valid
};

/// Reads a number from 1 to `most`, or records a fault.
void take_number(const std::string& option, const std::string& text, int most, int& value, Options& options) {
    if (const auto read = varn::read_number(text, 1, most)) {
        value = *read;
    } else {
        options.fault = option + " takes a number from 1 to " + std::to_string(most) + ", not \"" + text + "\"";
    }
}

Options read_options(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size() && options.fault.empty(); ++i) {
        const std::string& argument = arguments[i];
        if (!argument.starts_with("--")) {
            options.files.push_back(argument);
            continue;
        }
        const std::string value = i + 1 < arguments.size() ? arguments[++i] : "";
        if (argument == "--plies") {
            take_number(argument, value, most_plies, options.plies, options);
        } else if (argument == "--games") {
            take_number(argument, value, most_games, options.games, options);
        } else if (argument == "--output") {
            options.output = value;
        } else {
            options.fault = "unknown option " + argument;
        }
    }
    if (!options.fault.empty()) return options;
    if (options.output.empty()) options.fault = "--output is required";
    if (options.files.empty()) options.fault = "no PGN files given";
    for (const std::string& file : options.files) {
        std::error_code no_such_file;
        if (std::filesystem::equivalent(file, options.output, no_such_file))
            options.fault = "the book would replace " + file;
    }
    return options;
}

int complain(const std::string& text) {
    std::cerr << "pgn_book: " << text << '\n';
    return unusable;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments == std::vector<std::string>{"--help"}) {
        print_usage();
        return 0;
    }
    const Options options = read_options(arguments);
    if (!options.fault.empty()) return complain(options.fault + "; see --help");
    varn::draw_hash_numbers(0);
    varn::BookNode root;
    varn::BookCounts all;
    for (const std::string& name : options.files) {
        std::ifstream file(name, std::ios::binary);
        const varn::BookCounts counts = varn::add_games(file, name, options.plies, root, std::cerr);
        if (!file.is_open() || file.bad()) return complain("can't read " + name);
        all.used += counts.used;
        all.set_up += counts.set_up;
        all.unreadable += counts.unreadable;
    }
    long games_per_row = 1;
    const auto rows = varn::book_rows(root, options.games, most_rows, games_per_row);
    std::cerr << all.used << " games used, " << all.set_up << " from a set-up position left out, " << all.unreadable
              << " not readable; " << rows.size() << " rows, " << games_per_row << " games a row\n";
    if (rows.empty()) return complain("no line was played often enough: " + options.output + " isn't written");
    std::string text;
    for (const std::string& row : rows) text += row + '\n';
    if (!varn::write_whole_file(options.output, text)) return complain("can't write " + options.output);
    return all.unreadable == 0 ? 0 : some_unreadable;
}
