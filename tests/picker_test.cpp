// The move picker against the list of all legal moves: each comes once, in the order of the stages, and leaves no
// trace.
#include <gtest/gtest.h>

#include <tuple>

#include "search/exchange.h"
#include "search/picker.h"
#include "search_helpers.h"

namespace varn {
namespace {

using Picker = SearchTest;

constexpr int ply = 3;
constexpr int line_ply = 2;

std::vector<Move> sorted(std::vector<Move> moves) {
    std::ranges::sort(moves, {}, [](Move move) { return std::tuple(move.from, move.to, move.kind); });
    return moves;
}

/// Everything that the picker has to give, each move taken back as a node does.
std::vector<Move> drain(Game& game, int depth, int alpha, int beta) {
    const Game before = game;
    std::vector<Move> moves;
    start_picking(ply);
    while (const Move* made = next_move(&game, ply, alpha, beta, depth, line_ply)) {
        moves.push_back(*made);
        EXPECT_EQ(search_stack[ply].move, *made);
        EXPECT_EQ(search_stack[ply].captured, before.cells[made->to]);
        EXPECT_EQ(game.draw_hash[before.draw_hash_count], keys_of(*after(before, *made)));
        retract_move(&game, moves.back(), &undo_stack[ply]);
        EXPECT_TRUE(same_game(game, before)) << position_text(&before) << move_text(moves.back());
    }
    EXPECT_EQ(next_move(&game, ply, alpha, beta, depth, line_ply), nullptr);
    EXPECT_TRUE(same_game(game, before));
    return moves;
}

bool is_quiet(Move move) { return move.kind == kind_quiet || move.kind == kind_double_step; }

/// The stage that a legal move belongs to, 0 to 6; within a stage of scored moves, its score.
std::pair<int, int> place_of(const Game& game, Move move, const Move* hash_move) {
    if (hash_move != nullptr && move == *hash_move) return {0, 0};
    const int i = killer_index(&game, line_ply);
    if (game.cells[move.to] != no_piece || move.kind == kind_en_passant) {
        const int gain = exchange_value(&game, move) * (game.turn == 0 ? 1 : -1);
        return {gain >= 0 ? 1 : 6, gain};
    }
    if (is_promotion(move.kind)) return {2, 0};
    const int mover = game.cells[move.from];
    if (is_quiet(move) && move == killer_one[i].move && same_mover(mover, killer_one_piece[i])) return {3, 0};
    if (is_quiet(move) && move == killer_two[i].move && same_mover(mover, killer_two_piece[i])) return {4, 0};
    return {5, history[game.turn][move.from][move.to]};
}

TEST_F(Picker, HandsOutEachLegalMoveOnceStageByStage) {
    RandomSource random(31);
    std::vector<std::pair<Move, int>> quiets_seen[2] = {{{{}, 0}}, {{{}, 0}}};  // by side, with the men that made them
    const auto pick = [&](const auto& from) { return from[random.below(from.size())]; };
    int hash_moves = 0, killers = 0;
    visit_random_games(32, 25, [&](Game& game) {
        const std::vector<Move> legal = legal_moves(game);
        const int i = killer_index(&game, line_ply);
        auto& quiets = quiets_seen[game.turn];
        for (const Move move : legal) {
            history[game.turn][move.from][move.to] = static_cast<std::int32_t>(random.below(4));
            if (is_quiet(move)) quiets.emplace_back(move, game.cells[move.from]);
        }
        for (int round = 0; round < 4; ++round) {
            hash_clear();
            iteration_depth = 10;
            const Move* hash_move = legal.empty() || round == 0 ? nullptr : &legal[random.below(legal.size())];
            hash_store(&game, 1, hash_move, 0, bound_upper);
            // Killers of positions long gone and of this one, of men of another kind, and the hash move itself.
            std::tie(killer_one[i].move, killer_one_piece[i]) = pick(quiets);
            std::tie(killer_two[i].move, killer_two_piece[i]) =
                quiets[quiets.size() - 1 - random.below(std::min<std::size_t>(quiets.size(), 9))];
            if (hash_move != nullptr && round == 1) killer_one[i].move = *hash_move;
            if (round == 2 && is_rook(man_of(killer_two_piece[i])))
                killer_two_piece[i] = code_of(side_to_move(game), plain_rook);
            if (round == 3) killer_two_piece[i] ^= 1;
            if (killer_one[i].move == killer_two[i].move) killer_one[i].move = {};

            const std::vector<Move> moves = drain(game, 2, 10, 11);
            ASSERT_EQ(sorted(moves), sorted(legal)) << position_text(&game);
            std::pair<int, int> last = {0, 0};
            for (const Move move : moves) {
                const auto place = place_of(game, move, hash_move);
                ASSERT_TRUE(last.first < place.first || (last.first == place.first && last.second >= place.second))
                    << position_text(&game) << " " << move_text(move);
                last = place;
                hash_moves += place.first == 0;
                killers += place.first == 3 || place.first == 4;
            }
        }
    });
    EXPECT_GT(hash_moves, 300);
    EXPECT_GT(killers, 300);
}

TEST_F(Picker, AsksAShallowerSearchWhereTheTableHasNoMove) {
    visit_random_games(33, 4, [&](Game& game) {
        const auto legal = sorted(legal_moves(game));
        hash_clear();
        EXPECT_EQ(sorted(drain(game, 3, -full_window, full_window)), legal);
        hash_store(&game, 2, nullptr, 0, bound_exact);
        nodes = 0;
        EXPECT_EQ(sorted(drain(game, 3, 10, 11)), legal);
        EXPECT_EQ(sorted(drain(game, 2, 10, 12)), legal);
        EXPECT_EQ(nodes, 0U);  // not in a closed window, not at a shallow node
        EXPECT_EQ(sorted(drain(game, 3, 10, 12)), legal);
        EXPECT_GT(nodes, 0U);
    });
}

TEST_F(Picker, PromotionsComeInTheirOwnOrderAndAKnownChildBeforeQuietMoves) {
    const auto game = game_from("8/P6k/8/8/8/8/7P/K7 w - -");
    const Move step = parse_move("h2h3", game.get());
    history[0][a1][b1] = 1000;
    hash_store(after(*game, step).get(), 1, nullptr, -300, bound_lower);
    for (const auto& [deepest, first] : {std::pair{3, "h2h3"}, {4, "a1b1"}}) {
        iteration_depth = deepest;
        std::string text;
        for (const Move move : drain(*game, 2, 299, 300)) text += move_text(move) + " ";
        EXPECT_EQ(text.substr(0, 29), std::string("a7a8q a7a8r a7a8b a7a8n ") + first + " ");
    }
}

}  // namespace
}  // namespace varn
