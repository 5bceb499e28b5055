#include "book_builder.h"

#include <algorithm>
#include <ostream>

#include "board/make.h"
#include "board/notation.h"
#include "board/san_reader.h"
#include "progress.h"

namespace varn {

namespace {

/// The first `plies` moves of a game in coordinate notation; `problem` says where it becomes unreadable.
std::vector<std::string> line_of(const PgnGame& pgn, int plies, std::string& problem) {
    std::vector<std::string> line;
    const auto game = new_game();
    for (const std::string& text : pgn.moves) {
        if (std::ssize(line) == plies) return line;
        const auto move = read_san(*game, text);
        if (!move) {
            problem = "\"" + text + "\" is not a legal move after " + std::to_string(line.size()) + " moves";
            return line;
        }
        if (is_promotion(move->kind)) return line;
        line.push_back(move_text(*move));
        play_move(*game, *move);
    }
    if (std::ssize(line) < plies) problem = pgn.problem;
    return line;
}

void add_line(const std::vector<std::string>& line, BookNode& root) {
    BookNode* node = &root;
    ++node->games;
    for (const std::string& move : line) {
        node = &node->moves[move];
        ++node->games;
    }
}

/// Collects the rows of a node: those of its frequent moves, then one per share of games that continued otherwise. They
/// must be adjacent, and prefixes come first when sorted.
void collect_rows(const BookNode& node, const std::string& moves, long fewest_games, long games_per_row,
                  std::vector<std::string>& rows) {
    long elsewhere = node.games;
    for (const auto& [move, child] : node.moves) {
        if (child.games >= fewest_games) elsewhere -= child.games;
    }
    const bool ends_here = elsewhere == node.games;
    const long shares = ends_here ? (elsewhere + games_per_row - 1) / games_per_row : elsewhere / games_per_row;
    if (!moves.empty()) rows.insert(rows.end(), static_cast<std::size_t>(shares), moves + ',');
    for (const auto& [move, child] : node.moves) {
        if (child.games >= fewest_games) collect_rows(child, moves + move, fewest_games, games_per_row, rows);
    }
}

}  // namespace

BookCounts add_games(std::istream& pgn, const std::string& name, int plies, BookNode& root, std::ostream& complaints) {
    BookCounts counts;
    PgnReader reader(pgn);
    Progress progress("games of " + name, Result::to_file);
    while (const auto game = reader.next()) {
        progress.show(game->number);
        if (game->starts_from_position) {
            ++counts.set_up;
            continue;
        }
        std::string problem;
        const std::vector<std::string> line = line_of(*game, plies, problem);
        if (problem.empty()) {
            ++counts.used;
            add_line(line, root);
        } else {
            ++counts.unreadable;
            progress.erase();
            complaints << name << ": game " << game->number << ": " << problem << '\n';
        }
    }
    return counts;
}

std::vector<std::string> book_rows(const BookNode& root, long fewest_games, std::size_t most_rows,
                                   long& games_per_row) {
    std::vector<std::string> rows;
    for (games_per_row = 1;; games_per_row *= 2) {
        rows.clear();
        collect_rows(root, "", fewest_games, games_per_row, rows);
        if (rows.size() <= most_rows) return rows;
        // Every line keeps at least one row: if there are too many lines, only more frequent ones are kept.
        if (games_per_row >= root.games) return book_rows(root, 2 * fewest_games, most_rows, games_per_row);
    }
}

}  // namespace varn
