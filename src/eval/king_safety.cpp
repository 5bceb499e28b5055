#include "eval/king_safety.h"

#include <algorithm>

#include "board/attacks.h"
#include "eval/phase.h"
#include "eval/tables.h"

namespace varn {

namespace {

// --- Shelter ------------------------------------------------------------------------------------------------------

// In centipawns.
constexpr int full_shield = 20;
constexpr int missing_pawn = -5;
constexpr int missing_kingside_rook_pawn = -3;

/// The squares of a castled king of side S and its pawn shield.
struct Wing {
    Bitboard king_squares;
    Bitboard trapped_rooks;  // a rook here means that the king walked instead of castling: no shelter
    Bitboard left, middle, right;
    int missing_right;
};

template <Side S>
constexpr Wing kingside_wing = {own_squares<S>(g1),           own_squares<S>(h1),
                                ahead<S>(own_squares<S>(f1)), ahead<S>(own_squares<S>(g1)),
                                ahead<S>(own_squares<S>(h1)), missing_kingside_rook_pawn};
template <Side S>
constexpr Wing queenside_wing = {own_squares<S>(b1, c1),       own_squares<S>(a1, b1),
                                 ahead<S>(own_squares<S>(a1)), ahead<S>(own_squares<S>(b1)),
                                 ahead<S>(own_squares<S>(c1)), missing_pawn};

template <Side S> int shelter_on(const Game& g, const Wing& wing) {
    if ((king_of<S>(g) & wing.king_squares) == 0 || (rooks_of<S>(g) & wing.trapped_rooks) != 0) return 0;
    const Bitboard gaps = (wing.left | wing.middle | wing.right) & ~pawns_of<S>(g);
    if (gaps == 0) return full_shield;
    int score = 0;
    if ((gaps & wing.left) != 0) score += missing_pawn;
    // A fianchettoed bishop replaces the pawn, but doesn't earn the full bonus.
    if ((gaps & wing.middle & ~bishops_of<S>(g)) != 0) score += missing_pawn;
    if ((gaps & wing.right) != 0) score += wing.missing_right;
    return score;
}

}  // namespace

template <Side S> int king_shelter_of(const Game& g) {
    if (has_little_material<other(S)>(g)) return 0;
    return shelter_on<S>(g, kingside_wing<S>) + shelter_on<S>(g, queenside_wing<S>);
}

namespace {

// --- Attack -------------------------------------------------------------------------------------------------------

// Attack units of a piece in the enemy king's zone; the sum indexes the table below.
constexpr int queen_attack = 5;
constexpr int rook_attack = 3;
constexpr int minor_attack = 2;
constexpr int pawn_attack = 1;

/// Attack bonus in centipawns by attack units. A single piece is no attack, and each further one adds more.
constexpr Table<std::int32_t, 33> king_attack_weights = {{
    0,   0,   0,   0,   5,   10,  15,  20,  30,  50,  70,   //
    90,  120, 150, 200, 250, 300, 350, 400, 450, 500, 600,  //
    600, 600, 600, 600, 600, 600, 600, 600, 600, 600, 600,  //
}};

}  // namespace

template <Side S> int king_attack_of(const Game& g) {
    const Bitboard zone = king_zone[king_square_of<other(S)>(g)];
    const int count = queen_attack * popcount(queens_of<S>(g) & zone) + rook_attack * popcount(rooks_of<S>(g) & zone) +
                      minor_attack * popcount((knights_of<S>(g) | bishops_of<S>(g)) & zone) +
                      pawn_attack * popcount(pawns_of<S>(g) & zone);
    // Several promoted queens can exceed the table.
    return king_attack_weights[std::min(count, king_attack_weights.size() - 1)];
}

namespace {

// --- Control ------------------------------------------------------------------------------------------------------

/// Weight of a piece type's control of a square: the cheaper the piece, the higher.
constexpr Table<std::int32_t, 8> control_weights = {{50, 100, 660, 675, 450, 450, 450, 1000}};

/// Penalty by danger count.
constexpr Table<std::int32_t, 35> attack_eval_weights = {{
    0,   2,   3,   6,   12,  18,  25,  37,  50,  75,  100, 125,  //
    150, 175, 200, 225, 250, 275, 300, 325, 350, 375, 400, 425,  //
    450, 475, 500, 525, 550, 575, 600, 600, 600, 600, 600,       //
}};

/// How strongly side S controls a region: up to 3 per square, so the count always fits the table above.
template <Side S> int danger(const Game& g, Bitboard region) {
    int count = 0;
    while (region != 0) {
        const int control = sign_of<S> * square_control(g, pop_first(region));
        count += (control > 0 ? 1 : 0) + (control > 1000 ? 1 : 0) + (control > 3000 ? 1 : 0);
    }
    return count;
}

}  // namespace

template int king_shelter_of<Side::white>(const Game& game);
template int king_shelter_of<Side::black>(const Game& game);
template int king_attack_of<Side::white>(const Game& game);
template int king_attack_of<Side::black>(const Game& game);

int king_shelter(const Game& game) { return king_shelter_of<Side::white>(game) - king_shelter_of<Side::black>(game); }

int king_attack(const Game& game) { return king_attack_of<Side::white>(game) - king_attack_of<Side::black>(game); }

// The order of the attackers doesn't matter: x-rays depend only on the board. A king can capture only when no enemy
// attacker is left; if both kings attack the square neither can, and their weights cancel.
int square_control(const Game& game, int square) {
    int balance = 0;
    for (Bitboard attackers = attackers_of(game, square); attackers != 0;) {
        const int from = pop_first(attackers);
        const int code = game.cells[from];
        balance += side_of(code) == Side::white ? control_weights[type_of(code)] : -control_weights[type_of(code)];
        if (type_of(code) != king) attackers = add_xray(game, from, square, attackers);
    }
    return balance;
}

int attack_eval(const Game& game) {
    const int attack_on_black = danger<Side::white>(game, b_king_region[game.bking_sqr]);
    // Kept: docs/compatibility.md#attack-evaluation
    constexpr int white_allowance = 3;
    int attack_on_white = danger<Side::black>(game, w_king_region[game.wking_sqr]);
    if (attack_on_white > white_allowance) attack_on_white -= white_allowance;
    return attack_eval_weights[attack_on_black] - attack_eval_weights[attack_on_white];
}

}  // namespace varn
