#include "board/zobrist.h"

#include "base/random.h"

namespace varn {

PerSquare<Table<PositionKeys, piece_code_count>> zobrist_numbers;
std::uint64_t zobrist_side_number;
PerSquare<std::uint64_t> zobrist_ep_numbers;
std::uint64_t w_kingside_number;
std::uint64_t w_queenside_number;
std::uint64_t b_kingside_number;
std::uint64_t b_queenside_number;
std::uint64_t zobrist_null_number;

void draw_hash_numbers(std::uint64_t seed) {
    RandomSource source(seed);
    for (const auto part : {&PositionKeys::key, &PositionKeys::lock}) {
        for (auto& of_square : zobrist_numbers) {
            for (auto& numbers : of_square) numbers.*part = source.next();
        }
    }
    zobrist_side_number = source.next();
    for (auto& number : zobrist_ep_numbers) number = source.next();
    w_kingside_number = source.next();
    w_queenside_number = source.next();
    b_kingside_number = source.next();
    b_queenside_number = source.next();
    zobrist_null_number = source.next();
}

namespace {

PositionKeys keys_over(const Game& game, Bitboard pieces) {
    PositionKeys keys = {0, 0};
    while (pieces != 0) {
        const int square = pop_first(pieces);
        keys ^= zobrist_numbers[square][game.cells[square]];
    }
    return keys;
}

}  // namespace

PositionKeys position_keys(const Game& game) {
    PositionKeys keys = keys_over(game, occupied(game));
    if (game.turn == Side::black) keys ^= in_both(zobrist_side_number);
    if (game.enpassant != 0) keys ^= in_both(zobrist_ep_numbers[first_one(game.enpassant)]);
    return keys;
}

PositionKeys pawn_keys(const Game& game) {
    PositionKeys keys = keys_over(game, game.w_pawns | game.b_pawns);
    if (game.turn == Side::black) keys ^= in_both(zobrist_side_number);
    return keys;
}

void rehash(Game& game) {
    const PositionKeys position = position_keys(game);
    game.zobrist_key = position.key;
    game.zobrist_lock = position.lock;
    const PositionKeys pawns = pawn_keys(game);
    game.pawn_key = pawns.key;
    game.pawn_lock = pawns.lock;
}

}  // namespace varn
