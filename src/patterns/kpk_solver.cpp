#include "patterns/kpk_solver.h"

#include "board/attacks.h"

namespace varn {

namespace {

constexpr std::uint8_t as_square(int square) { return static_cast<std::uint8_t>(square); }

/// Attacks of a rook or queen with the given occupancy.
Bitboard slider_attacks(PieceType type, int square, Bitboard pieces) {
    Bitboard attacks = rank_attacks[square][line_index(pieces, rank_line[square])] |
                       file_attacks[square][line_index(rotate_90(pieces), file_line[square])];
    if (type == queen) {
        attacks |= r45f_attacks[square][line_index(rotate_45f(pieces), r45f_line[square])] |
                   r45b_attacks[square][line_index(rotate_45b(pieces), r45b_line[square])];
    }
    return attacks;
}

/// Whether a new queen or rook on `target` wins with black to move.
bool promotion_wins(PieceType type, int white_king, int target, int black_king) {
    const Bitboard guarded = king_moves[white_king];
    const Bitboard black_moves = king_moves[black_king] & ~guarded;
    if ((black_moves & bit_mask(target)) != 0) return false;
    // The black king is transparent: it can't retreat along the line of a check.
    const Bitboard attacked = slider_attacks(type, target, bit_mask(white_king));
    const bool in_check = (attacked & bit_mask(black_king)) != 0;
    return in_check || (black_moves & ~attacked) != 0;
}

bool white_wins(const KpkWins& wins, Placement at) {
    const auto lost_for_black = [&](int white_king, int pawn) {
        return wins.black_to_move[kpk_index({as_square(white_king), as_square(pawn), at.black_king})];
    };
    Bitboard king_targets = king_moves[at.white_king] & ~king_moves[at.black_king] & ~bit_mask(at.pawn);
    while (king_targets != 0) {
        if (lost_for_black(pop_first(king_targets), at.pawn)) return true;
    }
    const auto is_free = [&](int square) { return square != at.white_king && square != at.black_king; };
    const int ahead = at.pawn + 8;
    if (!is_free(ahead)) return false;
    if (rank_of(ahead) == 8) {
        return promotion_wins(queen, at.white_king, ahead, at.black_king) ||
               promotion_wins(plain_rook, at.white_king, ahead, at.black_king);
    }
    if (lost_for_black(at.white_king, ahead)) return true;
    return rank_of(at.pawn) == 2 && is_free(ahead + 8) && lost_for_black(at.white_king, ahead + 8);
}

bool black_loses(const KpkWins& wins, Placement at) {
    const Bitboard pawn_attacked = pawn_attacks<Side::white>[at.pawn];
    Bitboard targets = king_moves[at.black_king] & ~king_moves[at.white_king] & ~pawn_attacked;
    if (targets == 0) return (pawn_attacked & bit_mask(at.black_king)) != 0;  // mate or stalemate
    // If the king captures the pawn, the index is one that is never set.
    while (targets != 0) {
        if (!wins.white_to_move[kpk_index({at.white_king, at.pawn, as_square(pop_first(targets))})]) return false;
    }
    return true;
}

/// With black to move the pawn may give check.
std::vector<Placement> placements_for_black(const std::vector<Placement>& for_white) {
    std::vector<Placement> placements = for_white;
    for (std::uint8_t white_king = 0; white_king < square_count; ++white_king) {
        for (std::uint8_t pawn = 8; pawn < 56; ++pawn) {
            Bitboard checked = pawn_attacks<Side::white>[pawn] & ~king_moves[white_king] & ~bit_mask(white_king);
            if (white_king == pawn) checked = 0;
            while (checked != 0) placements.push_back({white_king, pawn, as_square(pop_first(checked))});
        }
    }
    return placements;
}

}  // namespace

// Retrograde from the promotions: wins are never revoked, so it is complete when a pass finds no new ones.
std::unique_ptr<KpkWins> solve_kpk() {
    const std::vector<Placement> for_white = kpk_placements();
    const std::vector<Placement> for_black = placements_for_black(for_white);
    auto wins = std::make_unique<KpkWins>();
    for (std::size_t found = 1; found > 0;) {
        found = 0;
        for (const Placement at : for_white) {
            if (wins->white_to_move[kpk_index(at)] || !white_wins(*wins, at)) continue;
            wins->white_to_move.set(kpk_index(at));
            ++found;
        }
        for (const Placement at : for_black) {
            if (wins->black_to_move[kpk_index(at)] || !black_loses(*wins, at)) continue;
            wins->black_to_move.set(kpk_index(at));
            ++found;
        }
    }
    return wins;
}

}  // namespace varn
