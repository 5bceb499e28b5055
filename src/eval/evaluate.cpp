#include "eval/evaluate.h"

#include "board/attacks.h"
#include "eval/king_safety.h"
#include "eval/phase.h"
#include "eval/tables.h"

namespace varn {

namespace {

// --- Weights, in centipawns ---------------------------------------------------------------------------------------

constexpr int rook_on_open_file = 13;
constexpr int open_file_beside_king = 10;
constexpr int rook_without_own_pawns = 8;
constexpr int bishop_pair_bonus = 25;
constexpr int trade_when_ahead = 15;
constexpr int rook_on_seventh = 20;
constexpr int two_on_seventh = 40;
constexpr int undeveloped_minor = -4;
constexpr int queen_out_early = -15;
constexpr int queen_for_two_rooks = 20;
constexpr int queen_supports_attack = 30;

constexpr int king_traps_rook = -10;
constexpr int centre_pawn_blocked = -20;
constexpr int free_rank_missing = -7;
constexpr int few_free_squares = -7;
constexpr int rook_trapped = -20;
constexpr int free_diagonal_square = 3;

// --- Terms, each from the side's own point of view ----------------------------------------------------------------

template <Side S> Bitboard rooks_on_open_files(const Game& g) {
    return rooks_of<S>(g) & ~whole_files(files_of(g.w_pawns | g.b_pawns));
}
template <Side S> int open_files(const Game& g) { return rook_on_open_file * popcount(rooks_on_open_files<S>(g)); }
template <Side S> int open_files_beside_king(const Game& g) {
    const int king_file = file_of(king_square_of<other(S)>(g));
    const Bitboard beside_king = file_masks[king_file] | adjacent_files[king_file];
    return open_file_beside_king * popcount(rooks_on_open_files<S>(g) & beside_king);
}
template <Side S> int half_open_files(const Game& g) {
    return rook_without_own_pawns * popcount(rooks_of<S>(g) & ~whole_files(files_of(pawns_of<S>(g))));
}

/// Two bishops; the colours of their squares are not checked.
template <Side S> int bishop_pair(const Game& g) { return has_at_least(bishops_of<S>(g), 2) ? bishop_pair_bonus : 0; }

/// The side ahead should trade.
template <Side S> int trades(const Game& g, const EvalContext& context) {
    const bool material_has_gone = total_material(g) < context.root_material;
    return material_has_gone && choose<S>(context.w_trade_flag, context.b_trade_flag) ? trade_when_ahead : 0;
}

template <Side S> int seventh_rank(const Game& g) {
    const Bitboard seventh = own_rank_mask<S>(7);
    const bool has_targets =
        (king_of<other(S)>(g) & own_rank_mask<S>(8)) != 0 || (pawns_of<other(S)>(g) & seventh) != 0;
    if (!has_targets || (rooks_of<S>(g) & seventh) == 0) return 0;
    return has_at_least((rooks_of<S>(g) | queens_of<S>(g)) & seventh, 2) ? two_on_seventh : rook_on_seventh;
}

template <Side S> int undeveloped_minors(const Game& g) {
    if (!is_developing<S>(g)) return 0;
    return undeveloped_minor * popcount((knights_of<S>(g) | bishops_of<S>(g)) & own_squares<S>(b1, c1, f1, g1));
}

/// Also counts against a side without a queen. Kept: docs/compatibility.md#early-queen
template <Side S> int early_queen(const Game& g) {
    return in_opening(g) && (queens_of<S>(g) & own_rank_mask<S>(1)) == 0 ? queen_out_early : 0;
}

template <Side S> int queen_against_rooks(const Game& g) {
    const bool only_queen = queens_of<S>(g) != 0 && queens_of<other(S)>(g) == 0;
    return only_queen && popcount(rooks_of<other(S)>(g)) == 2 ? queen_for_two_rooks : 0;
}

/// `safety_lead`: how much safer the own king is than the enemy's, in centipawns.
template <Side S> int queen_in_attack(const Game& g, int safety_lead) {
    return safety_lead > 50 && queens_of<S>(g) != 0 ? queen_supports_attack : 0;
}

// --- Placement, from the side's own point of view -----------------------------------------------------------------

template <Side S> int knight_targets(const Game& g, int square) {
    return popcount(knight_moves[square] & ~pieces_of<S>(g));
}

template <Side S> int king_placement(const Game& g) {
    const SquareValues& squares = has_little_material<other(S)>(g) ? king_squares_end<S> : king_squares_game<S>;
    int score = 0;
    for (Bitboard left = king_of<S>(g); left != 0;) score += squares[pop_first(left)];
    if ((rooks_of<S>(g) & own_squares<S>(g1, h1)) != 0) {
        score += king_traps_rook * popcount(king_of<S>(g) & own_squares<S>(f1, g1));
    }
    return score;
}

template <Side S> int queen_placement(const Game& g) {
    int score = 0;
    for (Bitboard left = queens_of<S>(g); left != 0;) {
        score += king_tropism(queen, pop_first(left), king_square_of<other(S)>(g));
    }
    return score;
}

template <Side S> int rook_placement(const Game& g) {
    int score = 0;
    for (Bitboard left = rooks_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        score += rook_squares<S>[square] + rook_mobility(g, square) +
                 king_tropism(plain_rook, square, king_square_of<other(S)>(g));
    }
    return score;
}

template <Side S> int bishop_placement(const Game& g) {
    int score = 0;
    for (Bitboard left = bishops_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        score += bishop_squares<S>[square] + bishop_mobility(g, square) +
                 king_tropism(bishop, square, king_square_of<other(S)>(g));
    }
    return score;
}

template <Side S> int knight_placement(const Game& g) {
    int score = 0;
    for (Bitboard left = knights_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        score += knight_squares<S>[square] + knight_targets<S>(g, square) +
                 king_tropism(knight, square, king_square_of<other(S)>(g));
    }
    return score;
}

/// A knight or bishop in front of an unmoved centre pawn.
template <Side S> int blocked_centre(const Game& g) {
    const Bitboard before_pawns = ahead<S>(pawns_of<S>(g) & ahead<S>(own_squares<S>(d1, e1)));
    return centre_pawn_blocked * popcount((knights_of<S>(g) | bishops_of<S>(g)) & before_pawns);
}

/// In the endgame kings should be close to pawns of either colour: to protect their own or stop the enemy's.
template <Side S> int kings_near_pawns(const Game& g) {
    if (!has_little_material<other(S)>(g)) return 0;
    const auto& from_own_king = square_distance[king_square_of<S>(g)];
    const auto& from_enemy_king = square_distance[king_square_of<other(S)>(g)];
    int score = 0;
    for (Bitboard left = pawns_of<S>(g); left != 0;) {
        const int square = pop_first(left);
        score += from_enemy_king[square] - from_own_king[square];
    }
    return score;
}

/// Without the pawns' square values, which come from the pawn hash table.
template <Side S> int placement(const Game& g) {
    return king_placement<S>(g) + queen_placement<S>(g) + rook_placement<S>(g) + bishop_placement<S>(g) +
           knight_placement<S>(g) + blocked_centre<S>(g) + kings_near_pawns<S>(g);
}

// --- The sum --------------------------------------------------------------------------------------------------------

/// Calls `visit(name, white, black)` for every term except material and pawns.
template <typename Visit> void visit_terms(const Game& g, const EvalContext& context, Visit visit) {
    constexpr Side white = Side::white;
    constexpr Side black = Side::black;
    visit("piece placement", placement<white>(g), placement<black>(g));
    visit("open files", open_files<white>(g), open_files<black>(g));
    visit("open files by king", open_files_beside_king<white>(g), open_files_beside_king<black>(g));
    visit("half-open files", half_open_files<white>(g), half_open_files<black>(g));
    visit("bishop pair", bishop_pair<white>(g), bishop_pair<black>(g));
    visit("trades", trades<white>(g, context), trades<black>(g, context));
    visit("seventh rank", seventh_rank<white>(g), seventh_rank<black>(g));
    visit("undeveloped minors", undeveloped_minors<white>(g), undeveloped_minors<black>(g));
    visit("early queen", early_queen<white>(g), early_queen<black>(g));
    visit("queen against rooks", queen_against_rooks<white>(g), queen_against_rooks<black>(g));
    if (kings_are_safe(g)) return;

    const int safety = king_shelter(g) + king_attack(g);
    visit("king shelter", king_shelter_of<white>(g), king_shelter_of<black>(g));
    visit("king attack", king_attack_of<white>(g), king_attack_of<black>(g));
    visit("queen in attack", queen_in_attack<white>(g, safety), queen_in_attack<black>(g, -safety));
}

}  // namespace

// Lack of squares costs a rook more than mobility gains it, above all along its rank.
int rook_mobility(const Game& game, int square) {
    const Bitboard empty = ~occupied(game);
    const Bitboard along_rank = rank_reach(game, square) & empty;
    const Bitboard along_file = file_reach(game, square) & empty;
    const int free_squares = popcount(along_rank | along_file);
    int score = free_squares;
    if (along_rank == 0) score += free_rank_missing;
    if (free_squares == 0) return score + rook_trapped;
    if (free_squares <= 3) score += few_free_squares;
    return score;
}

int bishop_mobility(const Game& game, int square) {
    return free_diagonal_square * popcount(bishop_reach(game, square) & ~occupied(game));
}

int knight_mobility(const Game& game, int square) {
    return side_of(game.cells[square]) == Side::white ? knight_targets<Side::white>(game, square)
                                                      : knight_targets<Side::black>(game, square);
}

// Queens and rooks count twice.
int king_tropism(int code, int square, int king_square) {
    return (7 - square_distance[king_square][square]) * (piece_values[code] / 500 + 1);
}

int piece_placement(const Game& game) {
    return placement<Side::white>(game) - placement<Side::black>(game) + pawn_placement(game);
}

int evaluate(const Game& g, EvalContext& context) {
    const PawnScores pawns = score_pawns(context.pawns, g);
    int score = g.material + pawns.placement + pawns.terms;
    visit_terms(g, context, [&score](std::string_view, int white, int black) { score += white - black; });
    return score;
}

std::vector<EvalTerm> evaluation_terms(const Game& g, const EvalContext& context) {
    constexpr Side white = Side::white;
    constexpr Side black = Side::black;
    std::vector<EvalTerm> terms = {
        {"material", g.w_material, g.b_material},
        {"pawn placement", pawn_placement_of<white>(g), pawn_placement_of<black>(g)},
        {"pawn structure", pawn_structure_of<white>(g), pawn_structure_of<black>(g)},
        {"passed pawns", passed_pawns_of<white>(g), passed_pawns_of<black>(g)},
    };
    visit_terms(g, context, [&terms](std::string_view name, int for_white, int for_black) {
        terms.push_back({name, for_white, for_black});
    });
    return terms;
}

}  // namespace varn
