#include "frontend/search_table.h"

#include "base/output.h"
#include "board/legality.h"
#include "board/notation.h"

namespace varn {

std::string line_text(const Game& game, const PvLine& line) {
    Game after = game;
    std::string text;
    for (int i = 0; i < line.length && is_valid_move(after, line.moves[i]); ++i) {
        text += san_column(after, line.moves[i]) + ' ';
        make_move(after, line.moves[i]);
    }
    return text;
}

void print_search_line(const SearchReport& report, QuiescentColumn column) {
    const std::string line = line_text(report.game, report.line);
    const std::uint32_t centiseconds = report.milliseconds / 10;
    if (column == QuiescentColumn::shown) {
        say("%3d%8d%8u%11u    %17u    %s\n", report.depth, report.score, centiseconds, report.nodes,
            report.quiescent_nodes, line.c_str());
    } else {
        say("%3d%8d%8u%11u    %s\n", report.depth, report.score, centiseconds, report.nodes, line.c_str());
    }
}

}  // namespace varn
