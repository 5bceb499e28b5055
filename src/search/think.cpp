#include "search/think.h"

#include <algorithm>
#include <limits>
#include <string>

#include "board/legality.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/output.h"
#include "eval/evaluate.h"
#include "eval/pawns.h"
#include "search/clock.h"
#include "search/ordering.h"
#include "search/settings.h"
#include "search/transposition.h"

namespace varn {

std::optional<Move> (*book_hook)(Game* game) = nullptr;
Move predicted_move;
std::int32_t predicted_valid;

namespace {

constexpr int deepest_iteration = 50;
constexpr int aspiration = 50;      // half the window round the last score
constexpr int winning_score = 500;  // from here on trading pays

// The score of the last root search, kept from one `think` to the next: the centre of the next window.
std::int32_t root_score;
// The move that the last `think` gave.
Move chosen_move;

const Move* choose(Move move) {
    chosen_move = move;
    return &chosen_move;
}

std::optional<Move> ask_book(Game* game) {
    if (book_enabled != 1) return std::nullopt;
    if (book_hook != nullptr) return book_hook(game);
    book_enabled = 0;
    return std::nullopt;
}

/// The legal moves of the root, in the order of generation.
const MoveList* legal_root_moves(Game* game) {
    MoveList* list = generate_all(game, scratch_slot);
    int legal = 0;
    for (int i = 0; i < list->count; ++i) {
        if (is_legal(game, list->moves[i])) list->moves[legal++] = list->moves[i];
    }
    list->count = legal;
    return list;
}

void start_afresh(const Game& game) {
    clear_history();
    hash_clear();
    pawn_hash_clear();
    main_pv.length = 0;
    main_pv.keys = {};
    main_pv.locks = {};
    root_material = game.w_material + game.b_material;
    w_trade_flag = 0;
    b_trade_flag = 0;
}

/// The main line in short algebraic form, as far as its moves follow from one another.
std::string main_line_text(const Game* game) {
    Game copy = *game;
    std::string text;
    for (int i = 0; i < main_pv.length; ++i) {
        const Move move = main_pv.moves[i];
        if (!is_valid_move(&copy, move)) break;
        const std::string san = san_text(move, &copy);
        constexpr std::size_t columns = 5;
        text.append(columns - std::min(columns, san.size()), ' ');
        text += san + ' ';
        make_move(&copy, move);
    }
    return text;
}

/// Nodes a second; an iteration faster than the clock's tick counts as one tick.
double speed(std::uint32_t milliseconds) { return nodes / (std::max(1U, milliseconds) * 0.001); }

int printable(double number) {
    return static_cast<int>(std::min(number, static_cast<double>(std::numeric_limits<int>::max())));
}

/// One iteration; returns whether it was finished. The game is the same afterwards also where it was cut short.
bool finish_iteration(Game* game, const Game& saved, int depth) {
    nodes = 0;
    quiescent_nodes = 0;
    iteration_depth = depth;
    clear_killer_counts();
    null_move_at = {};
    root_score = root_search(game, root_score, depth);
    search_nodes += nodes;
    *game = saved;
    return root_score != abort_score;
}

void set_trade_flags(const Game& game) {
    const bool winning = root_score >= winning_score;
    w_trade_flag = winning && game.turn == 0 ? 1 : 0;
    b_trade_flag = winning && game.turn == 1 ? 1 : 0;
}

/// Deepens until the clock or the last depth ends it; returns the speed of the last finished iteration.
double deepen(Game* game) {
    const Game saved = *game;
    const int last_depth = std::clamp(ply_limit.load(), 1, deepest_iteration);
    double nodes_per_second = 0;
    search_nodes = 0;
    for (int depth = 1; depth <= last_depth; ++depth) {
        const std::uint32_t started = clock_ms();
        if (!finish_iteration(game, saved, depth)) break;
        set_trade_flags(*game);
        const std::uint32_t milliseconds = clock_ms() - started;
        nodes_per_second = speed(milliseconds);
        if (post_thinking == 1) print_search_line(game, depth, milliseconds / 10, root_score);
    }
    return nodes_per_second;
}

/// The main line's second move. What a sibling left behind the first one may not follow from it: no reply then.
void predict_reply(const Game& game) {
    if (main_pv.length < 2) return;
    Game after = game;
    make_move(&after, main_pv.moves[0]);
    if (!is_valid_move(&after, main_pv.moves[1])) return;
    predicted_move = main_pv.moves[1];
    predicted_valid = 1;
}

enum class Clock : std::uint8_t { runs, starts_with_search };

const Move* think(Game* game, Clock clock) {
    predicted_valid = 0;
    if (const auto move = ask_book(game)) return choose(*move);
    const MoveList* legal = legal_root_moves(game);
    if (legal->count == 0) return nullptr;
    const Move first_legal = legal->moves[0];
    if (legal->count == 1) return choose(first_legal);

    if (xboard_mode == 0) {
        say_text("\n ply   score    time      nodes     quiescent nodes     principal variation\n\n");
    }
    start_afresh(*game);
    if (clock == Clock::starts_with_search) start_clock();
    const double nodes_per_second = deepen(game);
    if (xboard_mode == 0) say("\nNPS: %d\n\n", printable(nodes_per_second));
    predict_reply(*game);
    // A search stopped before its first move raised alpha has no line; any legal move is better than none.
    return choose(main_pv.length > 0 ? main_pv.moves[0] : first_legal);
}

}  // namespace

const Move* think(Game* game) { return think(game, Clock::starts_with_search); }
const Move* think_on_running_clock(Game* game) { return think(game, Clock::runs); }

int root_search(Game* game, int centre, int depth) {
    const auto search_root = [&](int alpha, int beta) {
        for (auto& ply : search_stack) ply.captured = no_piece;
        null_move_at = {};
        return search(game, alpha, beta, depth, root_frame, &main_pv);
    };
    const int alpha = centre - aspiration;
    const int beta = centre + aspiration;
    const int score = search_root(alpha, beta);
    if (score > alpha && score < beta) return score;
    return search_root(-full_window, full_window);
}

void print_search_line(const Game* game, int depth, std::uint32_t centiseconds, int score) {
    const std::string line = main_line_text(game);
    if (xboard_mode == 0) {
        say("%3d%8d%8u%11u    %17u    %s\n", depth, score, centiseconds, nodes, quiescent_nodes, line.c_str());
    } else {
        say("%3d%8d%8u%11u    %s\n", depth, score, centiseconds, nodes, line.c_str());
    }
}

}  // namespace varn
