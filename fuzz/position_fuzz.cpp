// A position's text: what can be read can be written and read again, and a playable position can be played in.
#include <cstdlib>

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position.h"
#include "board/zobrist.h"
#include "eval/evaluate.h"
#include "frame.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

void run_input(std::string_view input) {
    auto game = varn::new_game(false);
    varn::set_position(game.get(), input, varn::KeepTables::no);
    varn::evaluate(game.get(), 0, 0, 0);
    if (!varn::is_playable(game.get())) return;
    require(varn::is_consistent(game.get()));
    require(varn::keys_of(*game) == varn::position_keys(*game));
    const std::string text = varn::position_text(game.get());
    auto again = varn::new_game(false);
    varn::set_position(again.get(), text, varn::KeepTables::yes);
    require(varn::position_text(again.get()) == text);

    const varn::MoveList& list = varn::generate_all(game.get(), varn::scratch_slot);
    for (int i = 0; i < list->count; ++i) {
        if (varn::is_legal(game.get(), list->moves[i])) varn::san_text(list->moves[i], game.get());
        require(varn::parse_move(varn::move_text(list->moves[i]), game.get()) == list->moves[i]);
    }
    require(varn::position_text(game.get()) == text);
}
