// Searches one after another in one engine, against a plain search by the same rules: what one search leaves behind is
// what the next one must find, whatever happened in between.
#include <gtest/gtest.h>

#include "plain_search.h"
#include "small_engine.h"

namespace varn {
namespace {

std::string told_by(Engine& engine, const SearchLimits& limits) {
    std::string told;
    SearchListener listener;
    listener.line_improved = [&](const SearchReport& report) {
        for (const std::uint32_t number : {report.nodes, report.quiescent_nodes}) told += std::to_string(number) + ' ';
        told = told + std::to_string(report.depth) + ' ' + std::to_string(report.score);
        for (int i = 0; i < report.line.length; ++i) told += ' ' + move_text(report.line.moves[i]);
        told += '\n';
    };
    listener.iteration_finished = listener.line_improved;
    const auto move = think(*engine.search, *engine.game, limits, listener);
    return told + (move ? move_text(*move) : "none") + '\n';
}

class SearchSequence : public testing::TestWithParam<int> {
protected:
    /// Does one thing that a player may do between two searches.
    void disturb() {
        switch (random.below(8)) {
            case 0: return start_game(engine), plain.clear();
            case 1:
                return set_game_position(engine, known_positions[random.below(known_positions.size())].text),
                       plain.clear();
            case 2: return take_back_moves(engine, static_cast<int>(random.below(4))), plain.clear();
            case 3:
                if (!in_check(*engine.game)) pass_turn(engine);
                return;
            default: return play();
        }
    }

    void play() {
        const std::vector<Move> moves = every_legal_move(*engine.game);
        if (!moves.empty()) play_move(*engine.game, moves[random.below(moves.size())]);
    }

    RandomSource random{static_cast<std::uint64_t>(GetParam())};
    SmallEngine engine;
    PlainSearch plain{engine.configuration.tables};
};

TEST_P(SearchSequence, TellsWhatThePlainSearchTells) {
    for (int search = 0; search < 12; ++search) {
        const int depth = 1 + static_cast<int>(random.below(5));
        const std::uint64_t nodes = random.below(3) == 0 ? 1 + random.below(2000) : no_node_limit;
        ASSERT_EQ(told_by(engine, {.depth = depth, .nodes = nodes}), plain.think(*engine.game, depth, nodes))
            << position_text(*engine.game) << " search " << search << " depth " << depth << " nodes " << nodes;
        for (std::uint64_t disturbances = random.below(3); disturbances > 0; --disturbances) disturb();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SearchSequence, testing::Range(1, 9));

}  // namespace
}  // namespace varn
