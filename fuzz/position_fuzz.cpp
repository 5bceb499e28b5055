// Position text: whatever is read can be written and read again, and playable positions can be played.
#include <cstdlib>

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "board/status.h"
#include "board/zobrist.h"
#include "eval/evaluate.h"
#include "frame.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

void run_input(std::string_view input) {
    const auto game = varn::new_game();
    if (varn::set_position(*game, input).foreign_piece) return;
    varn::EvalContext context;
    require(varn::pawn_hash_allocate(context.pawns, 16));
    varn::evaluate(*game, context);
    if (!varn::is_playable(*game)) return;
    require(varn::is_consistent(*game));
    require(game->draw_hash[0] == varn::keys_of(*game));
    const std::string text = varn::position_text(*game);
    const auto again = varn::new_game();
    varn::set_position(*again, text);
    require(varn::position_text(*again) == text);

    varn::MoveList list;
    varn::generate_all(*game, list);
    for (const varn::Move move : list) {
        if (varn::is_legal(*game, move)) varn::san_text(*game, move);
        require(varn::parse_move(*game, varn::move_text(move)) == move);
    }
}
