#include "frontend/engine.h"

#include <algorithm>
#include <cstdlib>

#include "base/output.h"
#include "board/zobrist.h"

namespace varn {

namespace {

void switch_turn(Game& game) {
    game.turn = other(game.turn);
    game.zobrist_key ^= zobrist_side_number;
}

/// Makes the current position the base position.
void set_base_position(Engine& engine) {
    engine.base_position = *engine.game;
    engine.passes.clear();
}

}  // namespace

void allocate_tables(Engine& engine) {
    switch (allocate_tables(*engine.search, engine.configuration.tables)) {
        case TableFault::none: return;
        case TableFault::transposition:
            say_text("Cannot allocate enough memory for transposition hash tables.\n");
            break;
        case TableFault::quiescence: say_text("error: out of memory.\n"); break;
        case TableFault::pawns:
            say("error:  cannot allocate %d bytes for pawn hash tables.\n", engine.configuration.tables.phash_bytes);
            break;
    }
    std::exit(1);
}

void start_game(Engine& engine) {
    engine.game = new_game();
    set_base_position(engine);
    clear_tables(*engine.search);
}

void set_game_position(Engine& engine, std::string_view text) {
    print_remarks(set_position(*engine.game, text));
    start_from_read_position(engine);
}

void start_from_read_position(Engine& engine) {
    set_base_position(engine);
    clear_for_position(*engine.search);
    engine.book_enabled = false;
}

void pass_turn(Engine& engine) {
    switch_turn(*engine.game);
    std::vector<int>& passes = engine.passes;
    if (!passes.empty() && passes.back() == engine.game->move_counter) {
        passes.pop_back();  // two passes in a row cancel
    } else {
        passes.push_back(engine.game->move_counter);
    }
}

void take_back_moves(Engine& engine, int taken_back) {
    Game& game = *engine.game;
    const int kept = std::max(0, game.move_counter - std::max(0, taken_back));
    const Table<Move, max_game_moves> moves = game.game_moves;
    std::erase_if(engine.passes, [kept](int moves_before) { return moves_before >= kept; });
    game = engine.base_position;
    for (int i = 0; i < kept; ++i) {
        if (std::ranges::binary_search(engine.passes, i)) switch_turn(game);
        play_move(game, moves[i]);
    }
    clear_tables(*engine.search);
}

std::optional<Move> choose_move(Engine& engine, const Game& game, const SearchListener& listener) {
    Search& s = *engine.search;
    s.predicted_move.reset();
    if (engine.book_enabled) {
        if (const auto move = book_move(engine.book, game)) return move;
        engine.book_enabled = false;
    }
    prefault_tables(s.tables);  // before the clock starts
    return think(s, game, {.depth = engine.ply_limit}, listener);
}

void print_remarks(const PositionRemarks& remarks) {
    if (remarks.foreign_piece) {
        say_text("error: unrecognised character in EPD string.\n");
        std::exit(1);
    }
    if (remarks.foreign_side) say_text("error: unrecognised character in side to move field.\n");
    if (remarks.foreign_enpassant) say_text("enpassant not supported in EPD format yet.\n");
}

}  // namespace varn
