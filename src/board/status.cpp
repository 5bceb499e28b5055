#include "board/status.h"

#include "board/attacks.h"
#include "board/draws.h"
#include "board/legality.h"

namespace varn {

bool is_over_by(const Game& game, GameStatus status) {
    switch (status) {
        case GameStatus::goes_on: return false;
        case GameStatus::mate: return in_check(game) && !has_legal_move(game);
        case GameStatus::stalemate: return !in_check(game) && !has_legal_move(game);
        case GameStatus::fifty_moves: return is_fifty_move_draw(game);
        case GameStatus::repetition: return is_repetition(game);
        case GameStatus::third_repetition: return is_third_repetition(game);
        case GameStatus::insufficient_material: return insufficient_material(game);
        case GameStatus::full_record: return record_is_full(game);
    }
    return false;
}

GameStatus status_of(const Game& game, std::initializer_list<GameStatus> ways) {
    for (const GameStatus way : ways) {
        if (is_over_by(game, way)) return way;
    }
    return GameStatus::goes_on;
}

bool is_playable(const Game& game) {
    const Bitboard pawns = game.w_pawns | game.b_pawns;
    return popcount(game.w_king) == 1 && popcount(game.b_king) == 1 && (pawns & (rank_masks[1] | rank_masks[8])) == 0;
}

}  // namespace varn
