// Two searches side by side share nothing.
#include <gtest/gtest.h>

#include <thread>

#include "search/record.h"
#include "search_fixture.h"

namespace varn {
namespace {

/// All output of a search except times.
std::string told_by_a_search(const std::vector<std::string>& texts) {
    const auto s = small_search();
    std::string told;
    SearchListener listener;
    listener.search_started = [&] { told += "started\n"; };
    listener.line_improved = [&](const SearchReport& report) {
        told += position_text(report.game);
        for (const int number : {report.depth, report.score, static_cast<int>(report.nodes),
                                 static_cast<int>(report.quiescent_nodes), report.line.length}) {
            told += ' ' + std::to_string(number);
        }
        for (int i = 0; i < report.line.length; ++i) told += ' ' + move_text(report.line.moves[i]);
        told += '\n';
    };
    listener.iteration_finished = listener.line_improved;
    for (const std::string& text : texts) {
        const auto game = game_from(text);
        const auto move = think(*s, *game, {.depth = 5}, listener);
        told += move ? move_text(*move) : "none";
        told += s->predicted_move ? move_text(*s->predicted_move) + '\n' : "\n";
    }
    return told;
}

/// Thread sanitizers detect anything the two searches share.
TEST(SearchThreads, ConcurrentSearchesGiveTheSameResults) {
    const std::vector<std::string> texts[] = {{start_text, known_positions[2].text, known_positions[3].text},
                                              {middle_text, known_positions[4].text, known_positions[5].text}};
    const std::string alone[] = {told_by_a_search(texts[0]), told_by_a_search(texts[1])};
    std::string together[2];
    std::thread other([&] { together[1] = told_by_a_search(texts[1]); });
    together[0] = told_by_a_search(texts[0]);
    other.join();
    for (const int i : {0, 1}) {
        EXPECT_EQ(together[i], alone[i]);
        EXPECT_GT(std::ranges::count(alone[i], '\n'), 20);
    }
}

}  // namespace
}  // namespace varn
