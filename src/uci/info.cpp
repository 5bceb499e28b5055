#include "uci/info.h"

#include <algorithm>
#include <cstdlib>

#include "base/output.h"
#include "board/legality.h"
#include "board/notation.h"

namespace varn {

std::string score_text(int score) {
    constexpr int farthest_mate = mate_score - 500;
    if (std::abs(score) < farthest_mate) return "cp " + std::to_string(score);
    // A score from the table can be beyond the nearest mate.
    const int plies = std::max(1, mate_score - std::abs(score));
    const int moves = score > 0 ? (plies + 1) / 2 : -std::max(1, plies / 2);
    return "mate " + std::to_string(moves);
}

std::string pv_text(const Game& game, const PvLine& line) {
    Game after = game;
    std::string text;
    for (int i = 0; i < line.length && is_valid_move(after, line.moves[i]); ++i) {
        text += ' ' + move_text(line.moves[i]);
        make_move(after, line.moves[i]);
    }
    return text;
}

std::uint64_t speed_of(std::uint64_t nodes, std::uint32_t milliseconds) {
    return nodes * 1000 / std::max(1U, milliseconds);
}

std::string info_text(const SearchReport& report, std::uint32_t milliseconds, int hash_permille) {
    return "info depth " + std::to_string(report.depth) + " seldepth " +
           std::to_string(std::max(report.depth, report.selective_depth)) + " multipv " +
           std::to_string(report.line_number) + " score " + score_text(report.score) +
           (report.fails_high ? " lowerbound" : "") + " nodes " + std::to_string(report.search_nodes) + " nps " +
           std::to_string(speed_of(report.search_nodes, milliseconds)) + " hashfull " + std::to_string(hash_permille) +
           " time " + std::to_string(milliseconds) + " pv" + pv_text(report.game, report.line) + '\n';
}

void say_info(const std::string& text) { say_text("info string " + text + '\n'); }

}  // namespace varn
