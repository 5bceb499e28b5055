#include "search/picker.h"

#include <limits>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "search/ordering.h"
#include "search/quiesce.h"
#include "search/search.h"
#include "search/transposition.h"

namespace varn {

namespace {

/// A list that is handed out from the front; what lies before `next` is gone.
struct Supply {
    MoveList list;
    std::int32_t next;

    bool empty() const { return next >= list.count; }
    void clear() {
        list.count = 0;
        next = 0;
    }
};

/// A move that came out of turn and must not come again.
struct PlayedMove {
    Move move;
    bool played;

    bool is(Move other) const { return played && move == other; }
    void set(Move given) {
        move = given;
        played = true;
    }
};

enum class Stage : std::uint8_t {
    hash_move,
    make_captures,
    good_captures,
    promotions,
    first_killer,
    second_killer,
    make_quiets,
    quiets,
    bad_captures,
    done,
};

/// One node's way through the stages. Each ply has its own, lists included, so that they survive the recursion.
struct Picker {
    Stage stage;
    Move current;           // the move last handed out
    Restraints restraints;  // of the side to move, once captures are made
    PlayedMove hash_move;
    PlayedMove killer_one;
    PlayedMove killer_two;
    Supply captures;  // the bad ones stay in it until the last stage
    Supply promotions;
    Supply quiets;
};

Table<Picker, ply_slots + 2> pickers;

/// What a picker needs to know of its node.
struct PickedNode {
    Game* game;
    int ply;
    int alpha;
    int beta;
    int depth;
    int line_ply;
};

/// Makes a move that is known to be legal and hands it out.
const Move* hand_out(const PickedNode& node, Picker& picker, Move move) {
    prefetch_child(node.game, move);
    save_undo(node.game, move, node.ply);
    search_stack[node.ply] = {move, node.game->cells[move.to]};
    make_and_push(node.game, move);
    picker.current = move;
    return &picker.current;
}

/// Makes a pseudo-legal move and hands it out, unless it leaves its own king attacked.
const Move* try_move(const PickedNode& node, Picker& picker, Move move) {
    UndoRecord* undo = save_undo(node.game, node.ply);
    if (!make_if_legal(node.game, move, node.ply, picker.restraints, undo)) return nullptr;
    push_keys(node.game);
    search_stack[node.ply].move = move;
    picker.current = move;
    return &picker.current;
}

const Move* pick_hash_move(const PickedNode& node, Picker& picker) {
    if (node.depth == 0) return nullptr;
    // One ply less than the node itself asked for: an entry too shallow to answer the node can still give its move.
    const HashEntry* entry = hash_probe(node.game, node.depth - 1);
    const Move* move = entry != nullptr && entry->has_move != 0
                           ? &entry->move
                           : iterative_deepening_move(node.game, node.ply, node.alpha, node.beta, node.depth);
    if (move == nullptr) return nullptr;
    picker.hash_move.set(*move);
    return hand_out(node, picker, picker.hash_move.move);
}

const Move* pick_capture(const PickedNode& node, Picker& picker, int lowest_score) {
    Supply& captures = picker.captures;
    while (!captures.empty()) {
        pick_best(&captures.list, captures.next);
        if (captures.list.scores[captures.next] < lowest_score) return nullptr;
        const Move move = captures.list.moves[captures.next++];
        if (picker.hash_move.is(move)) continue;
        prefetch_child(node.game, move);
        if (const Move* made = try_move(node, picker, move)) return made;
    }
    return nullptr;
}

const Move* pick_promotion(const PickedNode& node, Picker& picker) {
    Supply& promotions = picker.promotions;
    while (!promotions.empty()) {
        const Move move = promotions.list.moves[promotions.next++];
        if (picker.hash_move.is(move)) continue;
        if (const Move* made = try_move(node, picker, move)) return made;
    }
    return nullptr;
}

/// Brings the best quiet move that is left to the front and fetches its child's slots: they are on their way while the
/// move before it is searched.
void look_ahead(const PickedNode& node, Supply& quiets) {
    if (quiets.empty()) return;
    pick_best(&quiets.list, quiets.next);
    prefetch_child(node.game, quiets.list.moves[quiets.next]);
}

const Move* pick_quiet(const PickedNode& node, Picker& picker) {
    Supply& quiets = picker.quiets;
    while (!quiets.empty()) {
        const Move move = quiets.list.moves[quiets.next++];
        look_ahead(node, quiets);
        if (picker.hash_move.is(move) || picker.killer_one.is(move) || picker.killer_two.is(move)) continue;
        if (const Move* made = try_move(node, picker, move)) return made;
    }
    return nullptr;
}

const Move* pick_killer(const PickedNode& node, Picker& picker, Move killer, int piece, PlayedMove& slot) {
    if (!same_mover(node.game->cells[killer.from], piece)) return nullptr;
    if (picker.hash_move.is(killer) || !killer_valid(node.game, killer, picker.restraints)) return nullptr;
    slot.set(killer);
    return hand_out(node, picker, killer);
}

void fill_quiets(const PickedNode& node, MoveList& list) {
    add_quiets(node.game, &list);
    const bool deep = node.depth > iteration_depth / 2;
    if (deep && enhanced_transposition(node.game, &list, node.depth - 1, node.beta)) return;
    score_quiets(node.game, &list);
}

template <Side S> bool pawn_steps_to(const Game& g, int from, int to, int kind) {
    const Bitboard free = ~occupied(g);
    const Bitboard single = ahead<S>(bit_mask(from)) & free;
    if (kind == kind_quiet) return single == bit_mask(to);
    const bool at_home = rank_of(from) == own_rank<S>(2);
    return at_home && (ahead<S>(single) & free) == bit_mask(to);
}

bool reaches(const Game& g, Move move) {
    const Bitboard target = bit_mask(move.to);
    const int code = g.cells[move.from];
    switch (man_of(code)) {
        case king: return (king_moves[move.from] & target) != 0;
        case knight: return (knight_moves[move.from] & target) != 0;
        case bishop: return (bishop_reach(g, move.from) & target) != 0;
        case queen: return ((rook_reach(g, move.from) | bishop_reach(g, move.from)) & target) != 0;
        case pawn:
            return piece_colour(code) == 0 ? pawn_steps_to<Side::white>(g, move.from, move.to, move.kind)
                                           : pawn_steps_to<Side::black>(g, move.from, move.to, move.kind);
        default: return (rook_reach(g, move.from) & target) != 0;
    }
}

}  // namespace

bool killer_valid(Game* game, Move move) { return killer_valid(game, move, restraints_of(game)); }

bool killer_valid(Game* game, Move move, const Restraints& restraints) {
    if (move.kind != kind_quiet && move.kind != kind_double_step) return false;
    if (move.from == move.to || game->cells[move.from] == no_piece || game->cells[move.to] != no_piece) return false;
    return reaches(*game, move) && is_legal_under(restraints, game, move);
}

void start_picking(int ply) {
    Picker& picker = pickers[ply];
    picker.stage = Stage::hash_move;
    picker.hash_move.played = false;
    picker.killer_one.played = false;
    picker.killer_two.played = false;
    picker.captures.clear();
    picker.promotions.clear();
    picker.quiets.clear();
}

const Move* next_move(Game* game, int ply, int alpha, int beta, int depth, int line_ply) {
    const PickedNode node = {game, ply, alpha, beta, depth, line_ply};
    Picker& picker = pickers[ply];
    const int killer = killer_index(game, line_ply);
    const Move* made = nullptr;
    switch (picker.stage) {
        case Stage::hash_move:
            picker.stage = Stage::make_captures;
            if ((made = pick_hash_move(node, picker)) != nullptr) return made;
            [[fallthrough]];
        case Stage::make_captures:
            picker.restraints = restraints_of(game);
            add_captures(game, &picker.captures.list);
            score_captures(game, &picker.captures.list);
            picker.stage = Stage::good_captures;
            [[fallthrough]];
        case Stage::good_captures:
            if ((made = pick_capture(node, picker, 0)) != nullptr) return made;
            add_promotions(game, &picker.promotions.list);
            picker.stage = Stage::promotions;
            [[fallthrough]];
        case Stage::promotions:
            if ((made = pick_promotion(node, picker)) != nullptr) return made;
            picker.stage = Stage::first_killer;
            [[fallthrough]];
        case Stage::first_killer:
            picker.stage = Stage::second_killer;
            made = pick_killer(node, picker, killer_one[killer].move, killer_one_piece[killer], picker.killer_one);
            if (made != nullptr) return made;
            [[fallthrough]];
        case Stage::second_killer:
            picker.stage = Stage::make_quiets;
            made = pick_killer(node, picker, killer_two[killer].move, killer_two_piece[killer], picker.killer_two);
            if (made != nullptr) return made;
            [[fallthrough]];
        case Stage::make_quiets:
            fill_quiets(node, picker.quiets.list);
            look_ahead(node, picker.quiets);
            picker.stage = Stage::quiets;
            [[fallthrough]];
        case Stage::quiets:
            if ((made = pick_quiet(node, picker)) != nullptr) return made;
            picker.stage = Stage::bad_captures;
            [[fallthrough]];
        case Stage::bad_captures:
            if ((made = pick_capture(node, picker, std::numeric_limits<int>::min())) != nullptr) return made;
            picker.stage = Stage::done;
            [[fallthrough]];
        case Stage::done: return nullptr;
    }
    return nullptr;
}

}  // namespace varn
