// Input bytes choose moves, take-backs, null moves and positions; after each step all incremental values must equal a
// computation from scratch.
#include <cstdlib>
#include <vector>

#include "board/attacks.h"
#include "board/draws.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/position.h"
#include "board/status.h"
#include "board/zobrist.h"
#include "frame.h"

namespace {

constexpr const char* positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "r3k2r/1P4P1/8/8/8/8/1p4p1/R3K2R w KQkq -",
    "4k3/p1p1p1p1/8/1P1P1P1P/1p1p1p1p/8/P1P1P1P1/4K3 w - -",
};

void require(bool holds) {
    if (!holds) std::abort();
}

struct Step {
    varn::Move move;
    bool is_null;
    varn::UndoRecord undo;
};

/// Hashes include the numbers of lost rights and open null moves in addition to the sum over the pieces.
varn::PositionKeys expected_keys(const varn::Game& game, const varn::Game& base, int null_moves) {
    const std::uint32_t w_lost = base.w_castle & ~game.w_castle;
    const std::uint32_t b_lost = base.b_castle & ~game.b_castle;
    std::uint64_t number = null_moves % 2 != 0 ? varn::zobrist_null_number : 0;
    if ((w_lost & varn::kingside_right) != 0) number ^= varn::w_kingside_number;
    if ((w_lost & varn::queenside_right) != 0) number ^= varn::w_queenside_number;
    if ((b_lost & varn::kingside_right) != 0) number ^= varn::b_kingside_number;
    if ((b_lost & varn::queenside_right) != 0) number ^= varn::b_queenside_number;
    return varn::position_keys(game) ^ varn::in_both(number);
}

int material_of(const varn::Game& game, varn::Bitboard pieces) {
    int sum = 0;
    while (pieces != 0) sum += varn::piece_values[game.cells[varn::pop_first(pieces)]];
    return sum;
}

void require_sound(const varn::Game& game, const varn::Game& base, int null_moves) {
    const varn::Bitboard pieces = varn::occupied(game);
    require(varn::is_consistent(game) && varn::is_playable(game));
    require(game.r90 == varn::rotate_90(pieces) && game.r45f == varn::rotate_45f(pieces) &&
            game.r45b == varn::rotate_45b(pieces));
    require(game.w_material == material_of(game, game.w_pieces) && game.b_material == material_of(game, game.b_pieces));
    require(game.material == game.w_material - game.b_material);
    require(varn::keys_of(game) == expected_keys(game, base, null_moves));
    // The pawn hashes keep the side to move of the base position.
    varn::PositionKeys pawns = varn::pawn_keys(game);
    if (game.turn != base.turn) {
        pawns.key ^= varn::zobrist_side_number;
        pawns.lock ^= varn::zobrist_side_number;
    }
    require(varn::PositionKeys{game.pawn_key, game.pawn_lock} == pawns);
}

void take_back(varn::Game& game, const Step& step) {
    if (step.is_null) {
        varn::unmake_null(game, step.undo);
    } else {
        varn::retract_move(game, step.move, step.undo);
    }
}

/// Makes the chosen pseudo-legal move; returns false if there is none or it is illegal. All predictions about the move
/// must be right.
bool make_chosen(varn::Game& game, unsigned choice, Step& step) {
    varn::MoveList list;
    varn::generate_all(game, list);
    if (list.count == 0) return false;
    step.move = list.moves[choice % static_cast<unsigned>(list.count)];
    const varn::PositionKeys child = varn::child_keys(game, step.move);
    const bool is_draw = varn::draw_after_move(game, step.move);
    varn::save_undo(game, step.undo);
    if (!varn::make_if_legal(game, step.move, varn::pins_of(game), step.undo)) return false;
    require(varn::keys_of(game) == child);
    varn::push_keys(game);
    require(varn::draw_by_rule(game) == is_draw);
    return true;
}

}  // namespace

void run_input(std::string_view input) {
    constexpr std::size_t longest_line = 450;
    if (input.empty()) return;
    auto game = varn::new_game();
    const auto first = static_cast<unsigned char>(input[0]);
    varn::set_position(*game, positions[first % std::size(positions)]);
    varn::complete_record(*game);
    const auto base = std::make_unique<varn::Game>(*game);
    std::vector<Step> line;
    int null_moves = 0;
    for (const char c : input.substr(1)) {
        const auto choice = static_cast<unsigned char>(c);
        Step step = {};
        if (choice < 24 || line.size() == longest_line) {
            if (line.empty()) continue;
            null_moves -= line.back().is_null ? 1 : 0;
            take_back(*game, line.back());
            line.pop_back();
        } else if (choice < 32) {
            if (varn::in_check(*game)) continue;
            step.is_null = true;
            varn::make_null(*game, step.undo);
            ++null_moves;
            line.push_back(step);
        } else if (make_chosen(*game, choice - 32U, step)) {
            line.push_back(step);
        }
        require_sound(*game, *base, null_moves);
        require(varn::has_legal_move(*game) || !line.empty());
    }
    for (; !line.empty(); line.pop_back()) take_back(*game, line.back());
    require(varn::keys_of(*game) == varn::keys_of(*base) && game->cells == base->cells);
    require(game->draw_hash_count == base->draw_hash_count && game->fifty == base->fifty);
}
