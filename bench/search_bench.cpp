// Whole searches at a fixed depth over a dozen positions: prints the nodes of each, their total and the speed.
//
// The hash numbers come from a fixed seed, so the total is a signature: a change that only makes the engine faster
// leaves it as it is, and one that alters it has changed what the search or the evaluation does.
//
// Usage: search_bench [depth]
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "board/position.h"
#include "board/zobrist.h"
#include "search/think.h"

namespace {

constexpr int default_depth = 9;
constexpr std::uint64_t hash_seed = 20080519;

constexpr const char* positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",               // nothing settled yet
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",   // everything hangs
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

/// Nodes of a search of the position to the depth, all iterations together.
std::uint64_t search_position(varn::Search& s, varn::Game& game, const char* text, int depth) {
    varn::set_position(game, text);
    varn::clear_for_position(s);
    varn::think(s, game, {.depth = depth}, {});
    return s.search_nodes;
}

}  // namespace

int main(int argument_count, char** arguments) {
    const int depth = argument_count > 1 ? static_cast<int>(std::strtol(arguments[1], nullptr, 10)) : default_depth;
    varn::draw_hash_numbers(hash_seed);
    const auto game = varn::new_game();
    const auto search = varn::new_search();
    if (varn::allocate_tables(*search, {}) != varn::TableFault::none) return 1;

    const auto started = std::chrono::steady_clock::now();
    std::uint64_t total = 0;
    for (const char* text : positions) {
        const std::uint64_t searched = search_position(*search, *game, text, depth);
        std::printf("%12llu  %s\n", static_cast<unsigned long long>(searched), text);
        total += searched;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
    std::printf("depth: %d\nnodes: %llu\nseconds: %.2f\nnodes per second: %.0f\n", depth,
                static_cast<unsigned long long>(total), seconds.count(), static_cast<double>(total) / seconds.count());
    return 0;
}
