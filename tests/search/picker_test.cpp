// The move picker, compared with the legal moves: each comes once, in stage order, and the game is restored.
#include <gtest/gtest.h>

#include <tuple>

#include "board/legality.h"
#include "board/movegen.h"
#include "search/exchange.h"
#include "search/picker.h"
#include "search/search.h"
#include "search_fixture.h"

namespace varn {
namespace {

constexpr int ply = 3;
constexpr int line_ply = 2;
constexpr int quiet_stage = 5;

std::vector<Move> sorted(std::vector<Move> moves) {
    std::ranges::sort(moves, {}, [](Move move) { return std::tuple(move.from, move.to, move.kind); });
    return moves;
}

bool is_quiet(Move move) { return move.kind == kind_quiet || move.kind == kind_double_step; }

class PickerTest : public SearchTest {
protected:
    /// All moves of the picker, each unmade as a node does.
    std::vector<Move> drain(Game& game, int depth, int beta, std::optional<Move> first) {
        const Game before = game;
        std::vector<Move> moves;
        const Pins pins = pins_of(game);
        Picker picker = make_picker(s, pins, ply, line_ply, beta, depth, first);
        while (const auto made = next_move(s, game, picker)) {
            moves.push_back(*made);
            EXPECT_EQ(s.search_stack[ply].move, *made);
            EXPECT_EQ(s.search_stack[ply].captured, before.cells[made->to]);
            EXPECT_EQ(game.draw_hash[before.draw_hash_count], keys_of(*after(before, *made)));
            retract_move(game, *made, s.undo_stack[ply]);
            EXPECT_TRUE(same_game(game, before)) << position_text(before) << move_text(*made);
        }
        EXPECT_FALSE(next_move(s, game, picker));
        EXPECT_TRUE(same_game(game, before));
        return moves;
    }

    std::pair<int, int> place_of(const Game& game, Move move, std::optional<Move> first) const;

    /// The moves of the quiet stage, selected by history to the last one: what the picker hands out without selecting
    /// must come in the same order.
    std::vector<Move> quiets_by_selection(const Game& game, std::optional<Move> first) const {
        MoveList list;
        list.count = 0;
        add_quiets(game, list);
        score_quiets(list, game, s.history);
        std::vector<Move> moves;
        for (int i = 0; i < list.count; ++i) {
            pick_best(list, i);
            const Move move = list.moves[i];
            if (is_legal(game, move) && place_of(game, move, first).first == quiet_stage) moves.push_back(move);
        }
        return moves;
    }
};

/// The stage of a legal move, 0 to 6, and its score within scored stages.
std::pair<int, int> PickerTest::place_of(const Game& game, Move move, std::optional<Move> first) const {
    if (move == first) return {0, 0};
    const int i = killer_index(game, line_ply);
    if (game.cells[move.to] != no_piece || move.kind == kind_en_passant) {
        const int gain = exchange_gain(game, move);
        return {gain >= 0 ? 1 : 6, gain};
    }
    if (is_promotion(move.kind)) return {2, 0};
    const int mover = game.cells[move.from];
    if (is_quiet(move) && move == s.killers.killer_one[i].move && same_mover(mover, s.killers.killer_one_piece[i]))
        return {3, 0};
    if (is_quiet(move) && move == s.killers.killer_two[i].move && same_mover(mover, s.killers.killer_two_piece[i]))
        return {4, 0};
    return {quiet_stage, s.history[game.turn][move.from][move.to]};
}

TEST_F(PickerTest, ReturnsEachLegalMoveOnceInStageOrder) {
    RandomSource random(31);
    std::vector<std::pair<Move, int>> quiets_seen[2] = {{{{}, 0}}, {{{}, 0}}};  // by side, with their pieces
    const auto pick = [&](const auto& from) { return from[random.below(from.size())]; };
    int first_moves = 0, killers = 0;
    visit_random_games(32, 25, [&](Game& game) {
        const std::vector<Move> legal = every_legal_move(game);
        const int i = killer_index(game, line_ply);
        KillerSlot &one = s.killers.killer_one[i], &two = s.killers.killer_two[i];
        std::int32_t &one_piece = s.killers.killer_one_piece[i], &two_piece = s.killers.killer_two_piece[i];
        auto& quiets = quiets_seen[static_cast<int>(game.turn)];
        for (const Move move : legal) {
            s.history[game.turn][move.from][move.to] = static_cast<std::int32_t>(random.below(4));
            if (is_quiet(move)) quiets.emplace_back(move, game.cells[move.from]);
        }
        for (int round = 0; round < 4; ++round) {
            s.iteration_depth = 10;
            std::optional<Move> first;
            if (!legal.empty() && round != 0) first = pick(legal);
            // Killers from other positions and this one, of other piece types, and the first move itself.
            std::tie(one.move, one_piece) = pick(quiets);
            std::tie(two.move, two_piece) =
                quiets[quiets.size() - 1 - random.below(std::min<std::size_t>(quiets.size(), 9))];
            if (first && round == 1) one.move = *first;
            if (round == 2 && is_rook(type_of(two_piece))) two_piece = code_of(game.turn, plain_rook);
            if (round == 3) two_piece ^= 1;
            if (one.move == two.move) one.move = {};

            const std::vector<Move> moves = drain(game, 2, 11, first);
            ASSERT_EQ(sorted(moves), sorted(legal)) << position_text(game);
            std::pair<int, int> last = {0, 0};
            std::vector<Move> quiet_moves;
            for (const Move move : moves) {
                const auto place = place_of(game, move, first);
                if (place.first == quiet_stage) quiet_moves.push_back(move);
                ASSERT_TRUE(last.first < place.first || (last.first == place.first && last.second >= place.second))
                    << position_text(game) << " " << move_text(move);
                last = place;
                first_moves += place.first == 0;
                killers += place.first == 3 || place.first == 4;
            }
            ASSERT_EQ(quiet_moves, quiets_by_selection(game, first)) << position_text(game);
        }
    });
    EXPECT_GT(first_moves, 300);
    EXPECT_GT(killers, 300);
}

TEST_F(PickerTest, OrdersPromotionsAndEnhancedTranspositionMoves) {
    const auto game = game_from("8/P6k/8/8/8/8/7P/K7 w - -");
    const Move step = parse_move(*game, "h2h3");
    s.history[Side::white][a1][b1] = 1000;
    hash_store(table, *after(*game, step), 1, std::nullopt, -300, bound_lower);
    for (const auto& [deepest, first] : {std::pair{3, "h2h3"}, {4, "a1b1"}}) {
        s.iteration_depth = deepest;
        std::string text;
        for (const Move move : drain(*game, 2, 300, std::nullopt)) text += move_text(move) + " ";
        EXPECT_EQ(text.substr(0, 29), std::string("a7a8q a7a8r a7a8b a7a8n ") + first + " ");
    }
}

}  // namespace
}  // namespace varn
