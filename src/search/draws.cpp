#include "search/draws.h"

#include <algorithm>

#include "board/legality.h"
#include "board/make.h"
#include "board/side.h"
#include "search/score.h"

namespace varn {

namespace {

constexpr int fifty_move_limit = 100;  // plies

/// Whether the present position stood at least `times` before. Its own keys are the last of the list, and nothing
/// before the last pawn move or capture can match.
bool occurred_before(const Game& g, int times) {
    const int present = static_cast<int>(g.draw_hash_count) - 1;
    const int oldest = std::max(0, present - g.fifty);
    const PositionKeys keys = keys_of(g);
    for (int i = present - 1; i >= oldest; --i) {
        if (g.draw_hash[i] == keys && --times == 0) return true;
    }
    return false;
}

template <Side S> bool has_a_mating_man(const Game& g) {
    return (pawns_of<S>(g) | rooks_of<S>(g) | queens_of<S>(g)) != 0 ||
           has_at_least(bishops_of<S>(g) | knights_of<S>(g), 2);
}

}  // namespace

bool insufficient_material(const Game* game) {
    return !has_a_mating_man<Side::white>(*game) && !has_a_mating_man<Side::black>(*game);
}

bool is_repetition(const Game* game) { return occurred_before(*game, 1); }
bool is_third_repetition(const Game* game) { return occurred_before(*game, 2); }

bool draw_by_rule(const Game* game) {
    return game->fifty >= fifty_move_limit || insufficient_material(game) || is_repetition(game);
}

bool draw_after_move(Game* game, Move move) {
    UndoRecord undo;
    fill_undo(game, move, &undo);
    make_and_push(game, move);
    const bool drawn = draw_by_rule(game);
    retract_move(game, move, &undo);
    return drawn;
}

int node_status(Game* game, int line_ply) { return node_status(game, restraints_of(game), line_ply); }

int node_status(Game* game, const Restraints& restraints, int line_ply) {
    if (draw_by_rule(game)) return 0;
    if (has_legal_move(game, restraints)) return game_goes_on;
    if (restraints.checkers == 0) return 0;
    return game->turn == 1 ? mate_score - line_ply : line_ply - mate_score;
}

}  // namespace varn
