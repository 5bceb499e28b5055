// What the tests of every room share: positions worth standing in, games played at random from them, and a walk over
// the board that needs none of the engine's tables.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"
#include "board/position.h"
#include "board/random.h"
#include "board/zobrist.h"

namespace varn {

/// No game may exist before the hash numbers do.
inline const bool hash_numbers_drawn = (draw_hash_numbers(20010911), true);

struct KnownPosition {
    std::string_view text;
    int depth;
    std::uint64_t leaves;  // of the tree of legal moves at that depth
};

/// The first are rich in everything; the others each in one thing: promotions, castling, en passant, pins, mates. In
/// the last four, or after a double step in them, a single kind of move is legal.
inline constexpr KnownPosition known_positions[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 5, 4865609},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4, 4085603},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 4, 422333},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 4, 2103487},
    {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -", 4, 3894594},
    {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -", 5, 3605103},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", 4, 314346},
    {"r3k2r/1P4P1/8/8/8/8/1p4p1/R3K2R w KQkq -", 4, 764007},
    {"r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq -", 4, 1274206},
    {"r3k2r/8/3Q4/8/8/5q2/8/R3K2R b KQkq -", 4, 1720476},
    {"4k3/p1p1p1p1/8/1P1P1P1P/1p1p1p1p/8/P1P1P1P1/4K3 w - -", 5, 1437840},
    {"3k4/3p4/8/K1P4r/8/8/8/8 b - -", 6, 1134888},
    {"8/8/4k3/8/2p5/8/B2P2K1/8 w - -", 6, 1015133},
    {"2K2r2/4P3/8/8/8/8/8/3k4 w - -", 6, 3821001},
    {"8/8/1P2K3/8/2n5/1q6/8/5k2 b - -", 5, 1004658},
    {"8/8/2k5/5q2/5n2/8/5K2/8 b - -", 4, 23527},
    {"8/k1P5/8/1K6/8/8/8/8 w - -", 7, 567584},
    {"7k/8/8/7r/K6r/7r/4P3/8 w - -", 4, 900},
    {"K7/2k4P/2n5/8/8/8/8/8 w - -", 5, 72701},
    {"K5nb/2k4P/2n5/8/8/8/8/8 w - -", 4, 12569},
    {"3B4/8/R7/7k/5p2/7K/6P1/8 w - -", 4, 4645},
};

inline std::unique_ptr<Game> game_from(std::string_view text) {
    auto game = new_game(false);
    set_position(game.get(), text, KeepTables::yes);
    return game;
}

/// Equal in all but the keys behind the last position, which are nobody's.
inline bool same_game(Game a, const Game& b) {
    std::copy(b.draw_hash.begin() + b.draw_hash_count, b.draw_hash.end(), a.draw_hash.begin() + b.draw_hash_count);
    return a == b;
}

/// The same position with the colours changed and the board turned over, rank by rank; without an en-passant square.
inline std::string mirrored_text(std::string_view text) {
    const std::size_t blank = text.find(' ');
    std::string board;
    for (std::size_t start = 0, end; start < blank; start = end + 1) {
        end = std::min(text.find('/', start), blank);
        board.insert(0, start == 0 ? "" : "/").insert(0, text.substr(start, end - start));
    }
    std::string mirrored = board + std::string(text.substr(blank));
    constexpr char other_case = 'a' ^ 'A';
    for (char& letter : mirrored) letter = static_cast<char>(letter < 'A' ? letter : letter ^ other_case);
    mirrored[blank + 1] = text[blank + 1] == 'w' ? 'b' : 'w';
    return mirrored;
}

inline std::vector<Move> moves_of(const MoveList& list) {
    return {list.moves.begin(), list.moves.begin() + list.count};
}
inline std::vector<Move> pseudo_legal_moves(const Game& game) { return moves_of(*generate_all(&game, scratch_slot)); }

inline std::vector<Move> legal_moves(Game& game) {
    std::vector<Move> moves = pseudo_legal_moves(game);
    std::erase_if(moves, [&](Move move) { return !is_legal(&game, move); });
    return moves;
}

/// One of the moves by chance; there must be one. En passant, castling, promotions and double steps have half of the
/// chance among them, so that games of random moves see enough of each.
inline Move random_move(RandomSource& random, std::vector<Move> moves) {
    const auto is_common = [](Move move) { return move.kind == kind_quiet || move.kind == kind_capture; };
    if (random.next() % 2 == 0 && !std::ranges::all_of(moves, is_common)) std::erase_if(moves, is_common);
    return moves[random.next() % moves.size()];
}

/// Plays up to `plies` random legal moves from every known position, and calls `visit(game)` in each position met.
template <typename Visit> void visit_random_games(std::uint64_t seed, int plies, Visit visit) {
    RandomSource random(seed);
    for (const KnownPosition& known : known_positions) {
        auto game = game_from(known.text);
        for (int ply = 0; ply <= plies; ++ply) {
            visit(*game);
            const std::vector<Move> moves = legal_moves(*game);
            if (moves.empty() || !play_move(random_move(random, moves), game.get())) break;
        }
    }
}

/// The squares from `square` in steps of ranks and files, up to the edge or to the first one of `blockers`, included.
inline Bitboard walk(int square, int ranks, int files, Bitboard blockers) {
    Bitboard reached = 0;
    int rank = square / 8 + ranks, file = square % 8 + files;
    for (; rank >= 0 && rank < 8 && file >= 0 && file < 8; rank += ranks, file += files) {
        reached |= Bitboard{1} << (8 * rank + file);
        if ((blockers >> (8 * rank + file) & 1) != 0) break;
    }
    return reached;
}

}  // namespace varn
