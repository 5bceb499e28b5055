#include "frontend/compare_games.h"

#include <cstdlib>

#include "base/output.h"
#include "board/position.h"
#include "frontend/game_report.h"

namespace varn {

namespace {

/// Prints the message if the values differ; returns whether they do.
template <typename T> bool differs(const T& a, const T& b, const char* message) {
    if (a == b) return false;
    say_text(message);
    return true;
}

struct NamedBoard {
    Bitboard Game::*board;
    const char* name;
};

constexpr NamedBoard boards[] = {
    {&Game::r90, "r90"},           {&Game::r45f, "r45f"},           {&Game::r45b, "r45b"},
    {&Game::w_pieces, "w_pieces"}, {&Game::b_pieces, "b_pieces"},   {&Game::w_queens, "w_queens"},
    {&Game::w_rooks, "w_rooks"},   {&Game::w_bishops, "w_bishops"}, {&Game::w_knights, "w_knights"},
    {&Game::w_king, "w_king"},     {&Game::w_pawns, "w_pawns"},     {&Game::b_queens, "b_queens"},
    {&Game::b_rooks, "b_rooks"},   {&Game::b_bishops, "b_bishops"}, {&Game::b_knights, "b_knights"},
    {&Game::b_king, "b_king"},     {&Game::b_pawns, "b_pawns"},     {&Game::enpassant, "enpassant"},
};

/// Prints all differences; returns their number.
int count_differences(const Game& a, const Game& b) {
    int found = 0;
    found += differs(a.zobrist_key, b.zobrist_key, "Zobrist keys do not match!\n");
    found += differs(a.zobrist_lock, b.zobrist_lock, "Zobrist locks do not match!\n");
    for (const auto& [board, name] : boards) {
        if (a.*board == b.*board) continue;
        say("BitBoard: %s does not match!\n", name);
        ++found;
    }
    found += differs(a.move_counter, b.move_counter, "the move counter does not match!\n");
    found += differs(a.wking_sqr, b.wking_sqr, "the white king squares does not match!\n");
    found += differs(a.bking_sqr, b.bking_sqr, "the black king squares does not match!\n");
    found += differs(a.material, b.material, "material does not match!\n");
    found += differs(a.turn, b.turn, "the turn does not match!\n");
    found += differs(a.w_castle, b.w_castle, "the white castling rights do not match");
    found += differs(a.b_castle, b.b_castle, "the black castling rights do not match");
    found += differs(a.cells, b.cells, "cell array does not match!\n");
    found += differs(a.fifty, b.fifty, "fifty move counter doesn't match!\n");
    found += differs(is_consistent(a), true, "cell array doesnt match bitboards: g\n");
    found += differs(is_consistent(b), true, "cell array doesnt match bitboards: h\n");
    return found;
}

}  // namespace

void compare_games(const Game& a, const Game& b) {
    if (count_differences(a, b) == 0) return;
    say_text("GAMES NOT EQUAL!!!\n");
    print_board(a, WhenOver::go_on);
    print_cells(a);
    say_text("--------------------------\n");
    print_board(b, WhenOver::go_on);
    print_cells(b);
    std::exit(1);
}

}  // namespace varn
