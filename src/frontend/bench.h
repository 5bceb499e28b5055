// Fixed-depth searches of a dozen positions with fixed hash numbers. The total of nodes is the signature of the search.
#pragma once

#include <cstdint>
#include <functional>

namespace varn {

inline constexpr int bench_depth = 9;

inline constexpr const char* bench_positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",               // starting position
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",   // many captures
    "r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP3PPP/R2QKB1R w KQ -",      // a quiet middle game
    "r1bqkb1r/pp1n1ppp/2p1pn2/3p4/2PP4/2N1PN2/PP3PPP/R1BQKB1R w KQkq -",  // an opening with tension
    "2rr3k/pp3pp1/1nnqbN1p/3pN3/2pP4/2P3Q1/PPB4P/R4RK1 w - -",            // an attack on the king
    "r2q1rk1/4bppp/p2p4/2pP4/3pP3/3Q4/PP1B1PPP/R3R1K1 w - -",             // a closed centre
    "3r1k2/4npp1/1ppr3p/p6P/P2PPPP1/1NR5/5K2/2R5 w - -",                  // rooks and minor pieces
    "2q1rr1k/3bbnnp/p2p1pp1/2pPp3/PpP1P1P1/1P2BNNP/2BQ1PRK/7R b - -",     // locked pawns, all pieces
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",                              // a rook ending
    "8/k7/3p4/p2P1p2/P2P1P2/8/8/K7 w - -",                                // a pawn ending, deep and narrow
    "r3r1k1/ppqb1ppp/8/4p1NQ/8/2P5/PP3PPP/R3R1K1 b - -",                  // queens and open files
    "5rk1/1ppb3p/p1pb4/6q1/3P1p1r/2P1R2P/PP1BQ1P1/5RKN w - -",            // opposite attacks
};

struct BenchTotal {
    std::uint64_t nodes;
    double seconds;
};

/// Called after each position with the nodes of all iterations.
using BenchListener = std::function<void(const char* position, std::uint64_t nodes)>;

/// Redraws the hash numbers from a fixed seed, so no game may exist. If memory is short nothing is searched and the
/// total is 0.
BenchTotal run_bench(int depth, const BenchListener& listener);

}  // namespace varn
